#pragma once

#include <unordered_map>

#include "main/corners/HotZoneState.hpp"
#include "main/tucking/TuckController.hpp"
#include "platform/Log.hpp"
#include "platform/Pointer.hpp"
#include "platform/PollTimers.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// Lets a tucked window out when the cursor has rested on its strip, and back when the cursor has
/// left it.
class EdgeRevealWatcher {
public:
    /// How long the cursor must rest on a strip.
    static constexpr RunLoop::Duration dwell = std::chrono::milliseconds(150);
    /// How far the cursor may overshoot the border of a revealed window, in points.
    static constexpr double margin = 15;

    /// All of these, and the controller, outlive the watcher.
    struct Platform {
        PollTimers& pollTimers;
        Pointer& pointer;
        const RunLoop& clock;
        Log& log;
    };

    EdgeRevealWatcher(TuckController& controller, Platform platform);

    /// Does nothing once started.
    void start();

private:
    PollAgain tick();
    /// Returns whether it has sent a window somewhere.
    bool follow(const TuckController::RevealTarget& target, const PointerState& cursor,
                std::uint64_t now);
    void forgetAllBut(const std::vector<TuckController::RevealTarget>& targets);
    bool isDwelling() const;

    TuckController& controller;
    Platform platform;
    std::unordered_map<AXWindow, HotZoneState> states;
    Subscription timer;
};

}  // namespace quorvel
