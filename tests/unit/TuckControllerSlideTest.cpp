#include <algorithm>

#include "tests/support/TuckFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;

/// What happens while a window is on its way.
class TuckControllerSlideTest : public TuckFixture {
protected:
    TuckControllerSlideTest() { controller->animationStyle = TuckAnimationStyle::slide; }

    AXWindow window = desktop.start(editor, home);
};

TEST_F(TuckControllerSlideTest, TheStyleIsSlideUntilSomeoneSaysOtherwise) {
    EXPECT_EQ(TuckController(AXWindows(desktop.windows, desktop.log), desktop.applications,
                             desktop.screens, desktop.runLoop, desktop.trust, desktop.log)
                  .animationStyle,
              TuckAnimationStyle::slide);
}

TEST_F(TuckControllerSlideTest, ATuckSlidesInTheConfiguredStyle) {
    toggle();
    EXPECT_EQ(frame(window), home);
    EXPECT_EQ(taken(), (Lines{"Quorvel: tucked " + editor + " window to left"}));
    EXPECT_TRUE(desktop.windows.isHeld(window));
    desktop.advance(100ms);
    EXPECT_LT(frame(window).x, 200);
    EXPECT_GT(frame(window).x, -798);
    desktop.advance(100ms);
    EXPECT_EQ(frame(window), (Rect{-798, 150, 800, 600}));
    EXPECT_TRUE(taken().empty());
}

TEST_F(TuckControllerSlideTest, AToggleHalfwayTurnsTheWindowBackFromWhereItStands) {
    toggle();
    desktop.advance(80ms);
    const double turnedAt = frame(window).x;
    desktop.windows.moves.clear();
    toggle();
    EXPECT_EQ(desktop.runLoop.timerCount(), 1u);
    desktop.advance(1s);
    EXPECT_EQ(frame(window), home);
    // From there on it only ever went home.
    double last = turnedAt;
    for (const auto& move : desktop.windows.moves) {
        EXPECT_GE(move.originAX.x, last);
        last = move.originAX.x;
    }
    EXPECT_FALSE(desktop.windows.isHeld(window));
    EXPECT_EQ(taken(),
              (Lines{"Quorvel: tucked " + editor + " window to left", "Quorvel: untucked window"}));
}

TEST_F(TuckControllerSlideTest, HoweverOftenItIsToggledHalfwayItComesHomeAtLast) {
    for (int i = 0; i < 6; ++i) {
        toggle();
        desktop.advance(70ms);
    }
    EXPECT_FALSE(controller->hasTuckedWindow(editor));
    desktop.advance(1s);
    EXPECT_EQ(frame(window), home);
    toggle();
    desktop.advance(1s);
    EXPECT_EQ(frame(window).x, -798);
    EXPECT_EQ(desktop.windows.heldFrameAX(window), home);
}

TEST_F(TuckControllerSlideTest, HidingHalfwayThroughARevealGoesBackFromThere) {
    toggle();
    desktop.advance(1s);
    controller->reveal(window);
    desktop.advance(80ms);
    EXPECT_GT(frame(window).x, -798);
    controller->hide(window);
    desktop.advance(1s);
    EXPECT_EQ(frame(window).x, -798);
    EXPECT_FALSE(controller->hasRevealedWindow(editor));
    EXPECT_EQ(desktop.log.countStartingWith("Quorvel: the window server clamped"), 0u);
}

TEST_F(TuckControllerSlideTest, AWindowThatClosesHalfwayEndsTheSlideWithOneLine) {
    toggle();
    desktop.advance(80ms);
    taken();
    desktop.server.close(window.element);
    desktop.advance(1s);
    EXPECT_EQ(taken(), (Lines{"Quorvel: AX move failed (-1)"}));
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckControllerSlideTest, AnApplicationThatDiesHalfwayCanBeStartedAndTuckedAgain) {
    toggle();
    desktop.advance(80ms);
    desktop.server.kill(pidOf(window));
    desktop.advance(1s);
    taken();
    toggle();
    EXPECT_EQ(taken(), (Lines{"Quorvel: tuck requested but " + editor + " is not running."}));
    const AXWindow reborn = desktop.start(editor, home);
    toggle();
    desktop.advance(1s);
    EXPECT_EQ(frame(reborn).x, -798);
    controller->untuckAll();
    EXPECT_EQ(frame(reborn), home);
    EXPECT_TRUE(controller->tuckedWindows().empty());
}

