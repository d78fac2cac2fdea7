#include "platform/RestingPollTimers.hpp"

#include <gtest/gtest.h>

#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel::test {
namespace {

using namespace std::chrono_literals;

class RestingPollTimersTest : public testing::Test {
protected:
    static constexpr RunLoop::Duration interval = 100ms;
    static constexpr int enough = RestingPollTimers::quietPollsBeforeRest;

    Subscription polling(const std::function<PollAgain()>& poll) {
        return desktop.pollTimers.polling(interval, 20ms, poll);
    }
    Subscription waitingFor(const PollAgain& again, int& count) {
        return polling([&again, &count] {
            ++count;
            return again;
        });
    }
    void letRest() {
        desktop.advance(enough * interval);
        ASSERT_TRUE(desktop.pollTimers.isResting());
    }

    SimulatedDesktop desktop;
    PollAgain again = PollAgain::onceAnythingMoves;
    int polls = 0;
};

TEST_F(RestingPollTimersTest, PollThatWaitsForTimeIsNeverLeftOut) {
    again = PollAgain::afterInterval;
    const Subscription timer = waitingFor(again, polls);
    desktop.advance(100 * interval);
    EXPECT_EQ(polls, 100);
    EXPECT_FALSE(desktop.pollTimers.isResting());
}

TEST_F(RestingPollTimersTest, StillPointerLetsItRest) {
    const Subscription timer = waitingFor(again, polls);
    desktop.advance((enough - 1) * interval);
    EXPECT_FALSE(desktop.pollTimers.isResting());
    desktop.advance(interval);
    EXPECT_TRUE(desktop.pollTimers.isResting());
    EXPECT_EQ(polls, enough);
    desktop.advance(4900ms);
    EXPECT_EQ(polls, enough);
}

TEST_F(RestingPollTimersTest, DisplaysThatSettleAreWaitedFor) {
    again = PollAgain::afterInterval;
    const Subscription timer = waitingFor(again, polls);
    desktop.advance(50ms);
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 800, 600})});
    desktop.advance(99ms);
    EXPECT_EQ(polls, 0);
    desktop.advance(interval);
    EXPECT_EQ(polls, 1);
}

TEST_F(RestingPollTimersTest, AtRestOnlyOneLookInFiveSecondsRemains) {
    int others = 0;
    const Subscription timer = waitingFor(again, polls);
    const Subscription other = waitingFor(again, others);
    letRest();
    const int before = desktop.pollTimers.observationCount;
    desktop.advance(10min);
    EXPECT_EQ(desktop.pollTimers.observationCount - before, 10 * 60 / 5);
    EXPECT_TRUE(desktop.pollTimers.isResting());
    EXPECT_EQ(desktop.runLoop.timerCount(), 1U);
}

TEST_F(RestingPollTimersTest, PointerMotionIsPolledAtOnceAndThenAtTheInterval) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    polls = 0;
    desktop.pointer.moveTo({7, 7});
    EXPECT_EQ(polls, 0);  // never from within the event
    desktop.settle();
    EXPECT_EQ(polls, 1);
    desktop.advance(interval - 1ms);
    EXPECT_EQ(polls, 1);
    desktop.advance(1ms);
    EXPECT_EQ(polls, 2);
}

TEST_F(RestingPollTimersTest, ButtonEndsTheRest) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    desktop.pointer.press(1);
    desktop.settle();
    EXPECT_EQ(polls, enough + 1);
    EXPECT_FALSE(desktop.pollTimers.isResting());
}

TEST_F(RestingPollTimersTest, MovingPointerKeepsItAwake) {
    const Subscription timer = waitingFor(again, polls);
    for (int i = 0; i < 50; ++i) {
        desktop.pointer.moveTo({double(i), 0});
        desktop.advance(interval);
    }
    EXPECT_EQ(polls, 50);
}

TEST_F(RestingPollTimersTest, MotionJustBeforeTheRestIsNotMissed) {
    const Subscription timer = waitingFor(again, polls);
    desktop.advance((enough - 1) * interval);
    // There and back: the next poll sees the pointer where it was.
    desktop.pointer.moveTo({7, 7});
    desktop.pointer.moveTo({0, 0});
    desktop.advance(interval);
    EXPECT_FALSE(desktop.pollTimers.isResting());
}

TEST_F(RestingPollTimersTest, MotionIsListenedToOnlyWhileThatMatters) {
    const Subscription timer = waitingFor(again, polls);
    EXPECT_FALSE(desktop.pollTimers.isListeningToPointer());
    letRest();
    EXPECT_TRUE(desktop.pollTimers.isListeningToPointer());
    desktop.pointer.moveTo({7, 7});
    desktop.settle();
    EXPECT_FALSE(desktop.pollTimers.isListeningToPointer());
}

TEST_F(RestingPollTimersTest, WhereMotionCannotBeToldItGoesOnPolling) {
    desktop.pollTimers.cannotListen = true;
    const Subscription timer = waitingFor(again, polls);
    desktop.advance(100 * interval);
    EXPECT_EQ(polls, 100);
}

TEST_F(RestingPollTimersTest, WarpedPointerIsNoticedWithinFiveSeconds) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    desktop.pointer.warpTo({7, 7});
    desktop.advance(5s);
    EXPECT_EQ(polls, enough + 1);
    EXPECT_FALSE(desktop.pollTimers.isResting());
    desktop.advance(interval);
    EXPECT_EQ(polls, enough + 2);
}

