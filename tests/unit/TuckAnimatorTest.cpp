#include "main/tucking/TuckAnimator.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using Style = TuckAnimationStyle;

class TuckAnimatorTest : public testing::Test {
protected:
    SimulatedWindow& server() { return desktop.server.window(window.element); }
    TuckAnimator::Completion note() {
        return [this](bool written) { completions.push_back(written); };
    }
    std::vector<double> xs() const {
        std::vector<double> result;
        for (const auto& move : desktop.windows.moves) result.push_back(move.originAX.x);
        return result;
    }

    SimulatedDesktop desktop;
    AXWindow window = desktop.start("/usr/share/applications/editor.desktop", {0, 100, 800, 600});
    std::unique_ptr<TuckAnimator> animator =
        std::make_unique<TuckAnimator>(AXWindows(desktop.windows, desktop.log), desktop.runLoop);
    std::vector<bool> completions;
};

TEST_F(TuckAnimatorTest, InstantWritesOnceAndCompletesBeforeItReturns) {
    animator->move(window, {0, 100}, {-798, 40}, Style::instant, note());
    EXPECT_EQ(completions, std::vector<bool>{true});
    EXPECT_EQ(desktop.frameAX(window), (Rect{-798, 40, 800, 600}));
    ASSERT_EQ(desktop.windows.moves.size(), 1u);
    EXPECT_EQ(desktop.windows.moves[0].step, MoveStep::final);
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckAnimatorTest, InstantTellsOfARefusedWrite) {
    server().faults.ignoresMoves = true;
    animator->move(window, {0, 100}, {-798, 100}, Style::instant, note());
    EXPECT_EQ(completions, std::vector<bool>{false});
}

TEST_F(TuckAnimatorTest, ASlideTicksSixtyTimesASecondAndEndsExactlyAtItsGoal) {
    animator->move(window, {0, 100}, {-160, 260}, Style::slide, note());
    EXPECT_TRUE(animator->isMoving(window));
    EXPECT_TRUE(desktop.windows.moves.empty());
    desktop.advance(150ms);
    ASSERT_EQ(desktop.windows.moves.size(), 9u);
    EXPECT_TRUE(completions.empty());
    for (std::size_t i = 0; i < desktop.windows.moves.size(); ++i) {
        const auto& move = desktop.windows.moves[i];
        const double travelled = static_cast<double>(i + 1) * 1000 / 60;
        EXPECT_EQ(move.step, MoveStep::intermediate);
        EXPECT_NEAR(move.originAX.x, -travelled, 1e-3);
        EXPECT_NEAR(move.originAX.y, 100 + travelled, 1e-3);
    }
    desktop.advance(1s);
    ASSERT_EQ(desktop.windows.moves.size(), 10u);
    EXPECT_EQ(desktop.windows.moves.back(),
              (SimulatedWindows::Move{window, {-160, 260}, MoveStep::final}));
    EXPECT_EQ(completions, std::vector<bool>{true});
    EXPECT_FALSE(animator->isMoving(window));
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
}

TEST_F(TuckAnimatorTest, EveryStyleEndsAtItsOwnTimeAndAtTheGoal) {
    for (const Style style : {Style::slide, Style::easeOut, Style::easeInOut, Style::spring}) {
        completions.clear();
        animator->move(window, {0, 100}, {-798, 100}, style, note());
        desktop.advance(duration(style) - 1ms);
        EXPECT_TRUE(completions.empty()) << rawValue(style);
        desktop.advance(1ms + 17ms);
        EXPECT_EQ(completions, std::vector<bool>{true}) << rawValue(style);
        EXPECT_EQ(desktop.frameAX(window)->x, -798) << rawValue(style);
    }
}

TEST_F(TuckAnimatorTest, SpringOvershootsOnTheWayAndSettlesAtTheGoal) {
    animator->move(window, {0, 100}, {-798, 100}, Style::spring, note());
    desktop.advance(1s);
    const auto positions = xs();
    EXPECT_LT(*std::min_element(positions.begin(), positions.end()), -798);
    EXPECT_EQ(positions.back(), -798);
}

