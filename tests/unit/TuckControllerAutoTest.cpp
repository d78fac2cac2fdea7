#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

class TuckControllerAutoTest : public TuckFixture {
protected:
    void tuckFocused(TuckEdge edge = TuckEdge::left) { controller->tuckFocused(editor, pid, edge); }

    AXWindow window = desktop.start(editor, home);
    std::int32_t pid = pidOf(window);
};

TEST_F(TuckControllerAutoTest, TucksTheFocusedWindowToTheEdgePlacedOnItsDisplay) {
    edges[editor] = "top-right";
    desktop.start(browser);
    tuckFocused();
    EXPECT_EQ(frame(window).origin(), (Point{1438, 0}));
    EXPECT_EQ(taken(), (Lines{"Quorvel: auto-tucked " + editor + " window to top-right"}));
    EXPECT_TRUE(desktop.windows.isHeld(window));
    EXPECT_EQ(frontmost(), browser);
    EXPECT_TRUE(desktop.windows.raised.empty());
}

TEST_F(TuckControllerAutoTest, NeverUntucks) {
    tuckFocused();
    taken();
    const std::size_t moves = desktop.windows.moves.size();
    tuckFocused();
    EXPECT_EQ(desktop.windows.moves.size(), moves);
    EXPECT_TRUE(taken().empty());
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
}

TEST_F(TuckControllerAutoTest, NeverPrompts) {
    desktop.trust.granted = false;
    tuckFocused();
    EXPECT_EQ(desktop.trust.promptCount, 0);
    EXPECT_TRUE(taken().empty());
    EXPECT_EQ(desktop.windows.focusedWindowCount, 0);
}

TEST_F(TuckControllerAutoTest, AMissingFocusedWindowIsNotTriedAgain) {
    desktop.windows.focusErrors[pid] = -25204;
    tuckFocused();
    desktop.advance(std::chrono::seconds(10));
    EXPECT_EQ(desktop.windows.focusedWindowCount, 1);
    EXPECT_EQ(desktop.runLoop.pendingWorkCount(), 0u);
}

TEST_F(TuckControllerAutoTest, WithoutAPlacementNothingHappens) {
    edges.clear();
    tuckFocused();
    edges[editor] = "off";
    tuckFocused();
    controller->edgeForDisplay = nullptr;
    tuckFocused();
    EXPECT_TRUE(taken().empty());
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerAutoTest, TheBottomEdgeHidesTheApplication) {
    tuckFocused(TuckEdge::bottom);
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: auto-hid " + editor + " (bottom tuck)"}));
    controller->untuckAll();
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(TuckControllerAutoTest, ABottomPlacementHidesTheApplication) {
    edges[editor] = "bottom";
    tuckFocused();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: auto-hid " + editor + " (bottom tuck)"}));
    controller->untuckAll();
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(TuckControllerAutoTest, AnEdgeThatBordersAnotherDisplayHidesTheApplication) {
    attachNeighbour();
    edges[editor] = "bottom-right";
    tuckFocused();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(frame(window), home);
    EXPECT_EQ(taken(), (Lines{"Quorvel: auto-hid " + editor +
                              " (bottom-right edge borders another display)"}));
    controller->untuckAll();
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(TuckControllerAutoTest, AHiddenApplicationIsLeftAsItIs) {
    attachNeighbour();
    desktop.applications.hide({editor, pid});
    tuckFocused(TuckEdge::bottom);
    edges[editor] = "bottom";
    tuckFocused();
    edges[editor] = "right";
    tuckFocused();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(desktop.log.countStartingWith("Quorvel: auto-"), 0u);
    // It was the user who hid it, so it stays hidden at the end.
    controller->untuckAll();
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(TuckControllerAutoTest, AnApplicationThatHasGoneIsNothing) {
    desktop.server.kill(pid);
    tuckFocused(TuckEdge::bottom);
    EXPECT_TRUE(taken().empty());
    tuckFocused();
    EXPECT_EQ(taken(),
              (Lines{"Quorvel: no focused AX window for pid " + std::to_string(pid) + " (0)"}));
}

TEST_F(TuckControllerAutoTest, OnlyTheApplicationItselfIsHiddenWhereAPidIsShared) {
    desktop.server.open({.bundlePath = browser, .processIdentifier = pid});
    tuckFocused(TuckEdge::bottom);
    EXPECT_TRUE(isHidden(editor));
    EXPECT_FALSE(isHidden(browser));
}

TEST_F(TuckControllerAutoTest, OnlyItsOwnWindowIsTuckedWhereAPidIsShared) {
    const AXWindow other{
        desktop.server.open({.bundlePath = browser, .processIdentifier = pid, .frameAX = home})};
    tuckFocused();
    EXPECT_EQ(frame(window).x, -798);
    EXPECT_EQ(frame(other), home);
}

}  // namespace
}  // namespace quorvel
