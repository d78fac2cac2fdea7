#pragma once

#include <deque>
#include <map>
#include <memory>
#include <utility>

#include "platform/RunLoop.hpp"

namespace quorvel {

/// The loop in virtual time: the clock stands still until a test moves it, and what is due then
/// runs in order. Work that is queued runs before a timer that is due at the same moment.
class SimulatedRunLoop final : public RunLoop {
public:
    // How the loop is driven -------------------------------------------------------------------

    /// Runs what is queued or due, and what that queues, without letting time pass. Within `modal`
    /// it delivers termination signals only. Throws when the work never comes to an end.
    void settle();

    /// Lets time pass, running everything at its own moment. Time that calls consume on the way is
    /// part of it; it ends later than asked only when they consume more than there was.
    void advance(Duration duration);

    /// Asks the process to end, as SIGTERM does. Delivered by the next turn of the loop.
    void sendTerminationSignal();

    // What happens inside a call ---------------------------------------------------------------

    /// Lets time pass within the work that is running: nothing else runs meanwhile.
    void consume(Duration duration) { now += duration; }

    // Faults -----------------------------------------------------------------------------------

    /// Every tick comes as late as its tolerance allows.
    bool ticksAreLate = false;

    // What can be seen -------------------------------------------------------------------------

    Duration uptime() const { return now; }
    bool isStopped() const { return stopped; }
    /// The process was asked to end while nobody listened.
    bool diedOfSignal() const { return signalKilled; }
    bool isModal() const { return modalDepth > 0; }
    /// Repeating timers that are alive.
    std::size_t timerCount() const;
    /// Work that waits: queued, or for its delay.
    std::size_t pendingWorkCount() const { return queue.size() + delayed.size(); }

    // RunLoop ----------------------------------------------------------------------------------

    std::uint64_t uptimeNanoseconds() const override;
    void async(std::function<void()> work) override;
    void after(Duration delay, std::function<void()> work) override;
    [[nodiscard]] Subscription repeating(Duration interval, Duration tolerance,
                                         std::function<void()> tick) override;
    [[nodiscard]] Subscription onTerminationSignal(std::function<void()> handler) override;
    void modal(const std::function<void()>& body) override;

    /// Virtual time runs as fast as it can; returns also when nothing is left that could happen,
    /// and throws after a virtual day.
    void run() override;
    void stop() override;

private:
    struct Timer {
        Duration interval;
        Duration tolerance;
        Duration due;  ///< without the lateness of a tick
        std::function<void()> tick;
        bool alive = true;
    };
    using Order = std::pair<Duration, std::uint64_t>;

    Duration lateness(const Timer& timer) const;
    bool turn(Duration until);
    bool deliverSignal();
    void fire(const std::shared_ptr<Timer>& timer);

    // Not zero at the start, so that nobody takes the uptime for the time since the launch.
    Duration now = std::chrono::hours(1);
    std::uint64_t sequence = 0;
    std::deque<std::function<void()>> queue;
    std::map<Order, std::function<void()>> delayed;
    std::map<Order, std::shared_ptr<Timer>> timers;
    Subscribers<> terminationHandlers;
    int pendingSignals = 0;
    int modalDepth = 0;
    bool stopped = false;
    bool signalKilled = false;
};

}  // namespace quorvel
