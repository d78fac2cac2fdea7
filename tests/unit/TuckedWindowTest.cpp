#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

/// What becomes of windows once they are tucked.
class TuckedWindowTest : public TuckFixture {};

// Putting back
// -------------------------------------------------------------------------------------

TEST_F(TuckedWindowTest, UntuckingWhatIsNotTuckedIsNothing) {
    const AXWindow window = desktop.start(editor, home);
    controller->untuck(window, std::nullopt, true);
    EXPECT_TRUE(taken().empty());
    EXPECT_TRUE(desktop.windows.raised.empty());
    EXPECT_TRUE(desktop.windows.moves.empty());
}

TEST_F(TuckedWindowTest, UntuckWithoutRaisingTouchesNothingElse) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    desktop.start(browser);
    controller->untuck(window, TuckAnimationStyle::instant, false);
    EXPECT_EQ(frame(window), home);
    EXPECT_TRUE(desktop.windows.raised.empty());
    EXPECT_EQ(frontmost(), browser);
}

TEST_F(TuckedWindowTest, UntuckAllPutsEveryWindowBackAtOnceAndShowsWhatWasHidden) {
    controller->animationStyle = TuckAnimationStyle::spring;
    const AXWindow first = desktop.start(editor, home);
    toggle();
    const AXWindow second = desktop.start(editor, {10, 20, 500, 400});
    toggle();
    desktop.start(browser);
    controller->toggleTuck(browser, TuckEdge::bottom);
    desktop.advance(100ms);
    taken();
    controller->untuckAll();
    EXPECT_EQ(frame(first), home);
    EXPECT_EQ(frame(second), (Rect{10, 20, 500, 400}));
    EXPECT_FALSE(isHidden(browser));
    EXPECT_TRUE(controller->tuckedWindows().empty());
    EXPECT_TRUE(desktop.windows.raised.empty());
    EXPECT_EQ(taken(), (Lines{"Quorvel: untucked window", "Quorvel: untucked window"}));
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckedWindowTest, UntuckAllLeavesHiddenWhatTheUserHid) {
    desktop.start(browser);
    desktop.applications.hide({browser, 0});
    controller->untuckAll();
    EXPECT_TRUE(isHidden(browser));
}

TEST_F(TuckedWindowTest, UntuckAllForgetsWhatItHasShown) {
    desktop.start(editor);
    toggle(TuckEdge::bottom);
    controller->untuckAll();
    desktop.applications.hide({editor, 0});
    controller->untuckAll();
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(TuckedWindowTest, UntuckAllOfOneApplicationLeavesTheOthersTucked) {
    const AXWindow mine = desktop.start(editor, home);
    toggle();
    edges[browser] = "right";
    const AXWindow other = desktop.start(browser, home);
    controller->toggleTuck(browser, TuckEdge::right);
    controller->untuckAll(editor);
    EXPECT_EQ(frame(mine), home);
    EXPECT_EQ(frame(other).x, 1438);
    EXPECT_EQ(desktop.windows.raised, std::vector<AXWindow>{mine});
    EXPECT_EQ(frontmost(), editor);
    EXPECT_TRUE(controller->hasTuckedWindow(browser));
}

TEST_F(TuckedWindowTest, UntuckAllOfOneApplicationSlidesInTheConfiguredStyle) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    controller->animationStyle = TuckAnimationStyle::slide;
    controller->untuckAll(editor);
    EXPECT_EQ(frame(window).x, -798);
    desktop.advance(80ms);
    EXPECT_GT(frame(window).x, -798);
    EXPECT_LT(frame(window).x, 200);
    desktop.advance(200ms);
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckedWindowTest, UntuckAllOfOneApplicationForgetsThatItWasHiddenWithoutShowingIt) {
    desktop.start(editor);
    toggle(TuckEdge::bottom);
    controller->untuckAll(editor);
    EXPECT_TRUE(isHidden(editor));
    controller->untuckAll();
    EXPECT_TRUE(isHidden(editor));
}

// Revealing
// ------------------------------------------------------------------------------------------

TEST_F(TuckedWindowTest, RevealBringsTheWindowFlushInsideItsEdgeRaisedAndActive) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    desktop.start(browser);
    taken();
    controller->reveal(window);
    EXPECT_EQ(frame(window), (Rect{0, 150, 800, 600}));
    EXPECT_TRUE(controller->hasRevealedWindow(editor));
    EXPECT_EQ(desktop.windows.raised, std::vector<AXWindow>{window});
    EXPECT_EQ(frontmost(), editor);
    EXPECT_TRUE(taken().empty());
}

