#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class LauncherActivationTest : public LauncherFixture {
protected:
    const Rect home{200, 100, 800, 600};
    const Rect browserHome{300, 50, 700, 500};
    const Point away{1200, 20};
    const Point onStrip{3, 500};

    void launchWith(const std::string& autoTuck, const std::string& edge) {
        sim.pointer.moveTo(away);
        bind({{editor, editorKeys, autoTuck}, {browser, browserKeys, "false"}});
        place({{editor, displayId(1), "none", edge}});
        launch();
        sim.log.lines.clear();
    }

    AXWindow startEditor(const Rect& frameAX) {
        const AXWindow window = sim.start(editor, frameAX);
        sim.settle();
        return window;
    }

    void startBrowser() {
        browserWindow = sim.start(browser, browserHome);
        waitForSlides();
    }

    void activate(AXWindow window) {
        sim.server.activate(window.element);
        waitForSlides();
    }

    std::string autoTucked() const {
        return formatted("Quorvel: auto-tucked %@ window to left", editor);
    }

    AXWindow browserWindow;
};

TEST_F(LauncherActivationTest, AnAutoApplicationIsTuckedWhenItIsLeftAndPutBackWhenItIsActive) {
    launchWith(" YES ", "left");
    const AXWindow window = startEditor(home);
    startBrowser();
    EXPECT_EQ(sim.frameAX(window)->x, -798);
    EXPECT_THAT(sim.log.taken(), ElementsAre(autoTucked()));
    activate(window);
    EXPECT_EQ(sim.frameAX(window), home);
    EXPECT_THAT(sim.log.taken(), ElementsAre("Quorvel: untucked window"));
    activate(browserWindow);
    EXPECT_EQ(sim.frameAX(window)->x, -798);
}

TEST_F(LauncherActivationTest, OthersAreLeftAsTheyAre) {
    launchWith("y", "left");
    const AXWindow window = startEditor(home);
    startBrowser();
    EXPECT_EQ(sim.frameAX(window), home);
    activate(window);
    press(editorKeys);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(window)->x, -798);
    activate(browserWindow);
    activate(window);
    EXPECT_EQ(sim.frameAX(window)->x, -798) << "only an automatic tuck ends with the activation";
}

TEST_F(LauncherActivationTest, AnAutoApplicationWithoutAnEdgeIsNotTucked) {
    launchWith("true", "none");
    const AXWindow window = startEditor(home);
    startBrowser();
    EXPECT_EQ(sim.frameAX(window), home);
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

TEST_F(LauncherActivationTest, AnAutoApplicationAtTheBottomIsHiddenWhenItIsLeft) {
    launchWith("true", "bottom");
    startEditor(home);
    startBrowser();
    EXPECT_TRUE(sim.applications.isHidden({editor, 0}));
    EXPECT_THAT(sim.log.lines,
                ElementsAre(formatted("Quorvel: auto-hid %@ (bottom tuck)", editor)));
}

TEST_F(LauncherActivationTest, AnEdgeThatBordersAnotherDisplayHidesTheAutoApplication) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {-1440, 0, 1440, 900})});
    sim.advance(1s);
    launchWith("true", "left");
    startEditor(home);
    startBrowser();
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: auto-hid %@ (left edge borders another display)", editor)));
}

TEST_F(LauncherActivationTest, ARevealedWindowGoesBackWhenItsApplicationIsLeft) {
    launchWith("false", "left");
    const AXWindow window = startEditor(home);
    press(editorKeys);
    waitForSlides();
    startBrowser();
    sim.pointer.moveTo(onStrip);
    sim.advance(1s);
    ASSERT_EQ(sim.frameAX(window)->x, 0);
    ASSERT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
    // By the keyboard: the pointer stays.
    activate(browserWindow);
    EXPECT_EQ(sim.frameAX(window)->x, -798);
}

TEST_F(LauncherActivationTest, RevealingAnAutoWindowDoesNotPutItBack) {
    launchWith("true", "left");
    const AXWindow window = startEditor(home);
    startBrowser();
    sim.pointer.moveTo(onStrip);
    sim.advance(1s);
    EXPECT_EQ(sim.frameAX(window)->x, 0);
    sim.pointer.moveTo(away);
    sim.advance(1s);
    EXPECT_EQ(sim.frameAX(window)->x, -798);
}

TEST_F(LauncherActivationTest, WhileOneWindowIsRevealedTheOthersOfItsApplicationStayTucked) {
    launchWith("true", "left");
    const AXWindow first = startEditor({200, 100, 800, 300});
    startBrowser();
    const AXWindow second = sim.start(editor, {200, 500, 800, 300});
    sim.settle();
    // Its activation put the first one back; leaving tucks one window, so it takes two turns.
    waitForSlides();
    activate(browserWindow);
    ASSERT_EQ(sim.frameAX(second)->x, -798);
    activate(first);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(second)->x, 200);
    press(editorKeys);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(first)->x, -798);
    sim.server.activate(second.element);
    press(editorKeys);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(second)->x, -798);
    activate(browserWindow);

    sim.pointer.moveTo({3, 900 - 650});
    sim.advance(1s);
    EXPECT_EQ(sim.frameAX(second)->x, 0);
    EXPECT_EQ(sim.frameAX(first)->x, -798);
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
}

TEST_F(LauncherActivationTest, OurOwnShortcutBringsAnAutoApplicationBack) {
    launchWith("on", "left");
    const AXWindow window = startEditor(home);
    startBrowser();
    ASSERT_EQ(sim.frameAX(window)->x, -798);
    press(editorKeys);
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window), home);
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
}

