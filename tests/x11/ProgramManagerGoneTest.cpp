// A window manager that goes away in the middle of a slide, or before a window is hidden.

#include <gtest/gtest.h>

#include <array>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

class ProgramManagerGoneTest : public testing::TestWithParam<int> {
protected:
    ProgramWithNotes program;
};

TEST_P(ProgramManagerGoneTest, AWindowTuckedMeanwhileIsStillTuckedUnderTheNextOne) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    // A moment of the slide, which takes a sixth of a second.
    neverWithin(std::chrono::milliseconds(GetParam()), [] { return false; });
    program.session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return program.seen(window).x < 0; }));
    // Longer than one manager takes to hand its windows to the next.
    EXPECT_TRUE(neverWithin(1500ms, [&] {
        const auto lines = program.linesSinceReady();
        return !lines.empty() &&
               lines.back() == "Quorvel: released a tucked window — moved externally or closed";
    }));
    program.session.startWindowManager(WindowManagerKind::openbox);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        return now.x >= 0 && now.y >= 0 && std::abs(now.x - home.x) < 40;
    })) << testing::PrintToString(program.seen(window));
}

INSTANTIATE_TEST_SUITE_P(, ProgramManagerGoneTest, testing::Values(30, 80, 120));

class TuckedUnderAnotherManagerTest : public testing::TestWithParam<WindowManagerKind> {};

// Each lets another part of it stand on the screen.
TEST_P(TuckedUnderAnotherManagerTest, AWindowThatItHasPutElsewhereComesHome) {
    ProgramWithNotes program{{.windowManager = WindowManagerKind::marco}};
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    program.session.windowManager()->kill();
    program.session.startWindowManager(GetParam());
    // Further away than what counts as drift.
    program.probe().requestMove(window, 50 - static_cast<int>(home.width), 60);
    EXPECT_TRUE(
        program.waitForLine("Quorvel: released a tucked window — moved externally or closed"));
    EXPECT_TRUE(waitUntil(
        [&] {
            const Rect now = program.seen(window);
            return std::abs(now.x - home.x) < 40 && std::abs(now.y - home.y) < 40;
        },
        5s))
        << testing::PrintToString(program.seen(window));
}

INSTANTIATE_TEST_SUITE_P(, TuckedUnderAnotherManagerTest,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin),
                         testing::PrintToStringParamName());

/// Where nobody can iconify it, it is hidden off the screen; the next window manager takes it over
/// there.
class HiddenWithoutAManagerTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramWithNotes program{{.server = XServerKind::hotPlug}};
    xcb_window_t window = XCB_WINDOW_NONE;

    void SetUp() override {
        window = program.startWithWindow("none");
        program.settledFrame(window);
        program.session.windowManager()->kill();
        ASSERT_TRUE(waitUntil([&] { return program.probe().frameOf(window) == window; }));
        program.press(program.shortcut);
        ASSERT_TRUE(waitUntil([&] { return program.seen(window).maxX() <= 0; }));
    }
    bool isOnDisplay() {
        const Rect seen = program.seen(window);
        return !seen.isEmpty() && seen.x >= 0 && seen.y >= 0 && seen.maxX() <= 1280 &&
               seen.maxY() <= 800 && program.probe().isViewable(window);
    }
    /// Also as the window manager sees it, which looks where its windows are when displays change.
    void expectItStaysOnDisplay() {
        ASSERT_TRUE(waitUntil([&] { return isOnDisplay(); }, 5s))
            << testing::PrintToString(program.seen(window));
        program.session.server().xrandr(
            {"--output", "DUMMY1", "--mode", "1280x800", "--pos", "1280x0"});
        program.session.server().xrandr({"--output", "DUMMY1", "--off"});
        EXPECT_TRUE(neverWithin(1s, [&] { return !isOnDisplay(); }))
            << testing::PrintToString(program.seen(window));
    }
};

TEST_P(HiddenWithoutAManagerTest, ItIsInReachUnderTheNextOne) {
    program.session.startWindowManager(GetParam());
    expectItStaysOnDisplay();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(isOnDisplay()) << testing::PrintToString(program.seen(window));
}

TEST_P(HiddenWithoutAManagerTest, AndKilledMeanwhileTheNextStartBringsItIntoReach) {
    program.sendSignal(SIGKILL);
    program.waitForExit();
    program.session.startWindowManager(GetParam());
    ASSERT_TRUE(waitUntil([&] { return program.probe().isManaged(window); }));
    program.start();
    expectItStaysOnDisplay();
}

// As window managers do when displays change.
TEST(HiddenOffTheScreenTest, MovedTwiceInOneGoItIsBackAtTheSecondPlaceInTheEnd) {
    ProgramWithNotes program;
    const xcb_window_t window = program.startWithWindow("none");
    program.settledFrame(window);
    program.session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return program.probe().frameOf(window) == window; }));
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return program.seen(window).maxX() <= 0; }));
    const XClient& x = program.probe().connection();
    for (const std::array<std::uint32_t, 2> place :
         {std::array<std::uint32_t, 2>{200, 100}, {300, 150}}) {
        xcb_configure_window(x.xcb(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                             place.data());
    }
    x.sync();
    EXPECT_TRUE(waitUntil([&] {
        const auto note = x.property32(window, "_QUORVEL_HIDDEN");
        return note.size() == 5 && note[3] == 300 && note[4] == 150;
    }));
    EXPECT_TRUE(waitUntil([&] { return program.seen(window).maxX() <= 0; }));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(program.seen(window).origin(), (Point{300, 150}));
}

INSTANTIATE_TEST_SUITE_P(, HiddenWithoutAManagerTest,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin, WindowManagerKind::i3,
                                         WindowManagerKind::marco),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace quorvel::test
