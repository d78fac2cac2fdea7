#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Pointer.hpp"
#include "platform/PollTimers.hpp"

namespace quorvel {

/// When to poll and when to rest, for every desktop alike. How a desktop is observed and how it
/// tells that something has moved is for the derived class.
///
/// All timers rest together. Those of one interval go on together, and share their wake-ups.
class RestingPollTimers : public PollTimers {
public:
    /// How many polls in a row must find nothing in progress, and the pointer still where it
    /// matters, before the timers rest.
    static constexpr int quietPollsBeforeRest = 4;
    /// How often a resting timer that waits for the pointer looks all the same.
    static constexpr RunLoop::Duration safetyInterval = std::chrono::seconds(5);

    [[nodiscard]] Subscription polling(RunLoop::Duration interval, RunLoop::Duration tolerance,
                                       std::function<PollAgain()> poll) final;

    bool isResting() const { return awaited.has_value(); }

protected:
    explicit RestingPollTimers(RunLoop& runLoop) : runLoop(runLoop) {}

    /// Looks at the pointer and at the held windows; until `endObservation` those who read them
    /// get what was seen now. Nothing while the displays are settling: then there is no poll.
    virtual std::optional<PointerState> beginObservation() = 0;
    virtual void endObservation() = 0;

    /// From now on, or no longer, to tell of motion and buttons by `somethingMoved`. False where
    /// that cannot be told: then timers that wait for the pointer go on ticking.
    virtual bool listenToPointer(bool listens) = 0;

    // What the desktop tells; cheap, and without effect where nobody waits for it.
    void somethingMoved();
    void heldWindowsChanged();  ///< or the displays did

private:
    struct Timer {
        RunLoop::Duration interval;
        RunLoop::Duration tolerance;
        std::function<PollAgain()> poll;
        PollAgain again = PollAgain::afterInterval;
        int quietPolls = 0;
        bool hasEnded = false;
    };
    using Timers = std::vector<std::shared_ptr<Timer>>;
    /// Timers that tick together.
    struct Group {
        Timers timers;
        Subscription clock;
    };

    PollAgain soonest() const;
    void startClock(const Timers& members);
    void poll(Timers due);
    void safetyPoll();
    void restIfQuiet();
    void rest(PollAgain until);
    void goOn();
    void pollSoon();
    void listen(bool wanted);
    void prune();

    RunLoop& runLoop;
    Timers timers;
    std::vector<std::shared_ptr<Group>> groups;
    std::optional<PollAgain> awaited;  ///< while at rest
    std::optional<PointerState> lastSeen;
    bool isListening = false;
    bool willPollSoon = false;
    Subscription safetyTimer;
    Lifetime life;
};

}  // namespace quorvel
