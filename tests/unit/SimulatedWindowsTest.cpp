#include <gtest/gtest.h>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

const std::string editor = "/usr/share/applications/editor.desktop";
const std::string browser = "/usr/share/applications/browser.desktop";

class SimulatedWindowsTest : public testing::Test {
protected:
    SimulatedWindow& server(AXWindow window) { return desktop.server.window(window.element); }
    std::optional<AXWindow> focused(const std::string& path) {
        return desktop.windows.focusedWindow(0, path).window;
    }

    SimulatedDesktop desktop;
};

TEST_F(SimulatedWindowsTest, ElementsAreNeverGivenOutTwice) {
    const AXWindow first = desktop.start(editor);
    desktop.server.close(first.element);
    EXPECT_FALSE(desktop.start(editor) == first);
}

TEST_F(SimulatedWindowsTest, FocusedWindowOfABackgroundApplicationIsItsMostRecentlyActive) {
    const AXWindow first = desktop.start(editor);
    desktop.start(editor);
    desktop.server.activate(first.element);
    desktop.start(browser);
    EXPECT_EQ(focused(editor), first);
}

TEST_F(SimulatedWindowsTest, FocusedWindowIsNeverIconic) {
    const AXWindow first = desktop.start(editor);
    const AXWindow second = desktop.start(editor);
    desktop.server.iconify(second.element);
    EXPECT_EQ(focused(editor), first);
    desktop.server.iconify(first.element);
    const FocusedWindowReading reading = desktop.windows.focusedWindow(0, editor);
    EXPECT_EQ(reading.error, 0);
    EXPECT_EQ(reading.window, std::nullopt);
}

TEST_F(SimulatedWindowsTest, FocusedWindowFallsBackToTheTopmost) {
    const AXWindow lower{desktop.server.open({.bundlePath = editor, .activates = false})};
    const AXWindow upper{desktop.server.open({.bundlePath = editor, .activates = false})};
    EXPECT_EQ(focused(editor), upper);
    desktop.windows.raise(lower);
    EXPECT_EQ(focused(editor), lower);
}

TEST_F(SimulatedWindowsTest, ADialogYieldsItsMainWindow) {
    const AXWindow main = desktop.start(editor);
    const auto dialog =
        desktop.server.open({.bundlePath = editor, .transientFor = main.element, .isModal = true});
    EXPECT_EQ(desktop.server.active(), dialog);
    EXPECT_EQ(focused(editor), main);
    desktop.server.activate(main.element);
    EXPECT_EQ(desktop.server.active(), dialog);
}

TEST_F(SimulatedWindowsTest, FocusedWindowStaysInsideTheApplicationWhereAPidIsShared) {
    const AXWindow mine{desktop.server.open({.bundlePath = editor, .processIdentifier = 11})};
    desktop.server.open({.bundlePath = browser, .processIdentifier = 11});
    EXPECT_EQ(desktop.windows.focusedWindow(11, editor).window, mine);
}

TEST_F(SimulatedWindowsTest, RaiseBringsToTheFrontWithoutTheKeyboard) {
    const AXWindow first = desktop.start(editor);
    const AXWindow second = desktop.start(browser);
    desktop.windows.raise(first);
    EXPECT_EQ(desktop.server.stacked().front()->handle(), first);
    EXPECT_EQ(desktop.server.active(), second.element);
}

TEST_F(SimulatedWindowsTest, AWindowThatIgnoresMovesSeemsToObeyUntilTheLastStep) {
    const AXWindow window = desktop.start(editor);
    const Rect before = *desktop.frameAX(window);
    server(window).faults.ignoresMoves = true;
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::intermediate), 0);
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::final), -1);
    EXPECT_EQ(desktop.frameAX(window), before);
}

TEST_F(SimulatedWindowsTest, AWindowThatAnswersWithAnErrorDoesSoAtEveryStep) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.moveError = 8;
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::intermediate), 8);
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::final), 8);
}

