#include "platform/RestingPollTimers.hpp"

#include <algorithm>
#include <utility>

namespace quorvel {

Subscription RestingPollTimers::polling(RunLoop::Duration interval, RunLoop::Duration tolerance,
                                        std::function<PollAgain()> poll) {
    auto timer = std::make_shared<Timer>(Timer{interval, tolerance, std::move(poll)});
    timers.push_back(timer);
    if (isResting()) {
        goOn();
    } else {
        startClock({timer});
    }
    return Subscription([this, alive = life.watch(), timer] {
        timer->hasEnded = true;
        if (!alive.expired()) prune();
    });
}

PollAgain RestingPollTimers::soonest() const {
    auto result = PollAgain::onceAWindowIsHeld;
    for (const auto& timer : timers) result = std::min(result, timer->again);
    return result;
}

void RestingPollTimers::startClock(const Timers& members) {
    const auto group = std::make_shared<Group>();
    group->timers = members;
    group->clock = runLoop.repeating(members.front()->interval, members.front()->tolerance,
                                     [this, weak = std::weak_ptr(group)] {
                                         if (const auto due = weak.lock()) poll(due->timers);
                                     });
    groups.push_back(group);
}

void RestingPollTimers::poll(Timers due) {
    const std::optional<PointerState> seen = beginObservation();
    if (!seen) {
        endObservation();
        return;
    }
    const bool hasMoved = lastSeen && *lastSeen != *seen;
    lastSeen = seen;
    for (const auto& timer : due) {
        if (timer->hasEnded) continue;
        timer->again = timer->poll();
        const bool isQuiet = timer->again == PollAgain::onceAWindowIsHeld ||
                             (timer->again == PollAgain::onceAnythingMoves && !hasMoved);
        timer->quietPolls = isQuiet ? timer->quietPolls + 1 : 0;
    }
    endObservation();
    restIfQuiet();
}

void RestingPollTimers::restIfQuiet() {
    if (isResting() || timers.empty()) return;
    const PollAgain until = soonest();
    int quietPolls = quietPollsBeforeRest;
    for (const auto& timer : timers) quietPolls = std::min(quietPolls, timer->quietPolls);
    // One more poll once the desktop tells of motion: none can slip in between the two.
    listen(until == PollAgain::onceAnythingMoves && quietPolls >= quietPollsBeforeRest - 1);
    const bool isTold = until != PollAgain::onceAnythingMoves || isListening;
    if (isTold && quietPolls >= quietPollsBeforeRest) rest(until);
}

void RestingPollTimers::rest(PollAgain until) {
    awaited = until;
    groups.clear();
    if (until != PollAgain::onceAnythingMoves) return;
    safetyTimer =
        runLoop.repeating(safetyInterval, RunLoop::Duration::zero(), [this] { safetyPoll(); });
}

void RestingPollTimers::safetyPoll() {
    const auto before = awaited;
    poll(timers);
    const bool isStillQuiet = std::all_of(timers.begin(), timers.end(),
                                          [](const auto& timer) { return timer->quietPolls > 0; });
    if (!isStillQuiet || soonest() != before) goOn();
}

/// Back to ticking: the first tick comes after an interval, as after a start.
void RestingPollTimers::goOn() {
    awaited.reset();
    safetyTimer.reset();
    listen(false);
    Timers rest = timers;
    for (const auto& timer : rest) timer->quietPolls = 0;
    while (!rest.empty()) {
        const Timer& first = *rest.front();
        const auto others = std::stable_partition(rest.begin(), rest.end(), [&](const auto& timer) {
            return timer->interval == first.interval && timer->tolerance == first.tolerance;
        });
        startClock({rest.begin(), others});
        rest.erase(rest.begin(), others);
    }
}

void RestingPollTimers::somethingMoved() {
    if (awaited == PollAgain::onceAnythingMoves) {
        pollSoon();
    } else if (isListening) {
        // Too early to rest. The next poll finds what it was.
        for (const auto& timer : timers) timer->quietPolls = 0;
        listen(false);
    }
}

void RestingPollTimers::heldWindowsChanged() {
    if (isResting()) pollSoon();
}

/// Not from here: this is in the midst of handing out events.
void RestingPollTimers::pollSoon() {
    if (std::exchange(willPollSoon, true)) return;
    runLoop.async([this, alive = life.watch()] {
        if (alive.expired()) return;
        willPollSoon = false;
        if (!isResting()) return;
        goOn();
        poll(timers);
    });
}

void RestingPollTimers::listen(bool wanted) {
    if (wanted == isListening) return;
    isListening = listenToPointer(wanted) && wanted;
}

void RestingPollTimers::prune() {
    const auto isGone = [](const auto& timer) { return timer->hasEnded; };
    std::erase_if(timers, isGone);
    std::erase_if(groups, [&](const auto& group) {
        return std::all_of(group->timers.begin(), group->timers.end(), isGone);
    });
    if (timers.empty()) {
        awaited.reset();
        safetyTimer.reset();
        listen(false);
    }
}

}  // namespace quorvel
