#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;

class LauncherTerminationTest : public LauncherFixture {
protected:
    void SetUp() override {
        bind({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
        place({{editor, displayId(1), "none", "left"}});
        launch();
        sim.log.lines.clear();
    }

    bool hasEnded() const { return application.isEnding() && sim.runLoop.isStopped(); }
};

TEST_F(LauncherTerminationTest, TheSignalPutsTuckedWindowsBackBeforeTheEnd) {
    const AXWindow window = sim.start(editor, {100, 100, 800, 600});
    press(editorKeys);
    waitForSlides();
    ASSERT_EQ(sim.frameAX(window)->x, -798);

    terminate();
    EXPECT_EQ(sim.frameAX(window), (Rect{100, 100, 800, 600}));
    EXPECT_TRUE(hasEnded());
    EXPECT_FALSE(sim.runLoop.diedOfSignal());
}

TEST_F(LauncherTerminationTest, AWindowInTheMiddleOfItsSlideIsPutBackToo) {
    const AXWindow window = sim.start(editor, {100, 100, 800, 600});
    press(editorKeys);
    sim.advance(std::chrono::milliseconds(80));
    ASSERT_LT(sim.frameAX(window)->x, 100);
    ASSERT_GT(sim.frameAX(window)->x, -798);
    terminate();
    EXPECT_EQ(sim.frameAX(window), (Rect{100, 100, 800, 600}));
}

TEST_F(LauncherTerminationTest, ApplicationsHiddenAtTheBottomAreShownAgain) {
    place({{editor, displayId(1), "none", "bottom"}});
    sim.start(editor);
    press(editorKeys);
    ASSERT_TRUE(sim.applications.isHidden({editor, 0}));
    terminate();
    EXPECT_FALSE(sim.applications.isHidden({editor, 0}));
}

TEST_F(LauncherTerminationTest, AnApplicationHiddenByAShortcutWithoutAnEdgeStaysHidden) {
    sim.start(browser);
    press(browserKeys);
    ASSERT_TRUE(sim.applications.isHidden({browser, 0}));
    terminate();
    EXPECT_TRUE(sim.applications.isHidden({browser, 0}));
}

TEST_F(LauncherTerminationTest, ASecondSignalChangesNothing) {
    sim.start(editor);
    press(editorKeys);
    waitForSlides();
    sim.log.lines.clear();
    sim.runLoop.sendTerminationSignal();
    sim.settle();
    sim.runLoop.sendTerminationSignal();
    sim.settle();
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: untucked window"));
}

TEST_F(LauncherTerminationTest, TheSignalAnswersAnAlertWithCancelAndThenEndsTheProgram) {
    const AXWindow window = sim.start(editor, {100, 100, 800, 600});
    press(editorKeys);
    waitForSlides();
    interface.answer = [&](const Alert&) {
        terminate();
        EXPECT_FALSE(hasEnded()) << "the program must not end below a running alert";
        return 0;  // "Open Settings…", were it not for the signal
    };
    press(browserKeys);  // not installed
    EXPECT_EQ(interface.alerts.size(), 1u);
    EXPECT_EQ(interface.settingsShown, 0);
    EXPECT_EQ(sim.frameAX(window), (Rect{100, 100, 800, 600}));
    EXPECT_TRUE(hasEnded());
}

TEST_F(LauncherTerminationTest, AfterTheSignalNoFurtherAlertDelaysTheEnd) {
    interface.answer = [&](const Alert&) {
        // A trigger that waits in front of the termination; not installed either.
        sim.runLoop.async([&] { controller->activateOrTuck(editor, "none"); });
        terminate();
        return 0;
    };
    press(browserKeys);
    EXPECT_EQ(interface.alerts.size(), 1u);
    EXPECT_TRUE(hasEnded());
}

TEST_F(LauncherTerminationTest, ASignalThatOutlivesTheControllerIsSkipped) {
    sim.runLoop.sendTerminationSignal();
    controller.reset();
    sim.settle();
    EXPECT_FALSE(application.isEnding());
}

}  // namespace
}  // namespace quorvel