TEST_F(SimulatedWindowsTest, AClampedWindowStaysOnTheDisplayItIsOn) {
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                             SimulatedScreens::screen(2, {1440, 0, 1280, 800})});
    const AXWindow window = desktop.start(editor, {1500, 200, 800, 600});
    server(window).faults.isClampedToDisplay = true;
    desktop.windows.setOrigin(window, {3000, 2000}, MoveStep::final);
    // The second display reaches from y = 100 to y = 900 in AX space.
    EXPECT_EQ(desktop.frameAX(window), (Rect{1920, 300, 800, 600}));
}

TEST_F(SimulatedWindowsTest, AWindowVanishesAfterItsLastCall) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.vanishesAfterCalls = 2;
    EXPECT_TRUE(desktop.windows.readFrame(window).size);
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::final), 0);
    EXPECT_FALSE(desktop.windows.readFrame(window).size);
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::final), -1);
    EXPECT_TRUE(desktop.applications.runningApplications().empty());
}

TEST_F(SimulatedWindowsTest, ASlowWindowTakesItsTimeAndAHungOneTimesOut) {
    const AXWindow window = desktop.start(editor);
    const auto start = desktop.runLoop.uptime();
    server(window).faults.responseTime = 249ms;
    EXPECT_TRUE(desktop.windows.readFrame(window).positionAX);
    EXPECT_EQ(desktop.runLoop.uptime() - start, 249ms);
    server(window).faults.responseTime = 250ms;
    EXPECT_FALSE(desktop.windows.readFrame(window).positionAX);
    EXPECT_EQ(desktop.windows.setOrigin(window, {0, 0}, MoveStep::final), -1);
    EXPECT_EQ(desktop.windows.focusedWindow(0, editor).error, -1);
    EXPECT_EQ(desktop.runLoop.uptime() - start, 249ms + 3 * 250ms);
}

TEST_F(SimulatedWindowsTest, HoldingTakesTheMaximisedStateAwayUntilTheWindowIsHome) {
    const AXWindow window = desktop.start(editor, {0, 0, 1440, 900});
    server(window).isMaximized = true;
    EXPECT_EQ(desktop.windows.setOrigin(window, {-1438, 0}, MoveStep::final), -1);
    desktop.windows.hold(window, {0, 0, 1440, 900});
    EXPECT_EQ(desktop.windows.setOrigin(window, {-1438, 0}, MoveStep::final), 0);
    EXPECT_EQ(desktop.frameAX(window), (Rect{-1438, 0, 1440, 900}));
    desktop.windows.letGo(window, EndOfHold::putBack);
    desktop.windows.setOrigin(window, {-700, 0}, MoveStep::intermediate);
    EXPECT_FALSE(server(window).isMaximized);
    desktop.windows.setOrigin(window, {0, 0}, MoveStep::final);
    EXPECT_TRUE(server(window).isMaximized);
    EXPECT_FALSE(desktop.windows.isHeld(window));
}

TEST_F(SimulatedWindowsTest, AForgottenWindowStaysAsItIs) {
    const AXWindow window = desktop.start(editor, {0, 0, 1440, 900});
    server(window).isMaximized = true;
    desktop.windows.hold(window, {0, 0, 1440, 900});
    EXPECT_EQ(desktop.windows.heldFrameAX(window), (Rect{0, 0, 1440, 900}));
    desktop.windows.letGo(window, EndOfHold::forgotten);
    EXPECT_EQ(desktop.windows.heldFrameAX(window), std::nullopt);
    desktop.windows.setOrigin(window, {0, 0}, MoveStep::final);
    EXPECT_FALSE(server(window).isMaximized);
}

TEST_F(SimulatedWindowsTest, AWindowThatComesHomeOffEveryDisplayIsBroughtOntoTheNearest) {
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                             SimulatedScreens::screen(2, {1440, 0, 1280, 800})});
    const Rect home{1600, 200, 800, 600};
    const AXWindow window = desktop.start(editor, home);
    desktop.windows.hold(window, home);
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900})});
    desktop.windows.letGo(window, EndOfHold::putBack);
    EXPECT_EQ(desktop.windows.setOrigin(window, home.origin(), MoveStep::final), 0);
    EXPECT_EQ(desktop.frameAX(window), (Rect{640, 200, 800, 600}));
}

}  // namespace
}  // namespace quorvel
