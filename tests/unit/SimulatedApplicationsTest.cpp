#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

const std::string editor = "/usr/share/applications/editor.desktop";
const std::string browser = "/usr/share/applications/browser.desktop";

class SimulatedApplicationsTest : public testing::Test {
protected:
    RunningApplication app(const std::string& path) {
        for (const auto& each : desktop.applications.runningApplications()) {
            if (each.bundlePath == path) return each;
        }
        ADD_FAILURE() << path << " is not running";
        return {};
    }
    bool isIconic(AXWindow window) { return desktop.server.window(window.element).isIconic; }
    std::vector<std::string> takeEvents() { return std::exchange(events, {}); }
    static std::string name(const RunningApplication& application) {
        return application.bundlePath.value_or("?");
    }

    SimulatedDesktop desktop;
    std::vector<std::string> events;
    Subscription activated = desktop.applications.onActivated(
        [this](const RunningApplication& a) { events.push_back("+" + name(a)); });
    Subscription deactivated = desktop.applications.onDeactivated(
        [this](const RunningApplication& a) { events.push_back("-" + name(a)); });
};

TEST_F(SimulatedApplicationsTest, OneApplicationAnEntryWithThePidOfItsMostRecentWindow) {
    desktop.server.open({.bundlePath = editor, .processIdentifier = 11});
    const auto second = desktop.server.open({.bundlePath = editor, .processIdentifier = 12});
    desktop.server.open({.bundlePath = browser, .processIdentifier = 20});
    EXPECT_EQ(desktop.applications.runningApplications(),
              (std::vector<RunningApplication>{{editor, 12}, {browser, 20}}));
    desktop.server.close(second);
    EXPECT_EQ(app(editor).processIdentifier, 11);
    EXPECT_EQ(desktop.applications.applicationWithProcessIdentifier(12), std::nullopt);
}

TEST_F(SimulatedApplicationsTest, AnApplicationWithoutWindowsIsNotRunning) {
    desktop.install(editor);
    EXPECT_TRUE(desktop.applications.runningApplications().empty());
    EXPECT_FALSE(desktop.applications.isHidden({editor, 11}));
}

TEST_F(SimulatedApplicationsTest, TwoApplicationsMaySharePid) {
    desktop.server.open({.bundlePath = editor, .processIdentifier = 11});
    desktop.server.open({.bundlePath = browser, .processIdentifier = 11});
    EXPECT_EQ(desktop.applications.runningApplications().size(), 2u);
    EXPECT_EQ(desktop.applications.applicationWithProcessIdentifier(11)->bundlePath, browser);
    desktop.applications.hide({editor, 11});
    EXPECT_TRUE(desktop.applications.isHidden({editor, 11}));
    EXPECT_FALSE(desktop.applications.isHidden({browser, 11}));
}

TEST_F(SimulatedApplicationsTest, ApplicationsWithoutAPathAreToldApartByTheirPid) {
    desktop.server.open({.processIdentifier = 11});
    desktop.server.open({.processIdentifier = 12});
    EXPECT_EQ(desktop.applications.runningApplications(),
              (std::vector<RunningApplication>{{std::nullopt, 11}, {std::nullopt, 12}}));
}

TEST_F(SimulatedApplicationsTest, UnhideShowsOnlyWhatHideIconified) {
    const AXWindow first = desktop.start(editor);
    const AXWindow second = desktop.start(editor);
    desktop.server.iconify(first.element);
    desktop.applications.hide(app(editor));
    EXPECT_TRUE(desktop.applications.isHidden(app(editor)));
    desktop.applications.unhide(app(editor));
    EXPECT_TRUE(isIconic(first));
    EXPECT_FALSE(isIconic(second));
    EXPECT_FALSE(desktop.applications.isHidden(app(editor)));
}

TEST_F(SimulatedApplicationsTest, UnhideShowsAllWhereNothingIsRemembered) {
    const AXWindow first = desktop.start(editor);
    const AXWindow second = desktop.start(editor);
    desktop.server.iconify(first.element);
    desktop.server.iconify(second.element);
    EXPECT_TRUE(desktop.applications.isHidden(app(editor)));
    desktop.applications.unhide(app(editor));
    EXPECT_FALSE(isIconic(first));
    EXPECT_FALSE(isIconic(second));
}

TEST_F(SimulatedApplicationsTest, UnhideDoesNotActivate) {
    desktop.start(editor);
    const AXWindow other = desktop.start(browser);
    desktop.applications.hide(app(editor));
    desktop.applications.unhide(app(editor));
    EXPECT_EQ(desktop.server.active(), other.element);
}

TEST_F(SimulatedApplicationsTest, HidingTheActiveApplicationHandsTheKeyboardToTheNext) {
    desktop.start(browser);
    desktop.start(editor);
    desktop.start(editor);
    desktop.settle();
    takeEvents();
    desktop.applications.hide(app(editor));
    EXPECT_EQ(desktop.applications.frontmostApplication()->bundlePath, browser);
    desktop.settle();
    EXPECT_EQ(takeEvents(), (std::vector<std::string>{"-" + editor, "+" + browser}));
}

TEST_F(SimulatedApplicationsTest, ActivateUnhidesAndTakesTheMostRecentWindow) {
    const AXWindow first = desktop.start(editor);
    const AXWindow second = desktop.start(editor);
    desktop.server.activate(first.element);
    desktop.start(browser);
    desktop.applications.hide(app(editor));
    desktop.applications.activate(app(editor));
    EXPECT_EQ(desktop.server.active(), first.element);
    EXPECT_FALSE(isIconic(second));
}

