#include "main/tucking/AXWindows.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

constexpr const char* editor = "/usr/share/applications/editor.desktop";

class AXWindowsTest : public testing::Test {
protected:
    SimulatedWindow& server(AXWindow window) { return desktop.server.window(window.element); }
    std::int32_t pidOf(AXWindow window) { return server(window).processIdentifier; }

    SimulatedDesktop desktop;
    AXWindows windows{desktop.windows, desktop.log};
};

TEST_F(AXWindowsTest, FocusedWindowIsTheActiveOneOfTheApplication) {
    desktop.start(editor);
    const AXWindow second = desktop.start(editor);
    EXPECT_EQ(windows.focusedWindow(pidOf(second), editor), second);
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, AnApplicationWithoutWindowsYieldsNothingAndALineWithPidAndError) {
    EXPECT_EQ(windows.focusedWindow(4711, editor), std::nullopt);
    EXPECT_EQ(desktop.log.lines,
              (std::vector<std::string>{"Quorvel: no focused AX window for pid 4711 (0)"}));
}

TEST_F(AXWindowsTest, AFailedCallIsLoggedWithItsError) {
    const AXWindow window = desktop.start(editor);
    const std::int32_t pid = pidOf(window);
    desktop.windows.focusErrors[pid] = -25204;
    EXPECT_EQ(windows.focusedWindow(pid, editor), std::nullopt);
    EXPECT_EQ(desktop.log.lines,
              (std::vector<std::string>{"Quorvel: no focused AX window for pid " +
                                        std::to_string(pid) + " (-25204)"}));
}

TEST_F(AXWindowsTest, AHungApplicationCostsAQuarterOfASecond) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.responseTime = WindowFaults::neverResponds;
    const auto before = desktop.runLoop.uptime();
    EXPECT_EQ(windows.focusedWindow(pidOf(window), editor), std::nullopt);
    EXPECT_EQ(desktop.runLoop.uptime() - before, 250ms);
    EXPECT_EQ(desktop.log.countStartingWith("Quorvel: no focused AX window for pid "), 1u);
}

TEST_F(AXWindowsTest, HandlesFetchedSeparatelyAreEqualAndHashAlike) {
    const AXWindow window = desktop.start(editor);
    const AXWindow other = desktop.start("/usr/share/applications/other.desktop");
    const auto first = windows.focusedWindow(pidOf(window), editor);
    const auto second = windows.focusedWindow(pidOf(window), editor);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(*first, *second);
    EXPECT_EQ(std::hash<AXWindow>{}(*first), std::hash<AXWindow>{}(*second));
    EXPECT_FALSE(*first == other);
}

TEST_F(AXWindowsTest, FrameIsPositionAndSize) {
    const AXWindow window = desktop.start(editor, {-12.5, 40, 801, 602});
    EXPECT_EQ(windows.frameAX(window), (Rect{-12.5, 40, 801, 602}));
}

TEST_F(AXWindowsTest, AWindowWhoseSizeCannotBeReadYieldsNoFrameSilently) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.hidesSize = true;
    EXPECT_EQ(windows.frameAX(window), std::nullopt);
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, AWindowWhosePositionCannotBeReadYieldsNoFrameSilently) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.hidesPosition = true;
    EXPECT_EQ(windows.frameAX(window), std::nullopt);
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, AClosedWindowYieldsNoFrameSilently) {
    const AXWindow window = desktop.start(editor);
    desktop.server.close(window.element);
    EXPECT_EQ(windows.frameAX(window), std::nullopt);
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, SetOriginMovesAndKeepsTheSize) {
    const AXWindow window = desktop.start(editor, {100, 100, 800, 600});
    EXPECT_TRUE(windows.setOriginAX({-798, 50}, window));
    EXPECT_EQ(desktop.frameAX(window), (Rect{-798, 50, 800, 600}));
    ASSERT_EQ(desktop.windows.moves.size(), 1u);
    EXPECT_EQ(desktop.windows.moves[0].step, MoveStep::final);
}

TEST_F(AXWindowsTest, ARefusedMoveIsLoggedWithItsCode) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.ignoresMoves = true;
    EXPECT_FALSE(windows.setOriginAX({0, 0}, window));
    EXPECT_EQ(desktop.log.lines, (std::vector<std::string>{"Quorvel: AX move failed (-1)"}));
}

TEST_F(AXWindowsTest, AServerErrorIsLoggedWithItsCode) {
    const AXWindow window = desktop.start(editor);
    desktop.server.window(window.element).faults.moveError = 3;
    EXPECT_FALSE(windows.setOriginAX({0, 0}, window));
    EXPECT_EQ(desktop.log.lines, (std::vector<std::string>{"Quorvel: AX move failed (3)"}));
}

TEST_F(AXWindowsTest, AClampedMoveCountsAsAccepted) {
    const AXWindow window = desktop.start(editor);
    server(window).faults.isClampedToDisplay = true;
    EXPECT_TRUE(windows.setOriginAX({-798, 100}, window));
    EXPECT_EQ(desktop.frameAX(window)->x, 0);
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, APlaceThatIsNoNumberIsRefusedSilently) {
    const AXWindow window = desktop.start(editor);
    EXPECT_FALSE(windows.setOriginAX({std::numeric_limits<double>::quiet_NaN(), 0}, window));
    EXPECT_FALSE(windows.setOriginAX({0, std::numeric_limits<double>::infinity()}, window));
    EXPECT_TRUE(desktop.windows.moves.empty());
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST_F(AXWindowsTest, WithoutPermissionEverythingFails) {
    const AXWindow window = desktop.start(editor);
    desktop.trust.granted = false;
    EXPECT_EQ(windows.focusedWindow(pidOf(window), editor), std::nullopt);
    EXPECT_EQ(windows.frameAX(window), std::nullopt);
    EXPECT_FALSE(windows.setOriginAX({0, 0}, window));
}

}  // namespace
}  // namespace quorvel
