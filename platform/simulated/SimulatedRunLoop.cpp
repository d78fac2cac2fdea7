#include "platform/simulated/SimulatedRunLoop.hpp"

#include <algorithm>
#include <stdexcept>

namespace quorvel {
namespace {

constexpr int endlessTurns = 1'000'000;

}  // namespace

void SimulatedRunLoop::settle() {
    for (int turns = 0; turn(now); ++turns) {
        if (turns == endlessTurns) throw std::logic_error("work that queues itself for ever");
    }
}

void SimulatedRunLoop::advance(Duration duration) {
    const Duration end = now + duration;
    int turnsAtOneMoment = 0;
    for (Duration moment = now; turn(std::max(end, now)); moment = now) {
        turnsAtOneMoment = moment == now ? turnsAtOneMoment + 1 : 0;
        if (turnsAtOneMoment == endlessTurns) {
            throw std::logic_error("work that queues itself for ever");
        }
    }
    now = std::max(now, end);
}

void SimulatedRunLoop::sendTerminationSignal() {
    if (terminationHandlers.empty()) {
        signalKilled = true;
        stop();
        return;
    }
    // A signal that is pending already is not counted twice.
    pendingSignals = 1;
}

std::size_t SimulatedRunLoop::timerCount() const {
    return static_cast<std::size_t>(std::count_if(
        timers.begin(), timers.end(), [](const auto& entry) { return entry.second->alive; }));
}

std::uint64_t SimulatedRunLoop::uptimeNanoseconds() const {
    return static_cast<std::uint64_t>(now.count());
}

void SimulatedRunLoop::async(std::function<void()> work) {
    queue.push_back(std::move(work));
}

void SimulatedRunLoop::after(Duration delay, std::function<void()> work) {
    delayed.emplace(Order{now + std::max(delay, Duration::zero()), sequence++}, std::move(work));
}

Subscription SimulatedRunLoop::repeating(Duration interval, Duration tolerance,
                                         std::function<void()> tick) {
    if (interval <= Duration::zero()) throw std::logic_error("a timer without an interval");
    auto timer =
        std::make_shared<Timer>(Timer{interval, tolerance, now + interval, std::move(tick)});
    timers.emplace(Order{timer->due + lateness(*timer), sequence++}, timer);
    return Subscription([weak = std::weak_ptr(timer)] {
        if (const auto held = weak.lock()) held->alive = false;
    });
}

Subscription SimulatedRunLoop::onTerminationSignal(std::function<void()> handler) {
    return terminationHandlers.add(std::move(handler));
}

void SimulatedRunLoop::modal(const std::function<void()>& body) {
    ++modalDepth;
    try {
        body();
    } catch (...) {
        --modalDepth;
        throw;
    }
    --modalDepth;
}

void SimulatedRunLoop::run() {
    stopped = false;
    const Duration limit = now + std::chrono::hours(24);
    while (turn(limit)) {
    }
    if (!stopped && timerCount() > 0) throw std::logic_error("a loop that nobody stops");
}

void SimulatedRunLoop::stop() {
    stopped = true;
    queue.clear();
    delayed.clear();
}

RunLoop::Duration SimulatedRunLoop::lateness(const Timer& timer) const {
    return ticksAreLate ? timer.tolerance : Duration::zero();
}

/// Runs the next thing that is to happen no later than `until`; false when there is none.
bool SimulatedRunLoop::turn(Duration until) {
    if (deliverSignal()) return true;
    if (stopped || modalDepth > 0) return false;
    if (!queue.empty()) {
        const auto work = std::move(queue.front());
        queue.pop_front();
        work();
        return true;
    }
    std::erase_if(timers, [](const auto& entry) { return !entry.second->alive; });
    const bool workIsNext =
        !delayed.empty() && (timers.empty() || delayed.begin()->first < timers.begin()->first);
    if (workIsNext && delayed.begin()->first.first <= until) {
        const auto node = delayed.extract(delayed.begin());
        now = std::max(now, node.key().first);
        node.mapped()();
        return true;
    }
    if (!workIsNext && !timers.empty() && timers.begin()->first.first <= until) {
        const auto node = timers.extract(timers.begin());
        now = std::max(now, node.key().first);
        fire(node.mapped());
        return true;
    }
    return false;
}

bool SimulatedRunLoop::deliverSignal() {
    if (pendingSignals == 0) return false;
    pendingSignals = 0;
    terminationHandlers.notify();
    return true;
}

void SimulatedRunLoop::fire(const std::shared_ptr<Timer>& timer) {
    // Put back first: the tick may end the timer, or start a modal loop that comes back here.
    timer->due += timer->interval;
    if (timer->due <= now) {
        const auto missed = (now - timer->due) / timer->interval + 1;
        timer->due += missed * timer->interval;
    }
    timers.emplace(Order{timer->due + lateness(*timer), sequence++}, timer);
    // Called through a copy: the tick may destroy what it belongs to.
    const auto tick = timer->tick;
    tick();
}

}  // namespace quorvel
