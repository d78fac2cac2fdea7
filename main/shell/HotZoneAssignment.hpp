#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "main/corners/HotZoneWatcher.hpp"
#include "main/settings/AppBinding.hpp"
#include "main/settings/Displays.hpp"
#include "main/settings/PlacementIndex.hpp"
#include "main/settings/Settings.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"
#include "platform/Subscription.hpp"

namespace quorvel {

/// Makes the placements of the attached displays into hot corners. On the way it remembers those
/// displays by name and logs where applications get into each other's way.
class HotZoneAssignment {
public:
    /// What a corner does, with the tuck edge that is placed for the application on its display.
    using Deed = std::function<void(const std::string& appPath, const std::string& edgeHintRaw)>;

    /// `deed` is called from the run loop, never within a poll. All others outlive this object.
    HotZoneAssignment(Settings settings, RunLoop& runLoop, HotZoneWatcher::Platform platform,
                      Deed deed);

    /// Whether the attached displays are stored by name.
    bool remembersDisplays = true;

    /// Replaces what was assigned before. Where two claim one corner, the earlier one gets it.
    void apply(const std::vector<AppBinding>& activeBindings, int dwellMs);

private:
    void rememberDisplays(const std::vector<DisplayInfo>& attached) const;
    std::function<void()> actionFor(const Placement& placement) const;
    void logSharedEdges(const std::vector<AppBinding>& bindings,
                        const std::vector<DisplayInfo>& attached,
                        const PlacementIndex& placements) const;

    Settings settings;
    RunLoop& runLoop;
    HotZoneWatcher::Platform platform;
    Deed deed;
    std::unique_ptr<HotZoneWatcher> hotZoneWatcher;
    Lifetime life;
};

}  // namespace quorvel
