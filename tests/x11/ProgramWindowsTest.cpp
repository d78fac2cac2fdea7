// Windows that are not simply there: maximised, fullscreen, closed in the middle of a slide.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/Printers.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

class ProgramWindowsTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramWithNotes program{{.windowManager = GetParam()}};

    void setState(xcb_window_t window, const std::vector<std::string>& states) const {
        const XClient& client = program.probe().connection();
        xcb_atom_t second = XCB_ATOM_NONE;
        if (states.size() > 1) second = client.atom(states[1]);
        client.sendToRoot(window, "_NET_WM_STATE", {1, client.atom(states[0]), second, 2, 0});
        ASSERT_TRUE(waitUntil([&] { return hasState(window, states); }));
    }
    bool hasState(xcb_window_t window, const std::vector<std::string>& states) const {
        const auto now = program.probe().netWmState(window);
        return std::all_of(states.begin(), states.end(), [&](const std::string& state) {
            return std::find(now.begin(), now.end(), state) != now.end();
        });
    }

    void tuckAndBringBack(const std::vector<std::string>& states) {
        const xcb_window_t window = program.startWithWindow("left");
        const Rect normal = program.seen(window);
        setState(window, states);
        const Rect filling = program.settledFrame(window);
        ASSERT_NE(filling, normal);

        program.press(program.shortcut);
        EXPECT_TRUE(waitUntil([&] { return program.seen(window).maxX() == 2; }))
            << testing::PrintToString(program.seen(window).maxX());
        EXPECT_TRUE(neverWithin(300ms, [&] { return program.seen(window).maxX() != 2; }));

        program.press(program.shortcut);
        // It passes through its normal size, which is to be beneath the state.
        const auto fills = [&] {
            return hasState(window, states) && program.seen(window) == filling;
        };
        EXPECT_TRUE(waitUntil(fills));
        EXPECT_TRUE(program.staysAt(window, filling));
        EXPECT_THAT(program.linesSinceReady(),
                    ElementsAre("Quorvel: tucked " + program.path + " window to left",
                                "Quorvel: untucked window"));

        // And at the end of the program as well.
        program.press(program.shortcut);
        EXPECT_TRUE(waitUntil([&] { return program.seen(window).maxX() == 2; }));
        EXPECT_EQ(program.terminate(), 0);
        EXPECT_TRUE(waitUntil(fills));
        EXPECT_TRUE(program.staysAt(window, filling));
    }
};

INSTANTIATE_TEST_SUITE_P(, ProgramWindowsTest,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                         WindowManagerKind::kwin, WindowManagerKind::marco),
                         testing::PrintToStringParamName());

TEST_P(ProgramWindowsTest, AMaximisedWindowIsTuckedAndComesBackMaximised) {
    tuckAndBringBack({"_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ"});
}

TEST_P(ProgramWindowsTest, AFullscreenWindowIsTuckedAndComesBackFullscreen) {
    tuckAndBringBack({"_NET_WM_STATE_FULLSCREEN"});
}

class ProgramWindowsOnOpenboxTest : public testing::Test {
protected:
    ProgramWithNotes program;
};

TEST_F(ProgramWindowsOnOpenboxTest, AWindowThatClosesInMidSlideLeavesNoTrace) {
    const xcb_window_t first = program.startWithWindow("left");
    const Rect home = program.seen(first);
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return program.seen(first) != home; }));
    program.notes.close(first);
    ASSERT_TRUE(program.waitUntilGone(first));

    const xcb_window_t second = program.notes.open({200, 200, 300, 300});
    program.probe().activate(second);
    ASSERT_TRUE(program.waitUntilActive(second));
    const Rect secondHome = program.seen(second);
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(second, ProgramOnX::atLeftEdge(secondHome)));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(second, secondHome));
}

TEST_F(ProgramWindowsOnOpenboxTest, AnApplicationThatCrashesWhileTuckedCanBeStartedAgain) {
    const xcb_window_t first = program.startWithWindow("left");
    const Rect home = program.seen(first);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(first, ProgramOnX::atLeftEdge(home)));
    program.notes.kill();
    ASSERT_TRUE(program.waitUntilGone(first));

    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return program.notes.launches() == 2; }));
    const xcb_window_t second = program.notes.waitForWindow();
    ASSERT_TRUE(program.waitUntilActive(second));
    const Rect secondHome = program.seen(second);
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(second, ProgramOnX::atLeftEdge(secondHome)));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(second, secondHome));
}

TEST_F(ProgramWindowsOnOpenboxTest, AnApplicationThatDoesNotAnswerIsTuckedAllTheSame) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    program.notes.suspend();
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, home));
    program.notes.resume();
}

TEST_F(ProgramWindowsOnOpenboxTest, InstantMovesWithoutASlide) {
    const xcb_window_t window = program.startWithWindow("right", "instant");
    const Rect home = program.seen(window);
    const Rect tucked{1278, home.y, home.width, home.height};
    program.press(program.shortcut);
    Rect other = home;
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        if (now != home && now != tucked) other = now;
        return now == tucked;
    }));
    EXPECT_EQ(other, home);
    EXPECT_TRUE(program.staysAt(window, tucked));
}

}  // namespace
}  // namespace quorvel::test
