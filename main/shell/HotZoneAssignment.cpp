#include "main/shell/HotZoneAssignment.hpp"

#include <utility>

#include "main/settings/SettingsLayout.hpp"
#include "platform/Text.hpp"

namespace quorvel {

HotZoneAssignment::HotZoneAssignment(Settings settings, RunLoop& runLoop,
                                     HotZoneWatcher::Platform platform, Deed deed)
    : settings(std::move(settings)), runLoop(runLoop), platform(platform), deed(std::move(deed)) {}

void HotZoneAssignment::apply(const std::vector<AppBinding>& activeBindings, int dwellMs) {
    if (hotZoneWatcher) hotZoneWatcher->stop();
    hotZoneWatcher.reset();

    const std::vector<DisplayInfo> attached = Displays::attached(platform.screens);
    const std::vector<Placement> placements = settings.placements();
    const PlacementIndex index(placements);
    if (remembersDisplays) rememberDisplays(attached);

    const auto corners = SettingsLayout::placedCorners(activeBindings, index, attached);
    for (const std::string& message :
         AppBinding::cornerCollisions(SettingsLayout::armed(corners))) {
        platform.log.line(formatted("Quorvel: corner shared — %@", message));
    }
    logSharedEdges(activeBindings, attached, index);

    std::vector<HotZoneWatcher::Assignment> assignments;
    for (const auto& [corner, placement, display] : corners) {
        assignments.push_back({corner, std::vector{display->frameCocoa}, actionFor(*placement)});
    }
    hotZoneWatcher = HotZoneWatcher::create(std::move(assignments), dwellMs, platform);
    if (hotZoneWatcher) {
        hotZoneWatcher->start();
    } else {
        platform.log.line("Quorvel: no hot corners placed.");
    }
}

void HotZoneAssignment::rememberDisplays(const std::vector<DisplayInfo>& attached) const {
    auto known = settings.knownDisplays();
    for (const DisplayInfo& display : attached) known[display.ref.raw] = display.name;
    if (known != settings.knownDisplays()) settings.setKnownDisplays(known);
}

std::function<void()> HotZoneAssignment::actionFor(const Placement& placement) const {
    return [this, alive = life.watch(), appPath = placement.appPath,
            edgeHintRaw = placement.tuckEdge] {
        if (alive.expired()) return;
        // An alert may follow, and the corner may be gone by its end.
        runLoop.async([this, alive, appPath, edgeHintRaw] {
            if (!alive.expired()) deed(appPath, edgeHintRaw);
        });
    };
}

void HotZoneAssignment::logSharedEdges(const std::vector<AppBinding>& bindings,
                                       const std::vector<DisplayInfo>& attached,
                                       const PlacementIndex& placements) const {
    for (const DisplayInfo& display : attached) {
        std::vector<EdgeClaim> claims;
        for (const AppBinding& binding : bindings) {
            claims.push_back({binding.appPath, placements.tuckEdge(binding.appPath, display)});
        }
        for (const std::string& message : AppBinding::tuckEdgeCollisions(claims)) {
            platform.log.line(
                formatted("Quorvel: tuck edge shared on %@ — %@", display.name, message));
        }
    }
}

}  // namespace quorvel
