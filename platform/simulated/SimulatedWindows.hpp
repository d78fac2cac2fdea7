#pragma once

#include <unordered_map>

#include "platform/Trust.hpp"
#include "platform/simulated/SimulatedApplications.hpp"
#include "platform/simulated/SimulatedRunLoop.hpp"
#include "platform/simulated/SimulatedScreens.hpp"

namespace quorvel {

/// Reads and moves the windows of the simulated server, with all that can go wrong.
class SimulatedWindows final : public WindowAccess {
public:
    static constexpr RunLoop::Duration timeout = std::chrono::milliseconds(250);
    /// Also by a window that is gone.
    static constexpr std::int32_t refused = -1;

    SimulatedWindows(SimulatedWindowServer& server, const SimulatedApplications& applications,
                     const SimulatedScreens& screens, const Trust& trust,
                     SimulatedRunLoop& runLoop);

    /// What `focusedWindow` answers for a process instead of looking.
    std::unordered_map<std::int32_t, std::int32_t> focusErrors;

    // What can be seen -------------------------------------------------------------------------

    struct Move {
        AXWindow window;
        Point originAX;
        MoveStep step = MoveStep::final;

        bool operator==(const Move&) const = default;
    };
    /// Every move that was asked for, whatever became of it.
    std::vector<Move> moves;
    std::vector<AXWindow> raised;
    /// What was left of windows by `letGo`, in order.
    std::vector<std::pair<AXWindow, EndOfHold>> letGone;
    int focusedWindowCount = 0;
    int readFrameCount = 0;

    bool isHeld(AXWindow window) const { return holds.contains(window); }
    /// Where a held window belongs.
    std::optional<Rect> heldFrameAX(AXWindow window) const;

    /// Someone, the program too, moved, resized or closed a window that is held.
    [[nodiscard]] Subscription onHeldWindowChange(std::function<void()> handler) {
        return heldWindowChanges.add(std::move(handler));
    }
    /// One more window is held.
    [[nodiscard]] Subscription onHold(std::function<void()> handler) {
        return newHolds.add(std::move(handler));
    }

    // WindowAccess -----------------------------------------------------------------------------

    FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                       const std::string& bundlePath) override;
    FrameReading readFrame(AXWindow window) override;
    std::int32_t setOrigin(AXWindow window, Point originAX, MoveStep step) override;
    void raise(AXWindow window) override;
    void hold(AXWindow window, const Rect& originalFrameAX) override;
    void letGo(AXWindow window, EndOfHold how) override;
    int putBackLost() override;

    /// The program is gone, and with it what it knew; the windows are where they are.
    void crash() { holds.clear(); }

private:
    struct Hold {
        Rect originalFrameAX;
        bool wasMaximized = false;
        bool comesHome = false;  ///< the next final step is the last one
    };

    SimulatedWindow* reach(AXWindow window);
    Point allowedOrigin(const SimulatedWindow& window, Point asked) const;
    void arriveHome(SimulatedWindow& window);
    void bringOntoDisplays(SimulatedWindow& window) const;
    static void eraseNote(SimulatedWindow& window);
    std::vector<Rect> screenFramesAX() const;

    SimulatedWindowServer& server;
    const SimulatedApplications& applications;
    const SimulatedScreens& screens;
    const Trust& trust;
    SimulatedRunLoop& runLoop;
    std::unordered_map<AXWindow, Hold> holds;
    Subscribers<> heldWindowChanges;
    Subscribers<> newHolds;
    Subscription windowChanges;
};

}  // namespace quorvel
