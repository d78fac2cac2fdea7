#include "main/tucking/TuckController.hpp"

#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

class TuckControllerTest : public TuckFixture {};

// The user's toggle ----------------------------------------------------------------------------

TEST_F(TuckControllerTest, TogglingWhatIsNotRunningIsLoggedAndChangesNothing) {
    const AXWindow other = desktop.start(browser);
    toggle();
    toggle(TuckEdge::bottom);
    const std::string line = "Quorvel: tuck requested but " + editor + " is not running.";
    EXPECT_EQ(taken(), (Lines{line, line}));
    EXPECT_EQ(desktop.server.active(), other.element);
    EXPECT_TRUE(desktop.windows.moves.empty());
}

TEST_F(TuckControllerTest, APathIsComparedExactly) {
    desktop.start(editor);
    controller->toggleTuck(editor + "/", TuckEdge::left);
    EXPECT_EQ(taken(), (Lines{"Quorvel: tuck requested but " + editor + "/ is not running."}));
}

TEST_F(TuckControllerTest, AToggleTucksTheFocusedWindowToItsEdge) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    EXPECT_EQ(frame(window), (Rect{-798, 150, 800, 600}));
    EXPECT_EQ(taken(), (Lines{"Quorvel: tucked " + editor + " window to left"}));
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
    EXPECT_FALSE(controller->hasRevealedWindow(editor));
    EXPECT_EQ(controller->tuckedWindows(),
              (std::vector<TuckController::TuckedWindow>{{editor, window, TuckEdge::left}}));
    EXPECT_EQ(askedFor, (std::vector<Rect>{{0, 0, 1440, 900}}));
}

TEST_F(TuckControllerTest, EveryEdgeHasItsPlace) {
    const std::map<std::string, Point> places{
        {"left", {-798, 150}},        {"right", {1438, 150}},   {"top-left", {-798, 0}},
        {"bottom-left", {-798, 300}}, {"Top Right", {1438, 0}}, {"bottom_right", {1438, 300}},
    };
    for (const auto& [text, origin] : places) {
        const AXWindow window = desktop.start(editor, home);
        edges[editor] = text;
        toggle();
        EXPECT_EQ(frame(window).origin(), origin) << text;
        desktop.server.close(window.element);
    }
}

TEST_F(TuckControllerTest, TheEdgeOfTheCallOnlySelectsTheBottomPath) {
    const AXWindow window = desktop.start(editor, home);
    edges[editor] = "right";
    toggle(TuckEdge::topLeft);
    EXPECT_EQ(frame(window).origin(), (Point{1438, 150}));
    EXPECT_EQ(taken(), (Lines{"Quorvel: tucked " + editor + " window to right"}));
}

TEST_F(TuckControllerTest, TheWindowIsHeldBeforeItsFirstMoveAndUntilItIsHome) {
    const AXWindow window = desktop.start(editor, {0, 0, 1440, 900});
    // A maximised window moves only while it is held.
    server(window).isMaximized = true;
    toggle();
    EXPECT_EQ(desktop.windows.heldFrameAX(window), (Rect{0, 0, 1440, 900}));
    EXPECT_EQ(frame(window).origin(), (Point{-1438, 0}));
    toggle();
    EXPECT_EQ(frame(window), (Rect{0, 0, 1440, 900}));
    // Whoever was told before the last move returns the state with it.
    EXPECT_TRUE(server(window).isMaximized);
    EXPECT_FALSE(desktop.windows.isHeld(window));
    ASSERT_EQ(desktop.windows.letGone.size(), 1u);
    EXPECT_EQ(desktop.windows.letGone[0].second, EndOfHold::putBack);
}

TEST_F(TuckControllerTest, TogglingATuckedWindowPutsItBackRaisesItAndActivatesItsApplication) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    desktop.start(browser);
    taken();
    toggle();
    EXPECT_EQ(frame(window), home);
    EXPECT_EQ(desktop.windows.raised, std::vector<AXWindow>{window});
    EXPECT_EQ(frontmost(), editor);
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: untucked window"}));
}

TEST_F(TuckControllerTest, ATuckedWindowGoesBackToItsPlaceWhereverItHasDriftedTo) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    desktop.server.drag(window.element, {-500, 333});
    desktop.server.resize(window.element, {640, 480});
    toggle();
    EXPECT_EQ(frame(window), (Rect{200, 150, 640, 480}));
}

