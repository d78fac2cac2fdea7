#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class PollTimersContract : public Contract {
protected:
    static constexpr auto interval = 20ms;

    void start(PollAgain wanted) {
        again = wanted;
        timer = desktop.pollTimers.polling(interval, 5ms, [this] {
            ++polls;
            pointer = desktop.pointer.read();
            if (handle) reading = desktop.windows.readFrame(*handle);
            return again;
        });
    }
    /// Many intervals without a poll.
    bool rests() {
        int last = -1;
        std::uint64_t since = 0;
        return rig->until([&] {
            const std::uint64_t now = runLoop.uptimeNanoseconds();
            if (polls != last) since = now;
            last = polls;
            return std::chrono::nanoseconds(now - since) > 15 * interval;
        });
    }
    bool goesOn() {
        const int before = polls;
        return rig->until([&] { return polls > before; }, 1s);
    }
    bool keepsResting() {
        const int before = polls;
        return rig->never([&] { return polls > before; });
    }

    PollAgain again = PollAgain::onceAnythingMoves;
    int polls = 0;
    PointerState pointer;
    std::optional<AXWindow> handle;
    FrameReading reading;
    Subscription timer;
};

TEST_P(PollTimersContract, WhatWaitsForTimeIsPolledForever) {
    start(PollAgain::afterInterval);
    EXPECT_FALSE(rig->never([&] { return polls > 40; }, 5s));
}

TEST_P(PollTimersContract, StillPointerLetsThemRest) {
    start(PollAgain::onceAnythingMoves);
    EXPECT_TRUE(rests());
}

TEST_P(PollTimersContract, MotionEndsTheRestAndIsSeenByTheNextPoll) {
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    rig->movePointer({200, 100});
    ASSERT_TRUE(goesOn());
    EXPECT_EQ(pointer.locationCocoa, (Point{200, 700}));
    EXPECT_TRUE(rests());
}

TEST_P(PollTimersContract, ButtonEndsTheRest) {
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    rig->pressButton(1);
    ASSERT_TRUE(goesOn());
    EXPECT_EQ(pointer.pressedButtons, 1U);
    ASSERT_TRUE(rests());
    rig->releaseButton(1);
    ASSERT_TRUE(goesOn());
    EXPECT_EQ(pointer.pressedButtons, 0U);
}

TEST_P(PollTimersContract, WithoutHeldWindowsThePointerDoesNotMatter) {
    start(PollAgain::onceAWindowIsHeld);
    ASSERT_TRUE(rests());
    rig->movePointer({200, 100});
    EXPECT_TRUE(keepsResting());
}

TEST_P(PollTimersContract, EndedTimerIsNotWoken) {
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    timer.reset();
    rig->movePointer({200, 100});
    EXPECT_TRUE(keepsResting());
}

INSTANTIATE_TEST_SUITE_P(, PollTimersContract, testing::Values(simulatedRig(), bareRig()), rigName);

class PollTimersOnDisplaysContract : public PollTimersContract {};

TEST_P(PollTimersOnDisplaysContract, DisplayChangeEndsTheRest) {
    start(PollAgain::onceAWindowIsHeld);
    ASSERT_TRUE(rests());
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
    EXPECT_TRUE(goesOn());
}

INSTANTIATE_TEST_SUITE_P(, PollTimersOnDisplaysContract,
                         testing::Values(simulatedRig(), hotPlugRig()), rigName);

class PollTimersWithWindowsContract : public PollTimersContract {
protected:
    void open() {
        const std::string path = rig->install("notes");
        window = rig->openWindow(path, {200, 150, 400, 300});
        ASSERT_TRUE(rig->until([&] {
            handle = desktop.windows.focusedWindow(rig->processIdentifier(path), path).window;
            return handle.has_value();
        }));
    }
    std::optional<Rect> read() const {
        if (!reading.positionAX || !reading.size) return std::nullopt;
        return Rect{reading.positionAX->x, reading.positionAX->y, reading.size->width,
                    reading.size->height};
    }

    Rig::Window window = 0;
};

TEST_P(PollTimersWithWindowsContract, WindowThatIsHeldEndsTheRest) {
    open();
    start(PollAgain::onceAWindowIsHeld);
    ASSERT_TRUE(rests());
    desktop.windows.hold(*handle, rig->seenFrameAX(window).value());
    EXPECT_TRUE(goesOn());
    EXPECT_EQ(read(), rig->seenFrameAX(window));
}

TEST_P(PollTimersWithWindowsContract, HeldWindowThatTheUserMovesEndsTheRest) {
    open();
    desktop.windows.hold(*handle, rig->seenFrameAX(window).value());
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    rig->moveTo(window, {330, 240});
    ASSERT_TRUE(goesOn());
    EXPECT_TRUE(rig->until([&] { return read() == rig->seenFrameAX(window); }));
}

TEST_P(PollTimersWithWindowsContract, HeldWindowThatTheProgramMovesEndsTheRest) {
    open();
    const Rect home = rig->seenFrameAX(window).value();
    desktop.windows.hold(*handle, home);
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    EXPECT_EQ(desktop.windows.setOrigin(*handle, {home.x + 60, home.y + 40}, MoveStep::final), 0);
    EXPECT_TRUE(goesOn());
}

TEST_P(PollTimersWithWindowsContract, HeldWindowThatClosesEndsTheRest) {
    open();
    desktop.windows.hold(*handle, rig->seenFrameAX(window).value());
    start(PollAgain::onceAnythingMoves);
    ASSERT_TRUE(rests());
    ASSERT_TRUE(read());
    rig->closeWindow(window);
    ASSERT_TRUE(goesOn());
    EXPECT_TRUE(rig->until([&] { return !read(); }));
}

TEST_P(PollTimersWithWindowsContract, WindowMovedByAPollIsReadWhereItIs) {
    open();
    const Rect home = rig->seenFrameAX(window).value();
    desktop.windows.hold(*handle, home);
    std::optional<Point> after;
    timer = desktop.pollTimers.polling(interval, 5ms, [&] {
        desktop.windows.readFrame(*handle);
        desktop.windows.setOrigin(*handle, {home.x + 60, home.y + 40}, MoveStep::final);
        after = desktop.windows.readFrame(*handle).positionAX;
        return PollAgain::onceAnythingMoves;
    });
    ASSERT_TRUE(rig->until([&] { return after.has_value(); }));
    EXPECT_EQ(after, (Point{home.x + 60, home.y + 40}));
}

TEST_P(PollTimersWithWindowsContract, ReadingOfAHeldWindowIsNeverStale) {
    open();
    desktop.windows.hold(*handle, rig->seenFrameAX(window).value());
    start(PollAgain::afterInterval);
    for (const double x : {210, 220, 230, 240}) {
        rig->moveTo(window, {x, 200});
        // No turn of the loop in which an event could be handed out comes in between.
        const int before = polls;
        ASSERT_TRUE(rig->until([&] { return polls > before; }));
        EXPECT_EQ(read(), rig->seenFrameAX(window));
    }
}

INSTANTIATE_TEST_SUITE_P(, PollTimersWithWindowsContract,
                         testing::ValuesIn(windowManagerRigs() + simulatedRig()), rigName);

}  // namespace
}  // namespace quorvel::test
