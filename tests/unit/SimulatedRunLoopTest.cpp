#include "platform/simulated/SimulatedRunLoop.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

class SimulatedRunLoopTest : public testing::Test {
protected:
    std::function<void()> note(const std::string& text) {
        return [this, text] { calls += text; };
    }
    RunLoop::Duration sinceStart() const { return loop.uptime() - start; }

    SimulatedRunLoop loop;
    RunLoop::Duration start = loop.uptime();
    std::string calls;
};

TEST_F(SimulatedRunLoopTest, AsyncNeverRunsAtOnceAndKeepsTheOrder) {
    loop.async(note("a"));
    loop.async(note("b"));
    EXPECT_EQ(calls, "");
    loop.settle();
    EXPECT_EQ(calls, "ab");
}

TEST_F(SimulatedRunLoopTest, SettleRunsWhatTheWorkQueuesAndLetsNoTimePass) {
    loop.async([this] { loop.async(note("later")); });
    loop.settle();
    EXPECT_EQ(calls, "later");
    EXPECT_EQ(sinceStart(), 0ns);
}

TEST_F(SimulatedRunLoopTest, AfterRunsAtItsTime) {
    loop.after(100ms, note("x"));
    loop.advance(99ms);
    EXPECT_EQ(calls, "");
    loop.advance(1ms);
    EXPECT_EQ(calls, "x");
}

TEST_F(SimulatedRunLoopTest, WorkRunsInTheOrderOfItsTimeNotOfItsArrival) {
    loop.after(20ms, note("b"));
    loop.after(10ms, note("a"));
    loop.after(20ms, note("c"));
    loop.advance(1s);
    EXPECT_EQ(calls, "abc");
}

TEST_F(SimulatedRunLoopTest, WorkSeesTheTimeItWasDueAt) {
    RunLoop::Duration seen{};
    loop.after(30ms, [&] { seen = sinceStart(); });
    loop.advance(1s);
    EXPECT_EQ(seen, 30ms);
    EXPECT_EQ(sinceStart(), 1s);
}

TEST_F(SimulatedRunLoopTest, RepeatingTicksEveryIntervalFromNowOn) {
    const auto timer = loop.repeating(10ms, 0ns, note("t"));
    loop.settle();
    EXPECT_EQ(calls, "");
    loop.advance(35ms);
    EXPECT_EQ(calls, "ttt");
}

TEST_F(SimulatedRunLoopTest, ATickMayEndItsOwnTimer) {
    Subscription timer;
    timer = loop.repeating(10ms, 0ns, [&] {
        calls += "t";
        timer.reset();
    });
    loop.advance(1s);
    EXPECT_EQ(calls, "t");
    EXPECT_EQ(loop.timerCount(), 0u);
}

TEST_F(SimulatedRunLoopTest, AnEndedTimerNeverTicksAgain) {
    auto timer = loop.repeating(10ms, 0ns, note("t"));
    loop.advance(10ms);
    timer.reset();
    loop.advance(1s);
    EXPECT_EQ(calls, "t");
}

TEST_F(SimulatedRunLoopTest, AllTicksMissedMakeOneLateTick) {
    std::vector<RunLoop::Duration> ticks;
    const auto timer = loop.repeating(10ms, 0ns, [&] {
        ticks.push_back(sinceStart());
        if (ticks.size() == 1) loop.consume(35ms);
    });
    loop.advance(60ms);
    EXPECT_EQ(ticks, (std::vector<RunLoop::Duration>{10ms, 45ms, 50ms, 60ms}));
}

TEST_F(SimulatedRunLoopTest, LateTicksComeByTheirToleranceLater) {
    loop.ticksAreLate = true;
    std::vector<RunLoop::Duration> ticks;
    const auto timer = loop.repeating(10ms, 4ms, [&] { ticks.push_back(sinceStart()); });
    loop.advance(30ms);
    EXPECT_EQ(ticks, (std::vector<RunLoop::Duration>{14ms, 24ms}));
}

TEST_F(SimulatedRunLoopTest, ConsumedTimeIsPartOfTheAdvance) {
    loop.after(100ms, [this] { loop.consume(250ms); });
    loop.advance(1s);
    EXPECT_EQ(sinceStart(), 1s);
    loop.after(900ms, [this] { loop.consume(250ms); });
    loop.advance(1s);
    EXPECT_EQ(sinceStart(), 2150ms);
}

TEST_F(SimulatedRunLoopTest, ModalHoldsBackWorkAndTimersUntilItReturns) {
    const auto timer = loop.repeating(10ms, 0ns, note("t"));
    loop.async([this] {
        loop.modal([this] {
            loop.async(note("q"));
            loop.after(5ms, note("d"));
            loop.advance(35ms);
            EXPECT_EQ(calls, "");
        });
        calls += "|";
    });
    loop.settle();
    EXPECT_EQ(calls, "|qdt");
}

TEST_F(SimulatedRunLoopTest, ModalMayNest) {
    loop.modal([this] {
        loop.modal([this] { loop.async(note("q")); });
        loop.settle();
        EXPECT_EQ(calls, "");
        EXPECT_TRUE(loop.isModal());
    });
    EXPECT_FALSE(loop.isModal());
    loop.settle();
    EXPECT_EQ(calls, "q");
}

TEST_F(SimulatedRunLoopTest, ATerminationSignalIsDeliveredDuringModalToo) {
    const auto subscription = loop.onTerminationSignal(note("s"));
    loop.modal([this] {
        loop.sendTerminationSignal();
        EXPECT_EQ(calls, "");
        loop.settle();
        EXPECT_EQ(calls, "s");
    });
    loop.sendTerminationSignal();
    loop.settle();
    EXPECT_EQ(calls, "ss");
    EXPECT_FALSE(loop.diedOfSignal());
}

TEST_F(SimulatedRunLoopTest, WithoutASubscriptionASignalEndsTheProcess) {
    loop.onTerminationSignal(note("s")).reset();
    loop.async(note("q"));
    loop.sendTerminationSignal();
    loop.settle();
    EXPECT_TRUE(loop.diedOfSignal());
    EXPECT_EQ(calls, "");
}

TEST_F(SimulatedRunLoopTest, RunEndsWithStopAndDropsWhatIsQueued) {
    const auto timer = loop.repeating(1s, 0ns, note("t"));
    loop.after(2500ms, [this] {
        loop.async(note("q"));
        loop.stop();
    });
    loop.run();
    EXPECT_EQ(calls, "tt");
    EXPECT_EQ(sinceStart(), 2500ms);
    EXPECT_TRUE(loop.isStopped());
    loop.advance(10s);
    EXPECT_EQ(calls, "tt");
}

TEST_F(SimulatedRunLoopTest, EndlessWorkIsFoundOut) {
    std::function<void()> again = [&] { loop.async(again); };
    loop.async(again);
    EXPECT_THROW(loop.settle(), std::logic_error);
    EXPECT_THROW(loop.advance(1ms), std::logic_error);
}

TEST_F(SimulatedRunLoopTest, AnHourOfTicksTakesNoTime) {
    int ticks = 0;
    const auto timer = loop.repeating(RunLoop::Duration(1s) / 15, 20ms, [&] { ++ticks; });
    loop.advance(1h);
    EXPECT_NEAR(ticks, 15 * 3600, 1);
}

}  // namespace
}  // namespace quorvel
