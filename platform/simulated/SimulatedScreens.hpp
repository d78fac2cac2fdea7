#pragma once

#include "platform/RunLoop.hpp"
#include "platform/Screens.hpp"

namespace quorvel {

/// The displays. At the start there is one of 1440 × 900.
class SimulatedScreens final : public Screens {
public:
    /// What a display event is held back for, in case more follow.
    static constexpr RunLoop::Duration settlingTime = std::chrono::milliseconds(100);

    explicit SimulatedScreens(RunLoop& runLoop);

    /// The new arrangement holds at once; it is reported when no further one came for a while,
    /// and only if it differs from the one reported last, or another did that somebody has read. An
    /// empty list unplugs everything.
    void arrange(std::vector<Screen> arrangement);

    /// Whether a change is still to be reported, or found to be none.
    bool areSettling() const { return unsettled > 0; }

    /// A display with all that can be named, made from its frame.
    static Screen screen(std::uint32_t number, const Rect& frameCocoa, bool isBuiltin = false);

    /// Where AX space begins: the upper edge of the primary display, 0 without displays.
    double primaryScreenMaxY() const;

    std::vector<Screen> screens() const override;
    [[nodiscard]] Subscription onChange(std::function<void()> handler) override;

private:
    void report();

    RunLoop& runLoop;
    std::vector<Screen> attached;
    std::vector<Screen> reported;
    /// Somebody has read an arrangement that is not reported yet.
    mutable bool isOwedAReport = false;
    int unsettled = 0;  ///< changes whose settling time has not passed
    Subscribers<> handlers;
};

}  // namespace quorvel
