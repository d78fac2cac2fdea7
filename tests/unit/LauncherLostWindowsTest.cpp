// What a run that was killed has left, and the next one finds.

#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class LauncherLostWindowsTest : public LauncherFixture {
protected:
    static constexpr Rect home = editorHome;

    void SetUp() override {
        sim.pointer.moveTo({720, 450});
        bind({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
        place({{editor, displayId(1), "none", "left"}});
        launch();
    }

    /// Killed, and started again.
    void crashAndLaunch() {
        controller.reset();
        sim.crash();
        sim.log.lines.clear();
        launch();
    }
    static auto putBack(int count) {
        return Contains("Quorvel: put back " + std::to_string(count) +
                        " window(s) that an earlier run left");
    }
    static auto nothingPutBack() { return Not(Contains(HasSubstr("put back"))); }
};

TEST_F(LauncherLostWindowsTest, TuckedAndHiddenWindowsAreBackAndOneLineSaysSo) {
    const AXWindow tucked = tuckEditor();
    sim.start(browser);
    press(browserKeys);
    ASSERT_TRUE(sim.applications.isHidden({browser, 0}));
    crashAndLaunch();
    EXPECT_EQ(sim.frameAX(tucked), home);
    EXPECT_FALSE(sim.applications.isHidden({browser, 0}));
    EXPECT_THAT(sim.log.lines, putBack(2));
}

TEST_F(LauncherLostWindowsTest, AWindowInTheMiddleOfItsSlideIsBack) {
    const AXWindow window = sim.start(editor, home);
    press(editorKeys);
    sim.advance(std::chrono::milliseconds(80));
    ASSERT_LT(sim.frameAX(window)->x, 0);
    crashAndLaunch();
    EXPECT_EQ(sim.frameAX(window), home);
    EXPECT_THAT(sim.log.lines, putBack(1));
}

TEST_F(LauncherLostWindowsTest, WhatSomebodyHasBroughtBackMeanwhileStaysThere) {
    const AXWindow window = tuckEditor();
    controller.reset();
    sim.crash();
    sim.server.drag(window.element, {300, 200});
    sim.log.lines.clear();
    launch();
    EXPECT_EQ(sim.frameAX(window)->origin(), (Point{300, 200}));
    EXPECT_THAT(sim.log.lines, nothingPutBack());
}

TEST_F(LauncherLostWindowsTest, WhatWasPutBackIsNotRememberedForTheRunAfter) {
    const AXWindow window = tuckEditor();
    crashAndLaunch();
    sim.server.drag(window.element, {-700, 200});
    crashAndLaunch();
    EXPECT_EQ(sim.frameAX(window)->x, -700);
    EXPECT_THAT(sim.log.lines, nothingPutBack());
}

TEST_F(LauncherLostWindowsTest, WhereTheDisplayIsGoneItComesOntoOneThatIsThere) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1440, 900})});
    place({{editor, displayId(2), "none", "right"}});
    sim.settle();
    const AXWindow window = sim.start(editor, {1600, 100, 800, 600});
    press(editorKeys);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(window)->x, 2878);
    controller.reset();
    sim.crash();
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900})});
    launch();
    EXPECT_EQ(sim.frameAX(window)->origin(), (Point{640, 100}));
}

TEST_F(LauncherLostWindowsTest, AMaximizedWindowIsMaximizedAgain) {
    const AXWindow window = sim.start(editor, {0, 0, 1440, 900});
    sim.server.window(window.element).isMaximized = true;
    press(editorKeys);
    waitForSlides();
    ASSERT_FALSE(sim.server.window(window.element).isMaximized);
    crashAndLaunch();
    EXPECT_TRUE(sim.server.window(window.element).isMaximized);
}

TEST_F(LauncherLostWindowsTest, AnOrderlyEndLeavesNothingToPutBack) {
    tuckEditor();
    terminate();
    crashAndLaunch();
    EXPECT_THAT(sim.log.lines, nothingPutBack());
}

TEST_F(LauncherLostWindowsTest, AnApplicationTakenFromTheListGetsItsWindowsBack) {
    const AXWindow tucked = tuckEditor();
    sim.start(browser);
    press(browserKeys);
    ASSERT_TRUE(sim.applications.isHidden({browser, 0}));
    Settings(sim.defaults).restoreDefaults();
    controller->reloadFromSettings();
    waitForSlides();
    EXPECT_EQ(sim.frameAX(tucked), home);
    EXPECT_FALSE(sim.applications.isHidden({browser, 0}));
}

TEST_F(LauncherLostWindowsTest, AReloadLeavesThoseThatStayInTheListWhereTheyAre) {
    const AXWindow tucked = tuckEditor();
    sim.start(browser);
    press(browserKeys);
    bind({{editor, "none", "false"}, {browser, "none", "false"}});
    controller->reloadFromSettings();
    waitForSlides();
    EXPECT_EQ(sim.frameAX(tucked)->x, -798);
    EXPECT_TRUE(sim.applications.isHidden({browser, 0}));
}

TEST_F(LauncherLostWindowsTest, ItTucksAndComesBackAsEverAfterwards) {
    const AXWindow window = tuckEditor();
    crashAndLaunch();
    sim.server.activate(window.element);
    sim.settle();
    press(editorKeys);
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window)->x, -798);
    press(editorKeys);
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window), home);
}

}  // namespace
}  // namespace quorvel