TEST_F(LauncherActivationTest, ApplicationsOfUnknownPlaceAreIgnored) {
    launchWith("true", "left");
    sim.server.open({});
    sim.settle();
    sim.server.open({});
    sim.settle();
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

TEST_F(LauncherActivationTest, NothingIsDoneWhileOthersAreStillBeingTold) {
    launchWith("true", "left");
    const AXWindow window = startEditor(home);
    bool wasTold = false;
    const auto later = sim.applications.onActivated([&](const RunningApplication&) {
        wasTold = true;
        EXPECT_THAT(sim.log.lines, IsEmpty());
        EXPECT_EQ(sim.frameAX(window), home);
    });
    startBrowser();
    EXPECT_TRUE(wasTold);
    EXPECT_THAT(sim.log.lines, Contains(autoTucked()));
}

TEST_F(LauncherActivationTest, WhatOutlivesTheControllerIsSkipped) {
    launchWith("true", "left");
    startEditor(home);
    const auto later =
        sim.applications.onActivated([this](const RunningApplication&) { controller.reset(); });
    startBrowser();
    EXPECT_FALSE(controller);
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

TEST_F(LauncherActivationTest, ObserversWorkOnlyFromTheLaunchOn) {
    bind({{editor, editorKeys, "true"}});
    place({{editor, displayId(1), "none", "left"}});
    create().reloadFromSettings();
    const AXWindow window = startEditor(home);
    startBrowser();
    EXPECT_EQ(sim.frameAX(window), home);
}

TEST_F(LauncherActivationTest, ABindingRemovedWhileItsWindowIsTuckedLosesNothing) {
    launchWith("true", "left");
    const AXWindow window = startEditor(home);
    startBrowser();
    ASSERT_EQ(sim.frameAX(window)->x, -798);
    bind({});
    controller->reloadFromSettings();
    sim.pointer.moveTo(onStrip);
    sim.advance(1s);
    EXPECT_EQ(sim.frameAX(window), home);
}

TEST_F(LauncherActivationTest, ABindingRemovedWhileItsApplicationIsHiddenIsShown) {
    launchWith("true", "bottom");
    startEditor(home);
    startBrowser();
    ASSERT_TRUE(sim.applications.isHidden({editor, 0}));
    bind({});
    controller->reloadFromSettings();
    sim.settle();
    EXPECT_FALSE(sim.applications.isHidden({editor, 0}));
}

TEST_F(LauncherActivationTest, ABindingByAnotherPathRemovedWhileHiddenIsShown) {
    const std::string alias = "/home/user/my-editor.desktop";
    sim.applications.addAlias(editor, alias);
    sim.files.add(alias);
    bind({{alias, editorKeys, "true"}});
    place({{alias, displayId(1), "none", "bottom"}});
    launch();
    startEditor(home);
    startBrowser();
    ASSERT_TRUE(sim.applications.isHidden({editor, 0}));
    bind({});
    controller->reloadFromSettings();
    sim.settle();
    EXPECT_FALSE(sim.applications.isHidden({editor, 0}));
}

TEST_F(LauncherActivationTest,
       AnApplicationHiddenAgainBeforeItsActivationIsHeardOfIsShownAtTheEnd) {
    launchWith("true", "bottom");
    const AXWindow window = startEditor(home);
    startBrowser();
    ASSERT_TRUE(sim.applications.isHidden({editor, 0}));
    // Pressed as the application becomes active, and ahead of that news.
    const auto spec = HotKeySpec::parse(editorKeys);
    sim.hotKeys.press(virtualKeyCodes().at(spec->keyName), spec->carbonMask());
    activate(window);
    ASSERT_TRUE(sim.applications.isHidden({editor, 0}));
    terminate();
    EXPECT_FALSE(sim.applications.isHidden({editor, 0}));
}

TEST_F(LauncherActivationTest, TheSignalPutsBackWhatIsTuckedRevealedOrHalfway) {
    launchWith("false", "left");
    const AXWindow revealed = startEditor({200, 100, 800, 300});
    press(editorKeys);
    waitForSlides();
    const AXWindow tucked = startEditor({250, 500, 800, 300});
    press(editorKeys);
    waitForSlides();
    const AXWindow halfway = startEditor(home);
    sim.pointer.moveTo({3, 650});
    sim.advance(1s);
    ASSERT_EQ(sim.frameAX(revealed)->x, 0);
    sim.server.activate(halfway.element);
    sim.settle();
    sim.pointer.moveTo({400, 650});
    press(editorKeys);
    sim.advance(80ms);
    ASSERT_NE(sim.frameAX(halfway), home);
    terminate();
    EXPECT_EQ(sim.frameAX(revealed)->origin(), (Point{200, 100}));
    EXPECT_EQ(sim.frameAX(tucked)->origin(), (Point{250, 500}));
    EXPECT_EQ(sim.frameAX(halfway), home);
    EXPECT_TRUE(application.isEnding());
}

TEST_F(LauncherActivationTest, OneWindowThatIsChosenBringsBackAllThatWereHiddenWithIt) {
    launchWith("true", "bottom");
    const AXWindow one = startEditor({100, 100, 400, 300});
    const AXWindow two = startEditor({600, 100, 400, 300});
    sim.start(browser);
    sim.advance(1s);
    ASSERT_TRUE(sim.server.window(one.element).isIconic);
    ASSERT_TRUE(sim.server.window(two.element).isIconic);
    sim.server.activate(one.element);
    sim.advance(1s);
    EXPECT_FALSE(sim.server.window(two.element).isIconic);
    terminate();
    EXPECT_FALSE(sim.server.window(one.element).isIconic);
    EXPECT_FALSE(sim.server.window(two.element).isIconic);
}

}  // namespace
}  // namespace quorvel