TEST_F(TuckControllerSlideTest, AWindowThatClosesOnItsWayHomeIsForgotten) {
    toggle();
    desktop.advance(1s);
    toggle();
    desktop.advance(80ms);
    desktop.server.close(window.element);
    desktop.advance(1s);
    EXPECT_TRUE(controller->tuckedWindows().empty());
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckControllerSlideTest, AnApplicationThatHangsHalfwayCostsOneTimeout) {
    toggle();
    desktop.advance(80ms);
    server(window).faults.responseTime = WindowFaults::neverResponds;
    desktop.windows.moves.clear();
    desktop.advance(5s);
    EXPECT_EQ(desktop.windows.moves.size(), 1u);
    EXPECT_TRUE(desktop.log.contains("Quorvel: AX move failed (-1)"));
    server(window).faults.responseTime = {};
    toggle();
    desktop.advance(1s);
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerSlideTest, TheEndOfTheProgramHalfwayPutsTheWindowBackAtOnce) {
    toggle();
    desktop.advance(80ms);
    controller->untuckAll();
    EXPECT_EQ(frame(window), home);
    desktop.advance(1s);
    EXPECT_EQ(frame(window), home);
}

TEST_F(TuckControllerSlideTest, TheEndOfTheProgramBringsHomeWhatIsOnItsWayThere) {
    toggle();
    desktop.advance(1s);
    toggle();
    desktop.advance(80ms);
    ASSERT_LT(frame(window).x, home.x);
    taken();
    controller->untuckAll();
    EXPECT_EQ(frame(window), home);
    EXPECT_FALSE(desktop.windows.isHeld(window));
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
    EXPECT_TRUE(taken().empty());
}

TEST_F(TuckControllerSlideTest, DestroyingTheControllerHalfwayStopsTheSlide) {
    toggle();
    desktop.advance(80ms);
    const Rect stoppedAt = frame(window);
    controller.reset();
    desktop.advance(1s);
    EXPECT_EQ(frame(window), stoppedAt);
}

/// The window vanishes after so many calls, in whatever the controller is doing then.
class TuckControllerVanishTest : public TuckControllerSlideTest,
                                 public testing::WithParamInterface<int> {};

TEST_P(TuckControllerVanishTest, AWindowMayVanishBetweenAnyTwoCalls) {
    server(window).faults.vanishesAfterCalls = GetParam();
    const auto goOn = [this] { desktop.advance(70ms); };
    toggle();
    goOn();
    toggle();
    goOn();
    toggle();
    desktop.advance(1s);
    controller->reveal(window);
    goOn();
    controller->hide(window);
    desktop.advance(1s);
    controller->tuckFocused(editor, 1, TuckEdge::left);
    controller->untuckAll(editor);
    desktop.advance(1s);
    controller->untuckAll();
    EXPECT_EQ(desktop.frameAX(window), std::nullopt) << "so many calls are not made";
    EXPECT_TRUE(controller->tuckedWindows().empty());
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
    EXPECT_EQ(desktop.runLoop.pendingWorkCount(), 0u);
    for (const std::string& line : desktop.log.lines) {
        EXPECT_TRUE(line == "Quorvel: AX move failed (-1)" || line == "Quorvel: untucked window" ||
                    line == "Quorvel: tucked " + editor + " window to left" ||
                    line == "Quorvel: auto-tucked " + editor + " window to left" ||
                    line == "Quorvel: tuck requested but " + editor + " is not running." ||
                    line.starts_with("Quorvel: no focused AX window for pid "))
            << line;
    }
    // What is left works as ever.
    const AXWindow next = desktop.start(editor, home);
    toggle();
    desktop.advance(1s);
    EXPECT_EQ(frame(next).x, -798);
}

INSTANTIATE_TEST_SUITE_P(AfterCalls, TuckControllerVanishTest, testing::Range(0, 56));

}  // namespace
}  // namespace quorvel
