#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class RunLoopContract : public Contract {
protected:
    std::chrono::nanoseconds now() { return std::chrono::nanoseconds(runLoop.uptimeNanoseconds()); }
    std::vector<int> order;
    std::function<void()> note(int number) {
        return [this, number] { order.push_back(number); };
    }
};

TEST_P(RunLoopContract, QueuedWorkNeverRunsAtOnce) {
    runLoop.async(note(1));
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(rig->until([&] { return !order.empty(); }));
}

TEST_P(RunLoopContract, FirstComeFirstServed) {
    for (int i = 0; i < 100; ++i) runLoop.async(note(i));
    ASSERT_TRUE(rig->until([&] { return order.size() == 100; }));
    for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST_P(RunLoopContract, WorkQueuedByWorkComesAfterWhatWasQueuedBefore) {
    runLoop.async([&] {
        order.push_back(1);
        runLoop.async(note(3));
        EXPECT_EQ(order.size(), 1U);
    });
    runLoop.async(note(2));
    ASSERT_TRUE(rig->until([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_P(RunLoopContract, DelayedWorkRunsNotBeforeItsTime) {
    const auto start = now();
    std::chrono::nanoseconds ran{};
    runLoop.after(50ms, [&] { ran = now(); });
    ASSERT_TRUE(rig->until([&] { return ran.count() != 0; }));
    EXPECT_GE(ran - start, 50ms);
    EXPECT_LT(ran - start, 1s);
}

TEST_P(RunLoopContract, DelayedWorkRunsInTheOrderOfItsTimes) {
    runLoop.after(90ms, note(3));
    runLoop.after(10ms, note(1));
    runLoop.after(50ms, note(2));
    ASSERT_TRUE(rig->until([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_P(RunLoopContract, TimerTicksInItsIntervalUntilItsSubscriptionEnds) {
    const auto start = now();
    Subscription timer = runLoop.repeating(20ms, 0ms, note(1));
    ASSERT_TRUE(rig->until([&] { return order.size() >= 5; }));
    EXPECT_GE(now() - start, 100ms);
    timer.reset();
    const std::size_t ticks = order.size();
    EXPECT_TRUE(rig->never([&] { return order.size() != ticks; }, 100ms));
}

TEST_P(RunLoopContract, TimerMayEndItselfFromItsTick) {
    Subscription timer;
    timer = runLoop.repeating(5ms, 0ms, [&] {
        order.push_back(1);
        timer.reset();
    });
    ASSERT_TRUE(rig->until([&] { return !order.empty(); }));
    EXPECT_TRUE(rig->never([&] { return order.size() > 1; }, 100ms));
}

TEST_P(RunLoopContract, ClockNeverRunsBackwards) {
    auto last = now();
    for (int i = 0; i < 20; ++i) {
        rig->never([] { return false; }, 1ms);
        EXPECT_GE(now(), last);
        last = now();
    }
}

TEST_P(RunLoopContract, TerminationIsDeliveredByTheLoop) {
    int asked = 0;
    const Subscription signal = runLoop.onTerminationSignal([&] { ++asked; });
    rig->requestTermination();
    EXPECT_EQ(asked, 0);
    EXPECT_TRUE(rig->until([&] { return asked == 1; }));
    rig->requestTermination();
    EXPECT_TRUE(rig->until([&] { return asked == 2; }));
}

TEST_P(RunLoopContract, ModalKeepsWorkAndTimersWaiting) {
    const Subscription timer = runLoop.repeating(5ms, 0ms, note(7));
    runLoop.async([&] {
        runLoop.modal([&] {
            runLoop.async(note(1));
            order.clear();
            rig->never([] { return false; }, 50ms);
            EXPECT_TRUE(order.empty());
        });
        order.push_back(0);
    });
    ASSERT_TRUE(
        rig->until([&] { return std::find(order.begin(), order.end(), 1) != order.end(); }));
    EXPECT_EQ(order.front(), 0);
    ASSERT_TRUE(rig->until([&] { return order.back() == 7; }));
}

TEST_P(RunLoopContract, TerminationIsDeliveredDuringModal) {
    int asked = 0;
    bool askedInside = false;
    const Subscription signal = runLoop.onTerminationSignal([&] { ++asked; });
    bool done = false;
    runLoop.async([&] {
        runLoop.modal([&] {
            rig->requestTermination();
            askedInside = rig->until([&] { return asked == 1; });
        });
        done = true;
    });
    ASSERT_TRUE(rig->until([&] { return done; }));
    EXPECT_TRUE(askedInside);
}

TEST_P(RunLoopContract, RunEndsWithStopAndDropsWhatIsQueued) {
    runLoop.async([&] {
        order.push_back(1);
        runLoop.stop();
        runLoop.async(note(2));
    });
    runLoop.run();
    EXPECT_EQ(order, (std::vector<int>{1}));
}

TEST_P(RunLoopContract, WhatWasQueuedBehindTheStopIsDroppedToo) {
    runLoop.async([&] {
        order.push_back(1);
        runLoop.stop();
    });
    runLoop.async(note(2));
    runLoop.run();
    EXPECT_EQ(order, (std::vector<int>{1}));
}

INSTANTIATE_TEST_SUITE_P(, RunLoopContract, testing::Values(simulatedRig(), bareRig()), rigName);

}  // namespace
}  // namespace quorvel::test
