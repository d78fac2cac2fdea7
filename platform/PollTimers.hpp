#pragma once

#include <functional>

#include "platform/RunLoop.hpp"
#include "platform/Subscription.hpp"

namespace quorvel {

/// Which event, at the earliest, could let the next poll do something that this one did not.
enum class PollAgain {
    afterInterval,      ///< the passing of time alone: a dwell is running, a window is sliding
    onceAnythingMoves,  ///< the pointer, its buttons, a held window, the displays
    onceAWindowIsHeld,  ///< only a change of which windows are held, or of the displays
};

/// Timers for those that watch the pointer and the windows that are held. They tick like those of
/// the run loop while that can change something, and cost nothing while it cannot.
class PollTimers {
public:
    virtual ~PollTimers() = default;

    /// Calls `poll` every `interval` from now on, until the subscription ends; a tick may be up to
    /// `tolerance` late. Once the last few polls have said that they wait for an event and none
    /// came, the timer rests until it comes, and goes on then. A pointer that is set to another
    /// place by a program, rather than moved by its user, may go unnoticed for five seconds.
    ///
    /// Between a change of the displays and its announcement no poll is made: a window manager that
    /// moves windows on account of the change comes before those who must answer to it.
    ///
    /// All that one poll reads of the pointer and of the frames of held windows is a single
    /// observation of the desktop, however many windows there are.
    [[nodiscard]] virtual Subscription polling(RunLoop::Duration interval,
                                               RunLoop::Duration tolerance,
                                               std::function<PollAgain()> poll) = 0;
};

}  // namespace quorvel