TEST_F(TuckControllerTest, TwoWindowsOfOneApplicationAreTuckedOneByOne) {
    const AXWindow first = desktop.start(editor, home);
    const AXWindow second = desktop.start(editor, {300, 200, 500, 400});
    toggle();
    desktop.server.activate(first.element);
    toggle();
    EXPECT_EQ(controller->tuckedWindows(),
              (std::vector<TuckController::TuckedWindow>{{editor, second, TuckEdge::left},
                                                         {editor, first, TuckEdge::left}}));
    toggle();
    EXPECT_EQ(controller->tuckedWindows().size(), 1u);
    EXPECT_EQ(frame(first), home);
    EXPECT_EQ(frame(second).x, -498);
}

TEST_F(TuckControllerTest, ADialogTucksTheMainWindow) {
    const AXWindow main = desktop.start(editor, home);
    desktop.server.open({.bundlePath = editor, .transientFor = main.element, .isModal = true});
    toggle();
    EXPECT_EQ(frame(main).x, -798);
}

// Permission -----------------------------------------------------------------------------------

TEST_F(TuckControllerTest, WithoutPermissionAToggleLogsAndPrompts) {
    const AXWindow window = desktop.start(editor, home);
    desktop.trust.granted = false;
    desktop.trust.hasSettingsPane = true;
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: tuck requested but Accessibility is not granted."}));
    EXPECT_EQ(desktop.trust.promptCount, 1);
    EXPECT_EQ(desktop.trust.settingsPaneCount, 1);
    EXPECT_EQ(frame(window), home);
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
}

TEST_F(TuckControllerTest, TheBottomTuckNeedsNoPermission) {
    desktop.start(editor);
    desktop.trust.granted = false;
    toggle(TuckEdge::bottom);
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(desktop.trust.promptCount, 0);
}

// A focused window that is late ------------------------------------------------------------------

TEST_F(TuckControllerTest, AMissingFocusedWindowIsTriedAgainAfterAQuarterOfASecond) {
    const AXWindow window = desktop.start(editor, home);
    const std::int32_t pid = pidOf(window);
    desktop.windows.focusErrors[pid] = -25204;
    toggle();
    desktop.advance(249ms);
    EXPECT_EQ(desktop.windows.focusedWindowCount, 1);
    desktop.windows.focusErrors.clear();
    desktop.advance(1ms);
    EXPECT_EQ(frame(window).x, -798);
    EXPECT_EQ(taken(),
              (Lines{"Quorvel: no focused AX window for pid " + std::to_string(pid) + " (-25204)",
                     "Quorvel: tucked " + editor + " window to left"}));
}

TEST_F(TuckControllerTest, TheFocusedWindowIsTriedAgainOnceOnly) {
    const AXWindow window = desktop.start(editor, home);
    const std::int32_t pid = pidOf(window);
    desktop.windows.focusErrors[pid] = 0;
    toggle();
    desktop.advance(10s);
    const std::string line =
        "Quorvel: no focused AX window for pid " + std::to_string(pid) + " (0)";
    EXPECT_EQ(taken(), (Lines{line, line}));
    EXPECT_EQ(desktop.windows.focusedWindowCount, 2);
    EXPECT_EQ(frame(window), home);
    EXPECT_EQ(desktop.runLoop.pendingWorkCount(), 0u);
}

TEST_F(TuckControllerTest, ThePendingRetryDoesNotOutliveTheController) {
    const AXWindow window = desktop.start(editor, home);
    desktop.windows.focusErrors[pidOf(window)] = 0;
    toggle();
    controller.reset();
    desktop.advance(1s);
    EXPECT_EQ(desktop.windows.focusedWindowCount, 1);
}

TEST_F(TuckControllerTest, TheRetryFindsAnApplicationThatHasGone) {
    const AXWindow window = desktop.start(editor, home);
    const std::int32_t pid = pidOf(window);
    desktop.windows.focusErrors[pid] = 0;
    toggle();
    desktop.server.kill(pid);
    desktop.advance(1s);
    EXPECT_EQ(desktop.windows.focusedWindowCount, 2);
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
}

// Hiding instead ---------------------------------------------------------------------------------

