// Displays that come, go, move and change their size while windows are tucked.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::Not;

/// Two displays side by side, and the application placed on both.
class ProgramDisplaysTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    void SetUp() override {
        server.plug("DUMMY1", 1280, 0);
        ASSERT_TRUE(waitUntil([&] { return rootWidth() == 2560; }));
        program.session.startWindowManager(GetParam());
    }

    static std::string restoring(int count) {
        return "Quorvel: displays changed — restoring " + std::to_string(count) +
               " tucked window(s) whose display is gone or resized";
    }
    static std::string unaffected(int count) {
        return "Quorvel: displays changed — " + std::to_string(count) +
               " tucked window(s) unaffected";
    }

    int rootWidth() const {
        const XClient& client = program.probe().connection();
        const std::unique_ptr<xcb_get_geometry_reply_t, decltype(&std::free)> root(
            xcb_get_geometry_reply(client.xcb(), xcb_get_geometry(client.xcb(), client.root()),
                                   nullptr),
            &std::free);
        return root ? root->width : 0;
    }

    void start() {
        program.bind({{.appPath = program.path, .hotKey = program.shortcut, .edge = "left"},
                      {.appPath = program.path, .hotKey = "none", .edge = "right", .display = 1}});
        program.session.input().moveTo(640, 780);
        program.start();
    }
    xcb_window_t openAt(const Rect& area) {
        const xcb_window_t window = program.notes.open(area);
        program.probe().activate(window);
        EXPECT_TRUE(program.waitUntilActive(window));
        // Some place new windows on the display that they think best.
        const auto isNearIt = [&] {
            const Rect now = program.seen(window);
            return std::abs(now.x - area.x) < 40 && std::abs(now.y - area.y) < 40;
        };
        program.settledFrame(window);
        if (!isNearIt()) program.probe().requestMove(window, int(area.x), int(area.y));
        EXPECT_TRUE(waitUntil(isNearIt, 2s)) << testing::PrintToString(program.seen(window));
        return window;
    }
    /// Its frame before.
    Rect tuckRight(xcb_window_t window) {
        const Rect home = program.settledFrame(window);
        program.press(program.shortcut);
        EXPECT_TRUE(program.waitForFrame(window, {2558, home.y, home.width, home.height}));
        return home;
    }
    Rect tuckLeft(xcb_window_t window) {
        const Rect home = program.settledFrame(window);
        program.press(program.shortcut);
        EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
        return home;
    }
    testing::AssertionResult comesToRestWithin(xcb_window_t window, const Rect& display) {
        const auto isInside = [&] {
            const Rect now = program.seen(window);
            return now.x >= display.x && now.y >= display.y && now.maxX() <= display.maxX() &&
                   now.maxY() <= display.maxY();
        };
        if (waitUntil(isInside) && neverWithin(500ms, [&] { return !isInside(); })) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure()
               << "it is at " << testing::PrintToString(program.seen(window));
    }

    ProgramWithNotes program{{.server = XServerKind::hotPlug, .windowManager = {}}};
    XServer& server = program.session.server();
    const Rect first{0, 0, 1280, 800};
    const Rect second{1280, 0, 1280, 800};
};

TEST_P(ProgramDisplaysTest, AWindowOfADisplayThatIsSwitchedOffComesOntoAnotherOne) {
    start();
    const xcb_window_t window = openAt({1480, 120, 400, 300});
    tuckRight(window);
    server.unplug("DUMMY1");
    EXPECT_TRUE(program.waitForLine(restoring(1)));
    EXPECT_TRUE(comesToRestWithin(window, first));
}

TEST_P(ProgramDisplaysTest, AWindowOfADisplayThatIsMovedIsWhereItCanBeReached) {
    start();
    const xcb_window_t window = openAt({1480, 120, 400, 300});
    tuckRight(window);
    server.move("DUMMY1", 0, 800);
    EXPECT_TRUE(program.waitForLine(restoring(1)));
    EXPECT_TRUE(comesToRestWithin(window, {0, 0, 1280, 1600}));
}

