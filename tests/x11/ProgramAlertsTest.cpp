// What the program says to the user in windows of its own, and how it is answered.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/AccessibleApplication.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class ProgramAlertsTest : public testing::Test {
protected:
    ProgramWithNotes program;

    void start(const std::string& boundPath) {
        program.bind({{boundPath, program.shortcut}});
        program.start();
    }

    /// The texts and the buttons of what is shown.
    std::vector<AccessibleNode> shownBy(const std::string& boundPath) {
        program.bind({{boundPath, program.shortcut}});
        program.start({.environment = {{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}}});
        program.press(program.shortcut);
        program.waitForOwnWindow();
        const AccessibleApplication application(program.session.bus().address(), "Quorvel");
        std::vector<AccessibleNode> shown;
        waitUntil([&] {
            for (const auto& [node, owner, path] : application.widgets()) {
                const bool counts = node.role == "label" || node.role == "push button";
                if (counts && !node.name.empty()) shown.push_back(node);
            }
            return !shown.empty();
        });
        return shown;
    }

    xcb_window_t alertFor(const std::string& boundPath) {
        start(boundPath);
        program.press(program.shortcut);
        return program.waitForOwnWindow();
    }

    void keepPicture(const std::string& name) const {
        fs::create_directories(QUORVEL_PICTURES);
        program.probe().screenshot(fs::path(QUORVEL_PICTURES) / (name + ".png"));
    }

    std::string entry(const std::string& exec) const {
        return program.session.folder().write(
            "data/applications/org.quorvel.test.failing.desktop",
            "[Desktop Entry]\nType=Application\nName=Failing Program\nExec=" + exec + "\n");
    }
};

TEST_F(ProgramAlertsTest, AMissingApplicationIsNamedAndEscapeLeavesItAtThat) {
    const xcb_window_t alert = alertFor("/opt/nowhere/Missing Program.desktop");
    EXPECT_EQ(program.titleOf(alert), "Quorvel");
    keepPicture("program-missing");
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    // Neither another window nor a line, and the next press asks again.
    EXPECT_TRUE(neverWithin(
        200ms, [&] { return program.probe().windowOfClass("Quorvel") != XCB_WINDOW_NONE; }));
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
    program.press(program.shortcut);
    EXPECT_NE(program.waitForOwnWindow(), alert);
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramAlertsTest, AMissingApplicationIsReplacedInTheSettingsThatEnterOpens) {
    const xcb_window_t alert = alertFor("/opt/nowhere/Missing Program.desktop");
    program.session.input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(alert));
    const xcb_window_t settings = program.waitForOwnWindow();
    EXPECT_NE(settings, alert);
    EXPECT_EQ(program.titleOf(settings), "Quorvel Settings");
    EXPECT_TRUE(program.waitUntilActive(settings));
    keepPicture("program-settings-after-missing");
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramAlertsTest, AnAlertComesInFrontOfTheWindowThatIsUsed) {
    TestClient other(program.session.displayName());
    const xcb_window_t used = program.session.open(other, {.area = {0, 0, 1200, 700}});
    program.probe().activate(used);
    ASSERT_TRUE(program.waitUntilActive(used));
    const xcb_window_t alert = alertFor("/opt/nowhere/Missing.desktop");
    EXPECT_TRUE(waitUntil([&] { return program.probe().isAbove(alert, used); }));
}

TEST_F(ProgramAlertsTest, APressWhileAnAlertIsUpWaitsForItsAnswer) {
    program.bind(
        {{"/opt/nowhere/Missing.desktop", "control,option,M"}, {program.path, program.shortcut}});
    program.start();
    program.press("control,option,M");
    const xcb_window_t alert = program.waitForOwnWindow();
    program.press(program.shortcut);
    EXPECT_TRUE(neverWithin(300ms, [&] { return program.notes.launches() > 0; }));
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_TRUE(program.waitUntilActive(program.notes.waitForWindow()));
    EXPECT_EQ(program.notes.launches(), 1);
}

