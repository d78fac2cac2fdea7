#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "main/corners/HotZoneState.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "platform/Geometry.hpp"
#include "platform/Log.hpp"
#include "platform/Pointer.hpp"
#include "platform/PollTimers.hpp"
#include "platform/RunLoop.hpp"
#include "platform/Screens.hpp"
#include "platform/Subscription.hpp"

namespace quorvel {

/// Runs an action once the cursor has rested in a corner of a display for the dwell time with no
/// button pressed. There is one dwell for all zones: moving from one straight into another keeps
/// it running, and after an action the cursor must leave them all before the next.
class HotZoneWatcher {
public:
    /// The side of a zone, in points.
    static constexpr double zoneSide = 6;

    struct Assignment {
        HotZoneCorner corner;
        std::optional<std::vector<Rect>> displayFramesCocoa;  ///< absent: every attached display
        std::function<void()> action;
    };

    /// All of these outlive the watcher.
    struct Platform {
        PollTimers& pollTimers;
        Pointer& pointer;
        Screens& screens;
        const RunLoop& clock;
        Log& log;
    };

    /// Null without any assignment. A negative dwell counts as 0.
    static std::unique_ptr<HotZoneWatcher> create(std::vector<Assignment> assignments, int dwellMs,
                                                  Platform platform);

    void start();

    /// Nothing fires any more. May be called at any time, from within an action too, and again;
    /// an action may also be the end of the watcher.
    void stop();

private:
    struct Zone {
        Rect rectCocoa;
        std::function<void()> action;
    };

    HotZoneWatcher(std::vector<Assignment> assignments, int dwellMs, Platform platform);

    void rebuildZones();
    void addZones(const Assignment& assignment, const std::vector<Rect>& framesCocoa);
    const Zone* zoneAt(Point cursorCocoa) const;
    PollAgain tick();

    Platform platform;
    std::vector<Assignment> assignments;
    int dwellMs;
    std::uint64_t dwellNanos;
    std::vector<Zone> zones;
    HotZoneState state;
    Subscription timer;
    Subscription screenObserver;
};

}  // namespace quorvel