TEST_F(TuckAnimatorTest, TheCurveFollowsTheClockAndNotTheTicks) {
    desktop.runLoop.after(20ms, [this] { desktop.runLoop.consume(100ms); });
    animator->move(window, {0, 100}, {-160, 100}, Style::slide, note());
    desktop.advance(120ms);
    // The tick of 16.7 ms, then one late tick for all that were missed.
    ASSERT_EQ(desktop.windows.moves.size(), 2u);
    EXPECT_NEAR(xs()[1], -120, 1e-3);
    desktop.advance(1s);
    EXPECT_EQ(xs().back(), -160);
    EXPECT_EQ(completions, std::vector<bool>{true});
}

TEST_F(TuckAnimatorTest, SlowWritesStretchTheSlideButNotItsGoal) {
    server().faults.responseTime = 100ms;
    const auto start = desktop.runLoop.uptime();
    animator->move(window, {0, 100}, {-160, 100}, Style::slide, note());
    desktop.advance(2s);
    EXPECT_EQ(completions, std::vector<bool>{true});
    EXPECT_EQ(desktop.frameAX(window)->x, -160);
    EXPECT_LT(desktop.windows.moves.size(), 5u);
    EXPECT_EQ(desktop.runLoop.uptime() - start, 2s);
}

TEST_F(TuckAnimatorTest, ASecondMoveStopsTheFirstWhereItStandsAndOnlyItsCompletionRuns) {
    std::string calls;
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, [&](bool) { calls += "first"; });
    desktop.advance(80ms);
    const double stoppedAt = desktop.frameAX(window)->x;
    EXPECT_LT(stoppedAt, -300);
    EXPECT_GT(stoppedAt, -500);
    desktop.windows.moves.clear();
    animator->move(window, {stoppedAt, 100}, {0, 100}, Style::slide,
                   [&](bool written) { calls += written ? "second" : "failed"; });
    EXPECT_TRUE(desktop.windows.moves.empty());
    EXPECT_EQ(desktop.runLoop.timerCount(), 1u);
    desktop.advance(1s);
    EXPECT_EQ(calls, "second");
    const auto positions = xs();
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    EXPECT_NEAR(positions.front(), stoppedAt * (1 - 1000.0 / 60 / 160), 1e-3);
    EXPECT_EQ(positions.back(), 0);
}

TEST_F(TuckAnimatorTest, AnInstantMoveEndsARunningSlide) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(80ms);
    animator->move(window, {0, 0}, {7, 8}, Style::instant);
    EXPECT_FALSE(animator->isMoving(window));
    desktop.advance(1s);
    EXPECT_EQ(desktop.frameAX(window)->origin(), (Point{7, 8}));
    EXPECT_TRUE(completions.empty());
}

TEST_F(TuckAnimatorTest, SlidesOfTwoWindowsDoNotDisturbEachOther) {
    const AXWindow other = desktop.start("/usr/share/applications/other.desktop");
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(50ms);
    animator->move(other, {100, 100}, {900, 100}, Style::slide, note());
    desktop.advance(1s);
    EXPECT_EQ(desktop.frameAX(window)->x, -798);
    EXPECT_EQ(desktop.frameAX(other)->x, 900);
    EXPECT_EQ(completions, (std::vector<bool>{true, true}));
}

TEST_F(TuckAnimatorTest, AWindowThatClosesEndsTheSlideWithFalseAtTheFirstFailedWrite) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(50ms);
    desktop.server.close(window.element);
    desktop.windows.moves.clear();
    desktop.advance(1s);
    EXPECT_EQ(completions, std::vector<bool>{false});
    EXPECT_EQ(desktop.windows.moves.size(), 1u);
    EXPECT_FALSE(animator->isMoving(window));
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
    EXPECT_EQ(desktop.log.lines, (std::vector<std::string>{"Quorvel: AX move failed (-1)"}));
}