TEST_F(TuckControllerTest, TheBottomTuckHidesAndShowsTheApplication) {
    const AXWindow window = desktop.start(editor, home);
    toggle(TuckEdge::bottom);
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: hid " + editor + " (bottom tuck)"}));
    desktop.start(browser);
    toggle(TuckEdge::bottom);
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(frontmost(), editor);
    EXPECT_EQ(taken(), (Lines{"Quorvel: shown " + editor + " (bottom tuck)"}));
    EXPECT_TRUE(desktop.windows.moves.empty());
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerTest, TheBottomTuckShowsWhatTheUserHid) {
    desktop.start(editor);
    desktop.applications.hide({editor, 0});
    toggle(TuckEdge::bottom);
    EXPECT_FALSE(isHidden(editor));
}

TEST_F(TuckControllerTest, ABottomPlacementHidesAndShowsToo) {
    desktop.start(editor);
    edges[editor] = "bottom";
    toggle();
    EXPECT_TRUE(isHidden(editor));
    toggle();
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(frontmost(), editor);
    EXPECT_EQ(taken(), (Lines{"Quorvel: hid " + editor + " (bottom tuck)",
                              "Quorvel: shown " + editor + " (bottom tuck)"}));
}

TEST_F(TuckControllerTest, APlacementThatIsOffHidesTheApplicationAndTheNextToggleShowsIt) {
    desktop.start(browser);
    desktop.start(editor);
    edges[editor] = "off";
    toggle();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(frontmost(), browser);
    EXPECT_EQ(taken(), (Lines{"Quorvel: hiding " + editor +
                              " instead — it is placed on this display with tuck set to Off"}));
    toggle();
    EXPECT_FALSE(isHidden(editor));
    EXPECT_EQ(frontmost(), editor);
    toggle();
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(TuckControllerTest, WithoutAPlacementTheReasonSaysSo) {
    desktop.start(editor);
    edges.clear();
    toggle();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: hiding " + editor +
                              " instead — nothing is placed for it on this display"}));
}

TEST_F(TuckControllerTest, WithoutALookupNothingIsPlaced) {
    desktop.start(editor);
    controller->edgeForDisplay = nullptr;
    toggle();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(taken(), (Lines{"Quorvel: hiding " + editor +
                              " instead — nothing is placed for it on this display"}));
}

TEST_F(TuckControllerTest, AnEdgeThatBordersAnotherDisplayHidesAndNamesTheDisplay) {
    attachNeighbour();
    const AXWindow window = desktop.start(editor, home);
    edges[editor] = "right";
    toggle();
    EXPECT_TRUE(isHidden(editor));
    EXPECT_EQ(frame(window), home);
    EXPECT_EQ(taken(),
              (Lines{"Quorvel: hiding " + editor +
                     " instead — the right edge of the display at (0, 0) borders another display, "
                     "so a tuck there would land the window on the neighbour"}));
}

TEST_F(TuckControllerTest, TheCoordinatesInTheReasonAreTruncated) {
    attachNeighbour();
    // Wholly on the second display, whose Cocoa frame begins at (1440.75, −200.5).
    desktop.start(editor, {1500, 400, 500, 400});
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: hiding " + editor +
                              " instead — the left edge of the display at (1440, -200) borders "
                              "another display, so a tuck there would land the window on the "
                              "neighbour"}));
    EXPECT_EQ(askedFor, (std::vector<Rect>{{1440.75, -200.5, 1280, 800}}));
}

TEST_F(TuckControllerTest, AnOuterEdgeOfTheSecondDisplayTucksThere) {
    attachNeighbour();
    const AXWindow window = desktop.start(editor, {1500, 400, 500, 400});
    edges[editor] = "right";
    toggle();
    EXPECT_EQ(frame(window).origin(), (Point{1440.75 + 1280 - 2, 400}));
}

TEST_F(TuckControllerTest, AWindowOnTwoDisplaysBelongsToTheFirstOfThem) {
    attachNeighbour();
    // All but one pixel on the second display.
    desktop.start(editor, {1439, 400, 800, 400});
    toggle();
    EXPECT_EQ(askedFor, (std::vector<Rect>{{0, 0, 1440, 900}}));
}

TEST_F(TuckControllerTest, AWindowOnNoDisplayBelongsToThePrimaryOne) {
    desktop.screens.arrange({SimulatedScreens::screen(2, {-1280, 0, 1280, 800}),
                             SimulatedScreens::screen(1, {0, 0, 1440, 900})});
    desktop.start(editor, {5000, 5000, 800, 400});
    toggle();
    EXPECT_EQ(askedFor, (std::vector<Rect>{{0, 0, 1440, 900}}));
}

