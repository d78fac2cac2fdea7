#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LauncherOpeningTest : public LauncherFixture {
protected:
    void SetUp() override {
        bind({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
        launch();
        sim.log.lines.clear();
    }

    bool isHidden(const std::string& path) { return sim.applications.isHidden({path, 0}); }

    void activateOrTuck(const std::string& path, const std::string& edgeHintRaw) {
        controller->activateOrTuck(path, edgeHintRaw);
        sim.settle();
    }

    static Alert missing(const std::string& name, const std::string& path) {
        return {
            name + " not found",
            "Nothing is installed at:\n" + path + "\n\nChoose a different application in Settings.",
            {"Open Settings…", "Cancel"}};
    }
};

TEST_F(LauncherOpeningTest, AnApplicationThatDoesNotRunIsLaunched) {
    sim.install(editor);
    activateOrTuck(editor, "left");
    EXPECT_EQ(sim.applications.launchCounts[editor], 1);
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
    EXPECT_THAT(sim.log.lines, IsEmpty());
    EXPECT_THAT(interface.alerts, IsEmpty());
}

TEST_F(LauncherOpeningTest, AnApplicationInTheBackgroundIsActivatedAndNotLaunchedAgain) {
    sim.start(editor);
    sim.start(browser);
    activateOrTuck(editor, "left");
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
    EXPECT_EQ(sim.applications.launchCounts[editor], 0);
}

TEST_F(LauncherOpeningTest, InFrontWithoutAnEdgeItIsHidden) {
    sim.start(editor);
    activateOrTuck(editor, "none");
    EXPECT_TRUE(isHidden(editor));
    activateOrTuck(editor, "none");
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
}

TEST_F(LauncherOpeningTest, ATextThatIsNoEdgeCountsAsNone) {
    sim.start(editor);
    activateOrTuck(editor, "top");
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(LauncherOpeningTest, InFrontWithAnEdgeItIsTucked) {
    place({{editor, displayId(1), "none", "left"}});
    const AXWindow window = sim.start(editor, {100, 100, 800, 600});
    activateOrTuck(editor, "left");
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window), (Rect{-798, 100, 800, 600}));
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(LauncherOpeningTest, WithoutAnEdgeButTuckedFromEarlierAllItsWindowsAreInsteadPutBack) {
    place({{editor, displayId(1), "none", "left"}});
    const AXWindow first = sim.start(editor, {100, 100, 800, 600});
    activateOrTuck(editor, "left");
    waitForSlides();
    const AXWindow second = sim.start(editor, {300, 200, 400, 300});
    activateOrTuck(editor, "left");
    waitForSlides();
    ASSERT_EQ(sim.frameAX(second), (Rect{-398, 200, 400, 300}));

    activateOrTuck(editor, "none");
    waitForSlides();
    EXPECT_EQ(sim.frameAX(first), (Rect{100, 100, 800, 600}));
    EXPECT_EQ(sim.frameAX(second), (Rect{300, 200, 400, 300}));
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(LauncherOpeningTest, InTheBackgroundWithATuckedWindowItIsOnlyActivated) {
    place({{editor, displayId(1), "none", "left"}});
    const AXWindow window = sim.start(editor);
    activateOrTuck(editor, "left");
    waitForSlides();
    sim.start(browser);
    sim.log.lines.clear();

    activateOrTuck(editor, "left");
    waitForSlides();
    EXPECT_EQ(sim.applications.frontmostApplication()->bundlePath, editor);
    EXPECT_EQ(sim.frameAX(window)->x, -798);
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

TEST_F(LauncherOpeningTest, APathWithATrailingSlashIsNotTheFrontmostApplication) {
    sim.start(editor);
    const std::string path = std::string(editor) + "/";
    sim.install(path);
    activateOrTuck(path, "none");
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(sim.applications.launchCounts[path], 1);
}

TEST_F(LauncherOpeningTest, AnApplicationOfUnknownPlaceInFrontLeadsToOpening) {
    sim.server.open({});
    sim.install(editor);
    activateOrTuck(editor, "none");
    EXPECT_EQ(sim.applications.launchCounts[editor], 1);
}

// Alerts
// -------------------------------------------------------------------------------------------

TEST_F(LauncherOpeningTest, AMissingApplicationRaisesTheAlertWithoutALine) {
    activateOrTuck(editor, "left");
    EXPECT_THAT(interface.alerts, ElementsAre(missing("editor", editor)));
    EXPECT_EQ(interface.settingsShown, 0);
    EXPECT_THAT(sim.log.lines, IsEmpty());
}

TEST_F(LauncherOpeningTest, TheFirstButtonOfThatAlertOpensTheSettings) {
    interface.answer = [](const Alert&) { return 0; };
    activateOrTuck(editor, "none");
    EXPECT_EQ(interface.settingsShown, 1);
}

TEST_F(LauncherOpeningTest, APathOfNoEntryIsNamedByItsLastComponentWithoutExtension) {
    activateOrTuck("/opt/Some Tool 2.1.app/", "none");
    EXPECT_THAT(interface.alerts, ElementsAre(missing("Some Tool 2.1", "/opt/Some Tool 2.1.app/")));
}

TEST_F(LauncherOpeningTest, AnEntryThatPointsNowhereIsMissing) {
    sim.files.addLink(editor, "/removed/editor.desktop");
    activateOrTuck(editor, "none");
    EXPECT_THAT(interface.alerts, ElementsAre(missing("editor", editor)));
}

TEST_F(LauncherOpeningTest, AFailureToOpenIsLoggedThenShown) {
    sim.install(editor, "Text Editor", {.error = "The program was not found."});
    std::vector<std::string> linesWhenShown;
    interface.answer = [&](const Alert&) {
        linesWhenShown = sim.log.lines;
        return 0;
    };
    activateOrTuck(editor, "none");
    EXPECT_THAT(linesWhenShown, ElementsAre(formatted("Quorvel: failed to open %@ — The program "
                                                      "was not found.",
                                                      editor)));
    EXPECT_THAT(
        interface.alerts,
        ElementsAre(Alert{"Could not open Text Editor", "The program was not found.", {"OK"}}));
    EXPECT_EQ(interface.settingsShown, 0);
}

TEST_F(LauncherOpeningTest, WithoutTheInterfaceAnAlertIsALineAndCountsAsCancelled) {
    interfaceIsMissing = true;
    activateOrTuck(editor, "none");
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: alert not shown — editor not found"));
    EXPECT_FALSE(sim.runLoop.isModal());
}

TEST_F(LauncherOpeningTest, TriggersThatArriveDuringAnAlertWaitForItsEnd) {
    sim.install(browser);
    interface.answer = [&](const Alert&) {
        EXPECT_TRUE(sim.runLoop.isModal());
        press(browserKeys);
        EXPECT_EQ(sim.applications.launchCounts[browser], 0);
        return 1;
    };
    press(editorKeys);
    EXPECT_EQ(sim.applications.launchCounts[browser], 1);
    EXPECT_EQ(interface.alerts.size(), 1u);
}

TEST_F(LauncherOpeningTest, AnAlertForEachOfTwoQueuedTriggersComesAfterTheOther) {
    interface.answer = [&](const Alert&) {
        if (interface.alerts.size() == 1) press(browserKeys);
        return 1;
    };
    press(editorKeys);
    EXPECT_THAT(interface.alerts,
                ElementsAre(missing("editor", editor), missing("browser", browser)));
}

TEST_F(LauncherOpeningTest, ACompletionThatOutlivesTheControllerIsSkipped) {
    sim.install(editor, "Text Editor", {.error = "Too late."});
    controller->activateOrTuck(editor, "none");
    controller.reset();
    sim.settle();
    EXPECT_THAT(sim.log.lines, IsEmpty());
    EXPECT_THAT(interface.alerts, IsEmpty());
}

}  // namespace
}  // namespace quorvel
