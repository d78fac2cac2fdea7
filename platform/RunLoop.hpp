#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "platform/Subscription.hpp"

namespace quorvel {

/// The main thread's queue, its clock and its timers in one, so that a clock that is stepped in a
/// test cannot disagree with the timers. Everything is called on the thread that runs the loop.
class RunLoop {
public:
    using Duration = std::chrono::nanoseconds;

    virtual ~RunLoop() = default;

    /// Monotonic time since an arbitrary start, in nanoseconds.
    virtual std::uint64_t uptimeNanoseconds() const = 0;

    /// Queues `work` for the next turn of the loop; first come, first served. Never runs it at
    /// once.
    virtual void async(std::function<void()> work) = 0;

    /// Queues `work` once `delay` has passed.
    virtual void after(Duration delay, std::function<void()> work) = 0;

    /// Calls `tick` every `interval` from now on, until the subscription ends. A tick may be up to
    /// `tolerance` late so that wake-ups can be shared; ticks missed meanwhile are not made up for.
    [[nodiscard]] virtual Subscription repeating(Duration interval, Duration tolerance,
                                                 std::function<void()> tick) = 0;

    /// Calls `handler` from the loop, never in signal context, each time the process is asked to
    /// end (SIGTERM, or the terminal that it runs in goes away). While the subscription lives the
    /// signal itself is ignored. Delivered during `modal` too.
    [[nodiscard]] virtual Subscription onTerminationSignal(std::function<void()> handler) = 0;

    /// Runs `body`, which spins a loop of its own (an alert). Until it returns, queued work waits
    /// and no timer ticks. May nest.
    virtual void modal(const std::function<void()>& body) = 0;

    /// Runs until `stop`. Work that is still queued then is dropped.
    virtual void run() = 0;
    virtual void stop() = 0;
};

}  // namespace quorvel
