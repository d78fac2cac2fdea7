#pragma once

#include <functional>
#include <optional>
#include <unordered_map>

#include "main/tucking/AXWindows.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// Moves windows at once or by a slide on a timer of 1/60 s; at most one slide a window.
class TuckAnimator {
public:
    /// Receives whether the final position was written.
    using Completion = std::function<void(bool written)>;

    TuckAnimator(AXWindows windows, RunLoop& runLoop);

    /// A running slide of the window is stopped where it stands and its completion dropped. The
    /// completion of the new move is called exactly once unless that is cancelled in turn; for
    /// `instant` before this returns. Points are in AX space.
    void move(AXWindow window, Point from, Point to, TuckAnimationStyle style,
              Completion completion = nullptr);

    /// Stops a running slide where it stands; its completion is not called.
    void cancel(AXWindow window);

    /// Takes every window that is on its way there at once, as if its time were over.
    void finishAll();

    bool isMoving(AXWindow window) const { return timers.contains(window); }
    bool isMovingAny() const { return !timers.empty(); }
    /// Where the running slide of a window takes it, in AX space.
    std::optional<Point> destination(AXWindow window) const;

private:
    void tick(AXWindow window);
    void finish(AXWindow window, bool isOver);

    struct Slide {
        Point from;
        Point to;
        TuckAnimationStyle style;
        Completion completion;
        std::uint64_t startNanoseconds;
        Subscription timer;
    };

    AXWindows windows;
    RunLoop& runLoop;
    std::unordered_map<AXWindow, Slide> timers;
};

}  // namespace quorvel