TEST_F(ProgramAlertsTest, AProgramThatCannotBeStartedIsToldAndLogged) {
    const std::string path = entry("/opt/nowhere/program --option");
    const xcb_window_t alert = alertFor(path);
    EXPECT_THAT(
        program.linesSinceReady(),
        ElementsAre("Quorvel: failed to open " + path +
                    " — The program “/opt/nowhere/program” of “" + path + "” is not installed."));
    keepPicture("program-not-opened");
    program.session.input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_TRUE(neverWithin(
        200ms, [&] { return program.probe().windowOfClass("Quorvel") != XCB_WINDOW_NONE; }));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramAlertsTest, AnEntryThatIsNoneIsToldAndLogged) {
    const std::string path =
        program.session.folder().write("data/applications/broken.desktop", "nothing of the kind");
    const xcb_window_t alert = alertFor(path);
    const auto lines = program.linesSinceReady();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0], testing::StartsWith("Quorvel: failed to open " + path +
                                              " — The desktop "
                                              "entry “" +
                                              path + "” is malformed: "));
    program.session.input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramAlertsTest, TheMissingApplicationsAlertHasItsTextsAndButtons) {
    const std::string path = "/opt/nowhere/Missing Program.desktop";
    EXPECT_THAT(shownBy(path),
                UnorderedElementsAre(
                    AccessibleNode{"label", "Missing Program not found"},
                    AccessibleNode{"label", "Nothing is installed at:\n" + path +
                                                "\n\nChoose a different application in Settings."},
                    AccessibleNode{"push button", "Open Settings…"},
                    AccessibleNode{"push button", "Cancel"}));
}

TEST_F(ProgramAlertsTest, TheFailedOpeningsAlertHasItsTextsAndButton) {
    const std::string path = entry("/opt/nowhere/program");
    EXPECT_THAT(
        shownBy(path),
        UnorderedElementsAre(AccessibleNode{"label", "Could not open Failing Program"},
                             AccessibleNode{"label", "The program “/opt/nowhere/program” of “" +
                                                         path + "” is not installed."},
                             AccessibleNode{"push button", "OK"}));
}

TEST_F(ProgramAlertsTest, TextsThatLookLikeMarkupAreShownAsTheyAre) {
    const std::string path = "/opt/nowhere/<b>bold<b> &amp; %s %@\nof two lines.desktop";
    EXPECT_THAT(shownBy(path),
                UnorderedElementsAre(
                    AccessibleNode{"label", "<b>bold<b> &amp; %s %@\nof two lines not found"},
                    AccessibleNode{"label", "Nothing is installed at:\n" + path +
                                                "\n\nChoose a different application in Settings."},
                    AccessibleNode{"push button", "Open Settings…"},
                    AccessibleNode{"push button", "Cancel"}));
    keepPicture("program-missing-markup");
}

TEST_F(ProgramAlertsTest, AProgramThatEndsAtOnceIsNoFailureToOpen) {
    start(entry("/bin/false"));
    program.press(program.shortcut);
    EXPECT_TRUE(neverWithin(
        400ms, [&] { return program.probe().windowOfClass("Quorvel") != XCB_WINDOW_NONE; }));
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
    EXPECT_EQ(program.terminate(), 0);
}

class ProgramWithoutManagerTest : public testing::Test {
protected:
    ProgramWithNotes program;

    xcb_window_t promptWindow() const {
        // There is no list of windows to look it up in.
        for (const xcb_window_t window : program.probe().stacking()) {
            if (program.titleOf(window) == "Quorvel" && program.probe().isViewable(window)) {
                return window;
            }
        }
        return XCB_WINDOW_NONE;
    }
};

TEST_F(ProgramWithoutManagerTest, ItStartsAndSaysThatItMayNotMoveWindows) {
    program.session.stopWindowManager();
    program.bind({{program.path, program.shortcut, "left"}});
    program.start();
    EXPECT_THAT(program.logLines(), testing::Contains("Quorvel: accessibility not granted"));
    program.press(program.shortcut);
    EXPECT_TRUE(program.notes.waitUntilRunning());
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramWithoutManagerTest, ATuckIsRefusedWithALineAndAnExplanation) {
    const xcb_window_t window = program.startWithWindow("left");
    program.session.windowManager()->kill();
    ASSERT_TRUE(waitUntil([&] { return program.probe().frameOf(window) == window; }));
    const Rect bare = program.seen(window);

    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForLine("Quorvel: tuck requested but Accessibility is not granted."));
    EXPECT_TRUE(waitUntil([&] { return promptWindow() != XCB_WINDOW_NONE; }));
    fs::create_directories(QUORVEL_PICTURES);
    program.probe().screenshot(fs::path(QUORVEL_PICTURES) / "program-not-granted.png");
    EXPECT_EQ(program.seen(window), bare);
    EXPECT_EQ(program.notes.launches(), 1);
    EXPECT_EQ(program.terminate(), 0);
}

}  // namespace
}  // namespace quorvel::test