TEST_F(TuckAnimatorTest, AWindowThatRefusesTheLastStepCompletesWithFalse) {
    server().faults.ignoresMoves = true;
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(1s);
    EXPECT_EQ(completions, std::vector<bool>{false});
    EXPECT_EQ(desktop.frameAX(window)->x, 0);
}

TEST_F(TuckAnimatorTest, AHungWindowCostsOneTimeoutAndNoMore) {
    server().faults.responseTime = WindowFaults::neverResponds;
    const auto start = desktop.runLoop.uptime();
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    while (completions.empty()) desktop.advance(1ms);
    EXPECT_LT(desktop.runLoop.uptime() - start, 300ms);
    EXPECT_EQ(completions, std::vector<bool>{false});
}

TEST_F(TuckAnimatorTest, CancelStopsWhereItStandsWithoutACompletion) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(80ms);
    const Rect stoppedAt = *desktop.frameAX(window);
    animator->cancel(window);
    EXPECT_FALSE(animator->isMoving(window));
    desktop.advance(1s);
    EXPECT_EQ(desktop.frameAX(window), stoppedAt);
    EXPECT_TRUE(completions.empty());
    animator->cancel(window);
}

TEST_F(TuckAnimatorTest, FinishingEndsEverySlideAtItsGoalWithItsCompletion) {
    const AXWindow other =
        desktop.start("/usr/share/applications/browser.desktop", {300, 0, 400, 300});
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    animator->move(other, {300, 0}, {1438, 0}, Style::spring, note());
    desktop.advance(80ms);
    animator->finishAll();
    EXPECT_EQ(completions, (std::vector<bool>{true, true}));
    EXPECT_EQ(desktop.frameAX(window)->x, -798);
    EXPECT_EQ(desktop.frameAX(other)->x, 1438);
    EXPECT_EQ(desktop.windows.moves.back().step, MoveStep::final);
    EXPECT_EQ(desktop.runLoop.timerCount(), 0u);
    animator->finishAll();
    EXPECT_EQ(completions.size(), 2u);
}

TEST_F(TuckAnimatorTest, ACompletionMayDestroyTheAnimatorWhileAllAreFinished) {
    const AXWindow other =
        desktop.start("/usr/share/applications/browser.desktop", {300, 0, 400, 300});
    const auto destroy = [this](bool written) {
        completions.push_back(written);
        animator.reset();
    };
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, destroy);
    animator->move(other, {300, 0}, {1438, 0}, Style::slide, destroy);
    animator->finishAll();
    EXPECT_EQ(completions, (std::vector<bool>{true, true}));
    EXPECT_EQ(desktop.frameAX(window)->x, -798);
    EXPECT_EQ(desktop.frameAX(other)->x, 1438);
}

TEST_F(TuckAnimatorTest, ACompletionMayStartTheNextMove) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, [this](bool) {
        animator->move(window, {-798, 100}, {0, 100}, Style::slide, note());
    });
    desktop.advance(2s);
    EXPECT_EQ(completions, std::vector<bool>{true});
    EXPECT_EQ(desktop.frameAX(window)->x, 0);
}

TEST_F(TuckAnimatorTest, ACompletionMayDestroyTheAnimator) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, [this](bool written) {
        animator.reset();
        completions.push_back(written);
    });
    desktop.advance(2s);
    EXPECT_EQ(completions, std::vector<bool>{true});
}

TEST_F(TuckAnimatorTest, DestroyingTheAnimatorEndsItsSlides) {
    animator->move(window, {0, 100}, {-798, 100}, Style::slide, note());
    desktop.advance(50ms);
    animator.reset();
    desktop.windows.moves.clear();
    desktop.advance(1s);
    EXPECT_TRUE(desktop.windows.moves.empty());
    EXPECT_TRUE(completions.empty());
}

TEST_F(TuckAnimatorTest, AMoveWithoutACompletionJustMoves) {
    animator->move(window, {0, 100}, {-798, 100}, Style::easeOut);
    desktop.advance(1s);
    animator->move(window, {-798, 100}, {0, 100}, Style::instant);
    EXPECT_EQ(desktop.frameAX(window)->x, 0);
}

}  // namespace
}  // namespace quorvel
