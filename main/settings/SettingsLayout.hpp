#pragma once

#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Displays.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/Placement.hpp"
#include "main/settings/PlacementIndex.hpp"

namespace quorvel::SettingsLayout {

/// An application's corner on an attached display. Points into what it was found in.
struct PlacedCorner {
    HotZoneCorner corner;
    const Placement* placement = nullptr;
    const DisplayInfo* display = nullptr;
};

/// By binding, and within one by display.
std::vector<PlacedCorner> placedCorners(const std::vector<AppBinding>& apps,
                                        const PlacementIndex& placements,
                                        const std::vector<DisplayInfo>& attached);

/// The same in the form that collisions are looked for in.
std::vector<ArmedCorner> armed(const std::vector<PlacedCorner>& corners);

/// The corners that bring up an application: by binding, and within one by display.
std::vector<ArmedCorner> armed(const std::vector<AppBinding>& apps,
                               const std::vector<Placement>& placements,
                               const std::vector<DisplayInfo>& attached);

}  // namespace quorvel::SettingsLayout