TEST_F(SimulatedApplicationsTest, CallsOnAnApplicationThatIsGoneDoNothing) {
    const AXWindow other = desktop.start(browser);
    const RunningApplication gone{editor, 99};
    desktop.applications.hide(gone);
    desktop.applications.unhide(gone);
    desktop.applications.activate(gone);
    EXPECT_EQ(desktop.server.active(), other.element);
}

TEST_F(SimulatedApplicationsTest, ActivationIsToldFromTheLoopAndOncePerApplication) {
    desktop.start(editor);
    desktop.start(editor);
    EXPECT_TRUE(events.empty());
    desktop.settle();
    EXPECT_EQ(takeEvents(), std::vector<std::string>{"+" + editor});
    desktop.start(browser);
    desktop.settle();
    EXPECT_EQ(takeEvents(), (std::vector<std::string>{"-" + editor, "+" + browser}));
}

TEST_F(SimulatedApplicationsTest, NoActiveWindowCountsOnlyAfterAWhile) {
    const AXWindow window = desktop.start(editor);
    desktop.settle();
    takeEvents();
    desktop.server.deactivateAll();
    desktop.advance(99ms);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(desktop.applications.frontmostApplication(), std::nullopt);
    desktop.advance(1ms);
    EXPECT_EQ(takeEvents(), std::vector<std::string>{"-" + editor});
    desktop.server.activate(window.element);
    desktop.settle();
    EXPECT_EQ(takeEvents(), std::vector<std::string>{"+" + editor});
}

TEST_F(SimulatedApplicationsTest, PassingThroughNoActiveWindowIsNoDeactivation) {
    const AXWindow window = desktop.start(editor);
    desktop.settle();
    takeEvents();
    desktop.server.deactivateAll();
    desktop.advance(50ms);
    desktop.server.activate(window.element);
    desktop.advance(1s);
    EXPECT_TRUE(events.empty());
}

TEST_F(SimulatedApplicationsTest, OurOwnWindowDeactivatesTheOthers) {
    desktop.start(editor);
    desktop.settle();
    takeEvents();
    desktop.server.open({.bundlePath = desktop.server.ownPath,
                         .processIdentifier = desktop.server.ownProcessIdentifier});
    desktop.settle();
    EXPECT_EQ(takeEvents(), (std::vector<std::string>{"-" + editor, "+" + desktop.server.ownPath}));
    EXPECT_EQ(desktop.applications.frontmostApplication()->processIdentifier,
              desktop.server.ownProcessIdentifier);
}

TEST_F(SimulatedApplicationsTest, ADyingApplicationIsDeactivated) {
    desktop.server.open({.bundlePath = editor, .processIdentifier = 11});
    desktop.settle();
    takeEvents();
    desktop.server.kill(11);
    desktop.advance(100ms);
    EXPECT_EQ(takeEvents(), std::vector<std::string>{"-" + editor});
}

TEST_F(SimulatedApplicationsTest, OpenLaunchesWhatIsNotRunning) {
    desktop.install(editor, "Editor", {.frameAX = {1, 2, 300, 200}, .delay = 50ms});
    int completions = 0;
    desktop.applications.open(editor, [&](const auto& error) {
        ++completions;
        EXPECT_EQ(error, std::nullopt);
    });
    EXPECT_EQ(completions, 0);
    desktop.settle();
    EXPECT_EQ(completions, 1);
    EXPECT_TRUE(desktop.applications.runningApplications().empty());
    desktop.advance(50ms);
    EXPECT_EQ(desktop.applications.frontmostApplication()->bundlePath, editor);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(desktop.applications.launchCounts[editor], 1);
}

TEST_F(SimulatedApplicationsTest, OpenActivatesWhatIsRunning) {
    const AXWindow window = desktop.start(editor);
    desktop.start(browser);
    desktop.applications.hide(app(editor));
    int completions = 0;
    desktop.applications.open(editor, [&](const auto&) { ++completions; });
    desktop.settle();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(desktop.server.active(), window.element);
    EXPECT_EQ(desktop.applications.launchCounts[editor], 0);
}

TEST_F(SimulatedApplicationsTest, AFailedLaunchGivesItsReasonOnce) {
    desktop.install(editor, "Editor", {.error = "Permission denied"});
    std::vector<std::optional<std::string>> errors;
    const auto note = [&](std::optional<std::string> error) { errors.push_back(error); };
    desktop.applications.open(editor, note);
    desktop.applications.open("/nowhere.desktop", note);
    EXPECT_TRUE(errors.empty());
    desktop.settle();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0], "Permission denied");
    EXPECT_NE(errors[1], std::nullopt);
}

TEST_F(SimulatedApplicationsTest, APreferredPathNamesTheApplication) {
    const std::string alias = "/home/user/.local/share/applications/editor.desktop";
    desktop.applications.addAlias(editor, alias);
    desktop.start(editor);
    EXPECT_EQ(desktop.applications.frontmostApplication()->bundlePath, editor);
    desktop.applications.prefer({browser, alias});
    EXPECT_EQ(desktop.applications.frontmostApplication()->bundlePath, alias);
    desktop.applications.hide(app(alias));
    EXPECT_TRUE(desktop.applications.isHidden(app(alias)));
}

}  // namespace
}  // namespace quorvel