TEST_F(TuckedWindowTest, HideTucksARevealedWindowAgainFromItsCurrentHeight) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    controller->reveal(window);
    desktop.server.drag(window.element, {0, 180});
    controller->hide(window);
    EXPECT_EQ(frame(window), (Rect{-798, 180, 800, 600}));
    EXPECT_FALSE(controller->hasRevealedWindow(editor));
    toggle();
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckedWindowTest, RevealAndHideDoNothingInTheWrongState) {
    const AXWindow window = desktop.start(editor, home);
    controller->reveal(window);
    controller->hide(window);
    toggle();
    const std::size_t moves = desktop.windows.moves.size();
    controller->hide(window);
    EXPECT_EQ(desktop.windows.moves.size(), moves);
    controller->reveal(window);
    controller->reveal(window);
    EXPECT_EQ(desktop.windows.moves.size(), moves + 1);
    EXPECT_EQ(desktop.windows.raised.size(), 1u);
}

TEST_F(TuckedWindowTest, AWindowThatCannotBeReadIsNeitherRevealedNorHidden) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    server(window).faults.hidesSize = true;
    controller->reveal(window);
    EXPECT_FALSE(controller->hasRevealedWindow(editor));
    EXPECT_TRUE(desktop.windows.raised.empty());
    server(window).faults.hidesSize = false;
    controller->reveal(window);
    server(window).faults.hidesSize = true;
    controller->hide(window);
    EXPECT_TRUE(controller->hasRevealedWindow(editor));
}

TEST_F(TuckedWindowTest, AClampedRevealIsLogged) {
    const AXWindow window = desktop.start(editor, {200, 400, 800, 1000});
    edges[editor] = "bottom-left";
    toggle();
    taken();
    server(window).faults.landsOffBy = {0, 30};
    controller->reveal(window);
    EXPECT_EQ(taken(), (Lines{"Quorvel: the window server clamped the move — asked (0, -100), "
                              "got (0, -70)"}));
}

TEST_F(TuckedWindowTest, HideRevealedTucksTheFirstWindowOfTheApplicationOnly) {
    const AXWindow first = desktop.start(editor, home);
    toggle();
    const AXWindow second = desktop.start(editor, {300, 200, 500, 400});
    toggle();
    controller->reveal(first);
    controller->reveal(second);
    controller->hideRevealed(browser);
    EXPECT_EQ(frame(first).x, 0);
    controller->hideRevealed(editor);
    EXPECT_EQ(frame(first).x, -798);
    EXPECT_EQ(frame(second).x, 0);
    // The first one is tucked already; the second is none of its business.
    controller->hideRevealed(editor);
    EXPECT_EQ(frame(second).x, 0);
}

// Without displays
// -------------------------------------------------------------------------------------

TEST_F(TuckedWindowTest, WithoutDisplaysTuckingRevealingAndHidingStopSilently) {
    const AXWindow tucked = desktop.start(editor, home);
    toggle();
    controller->reveal(tucked);
    const AXWindow other = desktop.start(browser, home);
    edges[browser] = "left";
    taken();
    desktop.windows.moves.clear();
    desktop.screens.arrange({});
    controller->toggleTuck(browser, TuckEdge::left);
    controller->tuckFocused(browser, pidOf(other), TuckEdge::left);
    controller->hide(tucked);
    EXPECT_TRUE(controller->hasRevealedWindow(editor));
    EXPECT_FALSE(controller->hasTuckedWindow(browser));
    EXPECT_FALSE(isHidden(browser));
    EXPECT_TRUE(taken().empty());
    EXPECT_TRUE(desktop.windows.moves.empty());
}

TEST_F(TuckedWindowTest, WithoutDisplaysWindowsStillGoHome) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    desktop.screens.arrange({});
    controller->untuckAll();
    EXPECT_EQ(frame(window), home);
}

// Queries
// ----------------------------------------------------------------------------------------------

TEST_F(TuckedWindowTest, IsTuckedDoesNotCompareTheEdge) {
    desktop.start(editor, home);
    edges[editor] = "right";
    EXPECT_FALSE(controller->isTucked(editor, "left"));
    toggle();
    EXPECT_TRUE(controller->isTucked(editor, "left"));
    EXPECT_TRUE(controller->isTucked(editor, "none"));
    EXPECT_FALSE(controller->isTucked(browser, "left"));
}

TEST_F(TuckedWindowTest, IsTuckedAtTheBottomMeansHidden) {
    EXPECT_FALSE(controller->isTucked(editor, "bottom"));
    desktop.start(editor, home);
    toggle();
    EXPECT_FALSE(controller->isTucked(editor, "Bottom"));
    desktop.applications.hide({editor, 0});
    EXPECT_TRUE(controller->isTucked(editor, "Bottom"));
}

TEST_F(TuckedWindowTest, TuckedWindowsAreFoundByTheExactPath) {
    desktop.start(editor, home);
    toggle();
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
    EXPECT_FALSE(controller->hasTuckedWindow(editor + " "));
    EXPECT_FALSE(controller->hasTuckedWindow("/usr/share/applications/Editor.desktop"));
}

}  // namespace
}  // namespace quorvel