TEST_F(RestingPollTimersTest, SafetyPollThatBeginsSomethingGoesOnAtTheInterval) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    again = PollAgain::afterInterval;
    desktop.advance(5s + 3 * interval);
    EXPECT_EQ(polls, enough + 4);
}

TEST_F(RestingPollTimersTest, WithoutHeldWindowsNotEvenThePointerMatters) {
    again = PollAgain::onceAWindowIsHeld;
    const Subscription timer = waitingFor(again, polls);
    letRest();
    desktop.pointer.moveTo({7, 7});
    desktop.advance(1h);
    EXPECT_EQ(polls, enough);
    EXPECT_EQ(desktop.runLoop.timerCount(), 0U);
}

TEST_F(RestingPollTimersTest, HeldWindowEndsTheRest) {
    again = PollAgain::onceAWindowIsHeld;
    const Subscription timer = waitingFor(again, polls);
    const AXWindow window = desktop.start("/apps/one.desktop");
    letRest();
    desktop.windows.hold(window, {100, 100, 800, 600});
    desktop.settle();
    EXPECT_EQ(polls, enough + 1);
}

TEST_F(RestingPollTimersTest, HeldWindowThatMovesOrClosesEndsTheRest) {
    const Subscription timer = waitingFor(again, polls);
    const AXWindow window = desktop.start("/apps/one.desktop");
    const AXWindow free = desktop.start("/apps/two.desktop");
    desktop.windows.hold(window, {100, 100, 800, 600});
    letRest();
    polls = 0;
    desktop.server.drag(free.element, {5, 5});
    desktop.settle();
    EXPECT_EQ(polls, 0);
    desktop.server.drag(window.element, {5, 5});
    desktop.settle();
    EXPECT_EQ(polls, 1);
    letRest();
    polls = 0;
    desktop.server.close(window.element);
    desktop.settle();
    EXPECT_EQ(polls, 1);
}

TEST_F(RestingPollTimersTest, DisplayChangeEndsTheRest) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    desktop.screens.arrange({});
    desktop.advance(SimulatedScreens::settlingTime);
    EXPECT_EQ(polls, enough + 1);
}

TEST_F(RestingPollTimersTest, OneBusyTimerKeepsAllAwake) {
    int busy = 0;
    PollAgain busyAgain = PollAgain::afterInterval;
    const Subscription first = waitingFor(again, polls);
    const Subscription second = waitingFor(busyAgain, busy);
    desktop.advance(50 * interval);
    EXPECT_EQ(polls, 50);
    busyAgain = PollAgain::onceAnythingMoves;
    desktop.advance(enough * interval);
    EXPECT_TRUE(desktop.pollTimers.isResting());
}

TEST_F(RestingPollTimersTest, AfterARestTimersOfOneIntervalShareTheirLooks) {
    int others = 0;
    const Subscription first = waitingFor(again, polls);
    desktop.advance(interval / 2);
    const Subscription second = waitingFor(again, others);
    desktop.advance(2 * enough * interval);
    ASSERT_TRUE(desktop.pollTimers.isResting());
    desktop.pointer.moveTo({7, 7});
    desktop.settle();
    const int before = desktop.pollTimers.observationCount;
    desktop.advance(3 * interval);
    EXPECT_EQ(desktop.pollTimers.observationCount - before, 3);
}

TEST_F(RestingPollTimersTest, TimerThatStartsDuringARestTicksAfterItsInterval) {
    const Subscription first = waitingFor(again, polls);
    letRest();
    int others = 0;
    const Subscription second = waitingFor(again, others);
    desktop.advance(interval - 1ms);
    EXPECT_EQ(others, 0);
    desktop.advance(1ms);
    EXPECT_EQ(others, 1);
}

TEST_F(RestingPollTimersTest, TimerMayEndItselfWhileItPolls) {
    Subscription timer;
    timer = polling([&] {
        ++polls;
        timer.reset();
        return PollAgain::afterInterval;
    });
    desktop.advance(10 * interval);
    EXPECT_EQ(polls, 1);
    EXPECT_EQ(desktop.runLoop.timerCount(), 0U);
}

TEST_F(RestingPollTimersTest, TimerMayBeReplacedWhileItPolls) {
    Subscription timer;
    timer = polling([&] {
        timer = waitingFor(again, polls);
        return PollAgain::afterInterval;
    });
    desktop.advance(3 * interval);
    EXPECT_EQ(polls, 2);
}

TEST_F(RestingPollTimersTest, EndedTimersLeaveNothingBehind) {
    Subscription timer = waitingFor(again, polls);
    letRest();
    timer.reset();
    EXPECT_EQ(desktop.runLoop.timerCount(), 0U);
    EXPECT_FALSE(desktop.pollTimers.isListeningToPointer());
    desktop.pointer.moveTo({7, 7});
    desktop.advance(1min);
    EXPECT_EQ(polls, enough);
}

TEST_F(RestingPollTimersTest, DuringAnAlertNothingPolls) {
    const Subscription timer = waitingFor(again, polls);
    letRest();
    desktop.runLoop.modal([&] {
        desktop.pointer.moveTo({7, 7});
        desktop.advance(1min);
        EXPECT_EQ(polls, enough);
    });
    desktop.settle();
    EXPECT_EQ(polls, enough + 1);
}

}  // namespace
}  // namespace quorvel::test
