// What the program leaves behind when it is told to end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ProgramTerminationTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramWithNotes program{{.windowManager = GetParam()}};

    bool isHidden(xcb_window_t window) const {
        if (GetParam() == WindowManagerKind::i3) return program.seen(window).maxX() <= 0;
        return program.probe().isIconic(window) && !program.probe().isViewable(window);
    }

    /// In the middle of a slide that has begun after the call of this.
    bool waitUntilUnderWay(xcb_window_t window, const Rect& from, const Rect& to) const {
        return waitUntil([&] {
            const Rect now = program.seen(window);
            return now != from && now != to;
        });
    }
};

INSTANTIATE_TEST_SUITE_P(, ProgramTerminationTest, testing::ValuesIn(allWindowManagers()),
                         testing::PrintToStringParamName());

TEST_P(ProgramTerminationTest, AWindowThatRestsAtTheEdgeIsPutBack) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    const Rect tucked = ProgramOnX::atLeftEdge(home);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, tucked));
    ASSERT_TRUE(program.staysAt(window, tucked));

    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.staysAt(window, home));
    EXPECT_THAT(program.linesSinceReady(),
                ElementsAre("Quorvel: tucked " + program.path + " window to left",
                            "Quorvel: untucked window"));
}

TEST_P(ProgramTerminationTest, AWindowOnItsWayToTheEdgeIsPutBack) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntilUnderWay(window, home, ProgramOnX::atLeftEdge(home)));

    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.staysAt(window, home));
}

TEST_P(ProgramTerminationTest, AWindowOnItsWayHomeGetsThere) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    const Rect tucked = ProgramOnX::atLeftEdge(home);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, tucked));
    ASSERT_TRUE(program.staysAt(window, tucked));
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntilUnderWay(window, tucked, home));

    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.staysAt(window, home));
}

TEST_P(ProgramTerminationTest, WhatWasHiddenForTheBottomEdgeIsShown) {
    const xcb_window_t window = program.startWithWindow("bottom");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return isHidden(window); }));

    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
    EXPECT_TRUE(waitUntil([&] { return !isHidden(window); }));
    EXPECT_TRUE(program.staysAt(window, home));
    EXPECT_THAT(program.linesSinceReady(),
                ElementsAre("Quorvel: hid " + program.path + " (bottom tuck)"));
}

TEST_P(ProgramTerminationTest, WhatTheUserHidStaysHiddenWhereItCanBeReached) {
    const xcb_window_t window = program.startWithWindow("none");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(waitUntil([&] { return isHidden(window); }));

    EXPECT_EQ(program.terminate(), 0);
    if (GetParam() == WindowManagerKind::i3) {
        // Nobody else could bring it back.
        EXPECT_TRUE(program.waitForFrame(window, home));
        EXPECT_TRUE(program.staysAt(window, home));
    } else {
        EXPECT_TRUE(neverWithin(300ms, [&] { return !isHidden(window); }));
        program.probe().activate(window);
        EXPECT_TRUE(program.waitForFrame(window, home));
        EXPECT_TRUE(program.waitUntilActive(window));
    }
}

class ProgramTerminationOnOpenboxTest : public testing::Test {
protected:
    ProgramWithNotes program;
};

TEST_F(ProgramTerminationOnOpenboxTest, ManyWindowsAreAllPutBack) {
    const xcb_window_t first = program.startWithWindow("right");
    const xcb_window_t second = program.notes.open({300, 250, 350, 280});
    const xcb_window_t third = program.notes.open({500, 400, 300, 200});
    std::map<xcb_window_t, Rect> homes;
    for (const xcb_window_t window : {first, second, third}) {
        program.probe().activate(window);
        ASSERT_TRUE(program.waitUntilActive(window));
        const Rect home = homes[window] = program.seen(window);
        program.press(program.shortcut);
        ASSERT_TRUE(program.waitForFrame(window, {1278, home.y, home.width, home.height}));
    }
    EXPECT_EQ(program.terminate(), 0);
    for (const auto& [window, home] : homes) EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_F(ProgramTerminationOnOpenboxTest, ASecondSignalChangesNothing) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    program.sendTerminate();
    program.sendTerminate();  // impatient
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
    EXPECT_THAT(program.linesSinceReady(), ElementsAre(testing::_, "Quorvel: untucked window"));
}

TEST_F(ProgramTerminationOnOpenboxTest, AnApplicationThatDoesNotAnswerIsPutBackToo) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    program.notes.suspend();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
    program.notes.resume();
    EXPECT_TRUE(program.staysAt(window, home));
}

TEST_F(ProgramTerminationOnOpenboxTest, AnOpenAlertDoesNotHoldItUp) {
    program.bind({{"/nowhere/Missing.desktop", program.shortcut}});
    program.start();
    program.press(program.shortcut);
    const xcb_window_t alert = program.waitForOwnWindow();
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
}

// The window manager does not know where the window really is: its end, and that of the one after
// it, must not strand the window.
TEST_F(ProgramTerminationOnOpenboxTest, AWindowIsBackEvenWhenItsWindowManagerWasReplaced) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    const Rect client = *program.probe().clientArea(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    ASSERT_TRUE(program.staysAt(window, ProgramOnX::atLeftEdge(home)));

    program.session.stopWindowManager();
    program.session.startWindowManager(WindowManagerKind::xfwm4);
    program.session.waitUntilShown(window);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        return now.x == home.x && now.y == home.y;
    })) << testing::PrintToString(program.seen(window).x);
    EXPECT_EQ(program.probe().clientArea(window)->width, client.width);
    EXPECT_EQ(program.probe().clientArea(window)->height, client.height);
}

TEST_F(ProgramTerminationOnOpenboxTest, AWindowIsBackEvenWhenItsWindowManagerWasKilled) {
    const xcb_window_t window = program.startWithWindow("left");
    const Rect home = program.seen(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));

    program.session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return program.probe().frameOf(window) == window; }));
    EXPECT_EQ(program.terminate(), 0);
    // Without the decorations that it had, but where they were.
    EXPECT_TRUE(waitUntil([&] {
        const Rect now = program.seen(window);
        return now.x == home.x && now.y == home.y;
    })) << testing::PrintToString(program.seen(window));
}

}  // namespace
}  // namespace quorvel::test