TEST_F(TuckControllerTest, WithoutAPrimaryDisplayTheFirstOneServes) {
    desktop.screens.arrange({SimulatedScreens::screen(1, {100, 50, 1440, 900}),
                             SimulatedScreens::screen(2, {3000, 50, 1280, 800})});
    const AXWindow window = desktop.start(editor, {5000, 5000, 800, 400});
    toggle();
    EXPECT_EQ(askedFor, (std::vector<Rect>{{100, 50, 1440, 900}}));
    // Its upper edge at Cocoa 950 is where AX space begins.
    EXPECT_EQ(frame(window).origin(), (Point{100 - 800 + 2, 5000}));
}

TEST_F(TuckControllerTest, HidingInsteadOfAnApplicationThatHasJustGoneIsOnlyLogged) {
    const AXWindow window = desktop.start(editor);
    edges.clear();
    // Found, read, and gone.
    controller->edgeForDisplay = [&](const std::string&, const Rect&) {
        desktop.server.close(window.element);
        return std::nullopt;
    };
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: hiding " + editor +
                              " instead — nothing is placed for it on this display"}));
    // Nothing is remembered as hidden by us.
    desktop.start(editor);
    desktop.applications.hide({editor, 0});
    controller->untuckAll();
    EXPECT_TRUE(isHidden(editor));
}

TEST_F(TuckControllerTest, ABottomPlacementOfAnApplicationThatHasJustGoneIsNothing) {
    const AXWindow window = desktop.start(editor);
    controller->edgeForDisplay = [&](const std::string&, const Rect&) {
        desktop.server.close(window.element);
        return std::optional<std::string>("bottom");
    };
    toggle();
    EXPECT_TRUE(taken().empty());
}

// What cannot be read or moved -------------------------------------------------------------------

TEST_F(TuckControllerTest, AWindowThatCannotBeReadIsLeftAloneSilently) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.hidesSize = true;
    toggle();
    controller->tuckFocused(editor, pidOf(window), TuckEdge::left);
    EXPECT_TRUE(taken().empty());
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_TRUE(desktop.windows.moves.empty());
}

TEST_F(TuckControllerTest, AClampedMoveIsLoggedWithBothPlacesAndKept) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.isClampedToDisplay = true;
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: the window server clamped the move — asked (-798, 150), "
                              "got (0, 150)",
                              "Quorvel: tucked " + editor + " window to left"}));
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
    toggle();
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerTest, AClampedSlideIsLoggedOnceAtItsEnd) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.isClampedToDisplay = true;
    controller->animationStyle = TuckAnimationStyle::spring;
    toggle();
    desktop.advance(1s);
    EXPECT_EQ(taken(), (Lines{"Quorvel: tucked " + editor + " window to left",
                              "Quorvel: the window server clamped the move — asked (-798, 150), "
                              "got (0, 150)"}));
}

TEST_F(TuckControllerTest, OnePointOffIsNoClamping) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.landsOffBy = {1, -1};
    toggle();
    EXPECT_EQ(desktop.log.countStartingWith("Quorvel: the window server clamped"), 0u);
    toggle();
    server(window).faults.landsOffBy = {0, -1.25};
    desktop.server.drag(window.element, home.origin());
    toggle();
    EXPECT_TRUE(
        desktop.log.contains("Quorvel: the window server clamped the move — asked "
                             "(-798, 150), got (-798, 149)"));
}

TEST_F(TuckControllerTest, ARefusedMoveIsLoggedAndTheWindowStillCountsAsTucked) {
    const AXWindow window = desktop.start(editor, home);
    server(window).faults.ignoresMoves = true;
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: AX move failed (-1)",
                              "Quorvel: tucked " + editor + " window to left"}));
    EXPECT_TRUE(controller->hasTuckedWindow(editor));
    toggle();
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerTest, AWindowThatCannotBeReadIsPutBackAllTheSame) {
    const AXWindow window = desktop.start(editor, home);
    toggle();
    server(window).faults.hidesPosition = true;
    toggle();
    EXPECT_EQ(frame(window), home);
}

}  // namespace
}  // namespace quorvel