TEST_P(ProgramDisplaysTest, ADisplayThatIsSwitchedOnLeavesEveryWindowWhereItIs) {
    start();
    const xcb_window_t window = openAt({200, 120, 400, 300});
    const Rect home = tuckLeft(window);
    server.plug("DUMMY2", 2560, 0);
    EXPECT_TRUE(program.waitForLine(unaffected(1)));
    EXPECT_TRUE(program.staysAt(window, ProgramOnX::atLeftEdge(home)));
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_P(ProgramDisplaysTest, AnotherSizeOfOneDisplayLeavesTheWindowsOfTheOthersTucked) {
    start();
    const xcb_window_t here = openAt({200, 120, 400, 300});
    const Rect home = tuckLeft(here);
    const xcb_window_t there = openAt({1480, 120, 400, 300});
    const Rect otherHome = tuckRight(there);
    server.xrandr({"--output", "DUMMY1", "--mode", "1920x1080"});
    EXPECT_TRUE(program.waitForLine(restoring(1)));
    EXPECT_TRUE(program.waitForFrame(there, otherHome));
    EXPECT_TRUE(program.staysAt(here, ProgramOnX::atLeftEdge(home)));
    EXPECT_THAT(program.linesSinceReady(),
                Not(Contains("Quorvel: released a tucked window — moved externally or closed")));
}

TEST_P(ProgramDisplaysTest, AllDisplaysOffForAMomentLoseNothing) {
    start();
    const xcb_window_t here = openAt({200, 120, 400, 300});
    tuckLeft(here);
    const xcb_window_t there = openAt({1480, 120, 400, 300});
    tuckRight(there);
    server.xrandr({"--output", "DUMMY0", "--off", "--output", "DUMMY1", "--off"});
    EXPECT_TRUE(waitUntil([&] { return program.linesSinceReady().size() > 2; }));
    server.xrandr({"--output", "DUMMY0", "--mode", "1920x1080", "--pos", "0x0"});
    // It may be on another workspace now.
    for (const xcb_window_t window : {there, here}) {
        EXPECT_TRUE(waitUntil([&] {
            program.probe().activate(window);
            return waitUntil([&] { return program.probe().activeWindow() == window; }, 1s);
        }));
        EXPECT_TRUE(comesToRestWithin(window, {0, 0, 1920, 1080}));
    }
    EXPECT_EQ(program.terminate(), 0);
}

TEST_P(ProgramDisplaysTest, AWindowLargerThanItsDisplayComesBackWhenThatGoes) {
    start();
    const xcb_window_t window = openAt({1300, 60, 1700, 500});
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return program.seen(window).x == 2558; }))
        << testing::PrintToString(program.seen(window));
    server.unplug("DUMMY1");
    EXPECT_TRUE(program.waitForLine(restoring(1)));
    // As much of it as there is room for.
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        return now.x >= 0 && now.x <= 2 && now.y >= 0 && now.y <= home.y;
    })) << testing::PrintToString(program.seen(window));
}

// Xfwm4 lets no program move a window from one display to another.
INSTANTIATE_TEST_SUITE_P(, ProgramDisplaysTest,
                         testing::Values(WindowManagerKind::openbox, WindowManagerKind::kwin,
                                         WindowManagerKind::i3, WindowManagerKind::marco),
                         testing::PrintToStringParamName());

class ProgramCornersOnDisplaysTest : public testing::Test {
protected:
    ProgramWithNotes program{{.server = XServerKind::hotPlug}};
    XServer& server = program.session.server();
    XInput& input = program.session.input();
};

TEST_F(ProgramCornersOnDisplaysTest, CornersFollowTheDisplayTheyBelongTo) {
    program.bind({{.appPath = program.path, .hotKey = "none", .corner = "topRight"}});
    input.moveTo(600, 400);
    program.start();
    server.xrandr({"--output", "DUMMY0", "--mode", "1920x1080"});
    EXPECT_TRUE(program.waitForLine("Quorvel: hot corner zones: (1914,1074 6x6)"));
    input.moveTo(1279, 0);
    EXPECT_TRUE(neverWithin(600ms, [&] { return program.notes.launches() > 0; }));
    input.moveTo(1919, 0);
    EXPECT_TRUE(program.waitForLine("Quorvel: hot corner fired at (1919, 1080)"));
    EXPECT_NE(program.notes.waitForWindow(), 0U);
}

TEST_F(ProgramCornersOnDisplaysTest, ADisplayThatIsPluggedInBringsItsCorners) {
    server.plug("DUMMY1", 1280, 0);
    program.bind(
        {{.appPath = program.path, .hotKey = "none", .corner = "bottomRight", .display = 1}});
    server.unplug("DUMMY1");
    input.moveTo(600, 400);
    program.start();
    EXPECT_TRUE(program.waitForLine("Quorvel: no hot corners placed."));
    server.plug("DUMMY1", 1280, 0);
    EXPECT_TRUE(program.waitForLine("Quorvel: hot corner zones: (2554,0 6x6)"));
    input.moveTo(2559, 799);
    EXPECT_NE(program.notes.waitForWindow(), 0U);
}

TEST_F(ProgramCornersOnDisplaysTest, TwoInOneCornerAreToldAndTheFirstOneOpens) {
    TestApplication other{program.session, QUORVEL_TEST_APPLICATION, {.name = "other"}};
    program.bind({{.appPath = program.path, .hotKey = "none", .corner = "topLeft"},
                  {.appPath = other.entry(), .hotKey = "none", .corner = "topLeft"}});
    input.moveTo(600, 400);
    program.start();
    input.moveTo(0, 0);
    EXPECT_NE(program.notes.waitForWindow(), 0U);
    EXPECT_EQ(other.launches(), 0);
}

}  // namespace
}  // namespace quorvel::test
