#include "main/settings/SettingsLayout.hpp"

#include <string>

namespace quorvel::SettingsLayout {

std::vector<PlacedCorner> placedCorners(const std::vector<AppBinding>& apps,
                                        const PlacementIndex& placements,
                                        const std::vector<DisplayInfo>& attached) {
    std::vector<PlacedCorner> result;
    for (const AppBinding& app : apps) {
        for (const DisplayInfo& display : attached) {
            const Placement* const placement = placements.matching(app.appPath, display);
            if (placement == nullptr) continue;
            const auto corner = parseHotZoneCorner(placement->corner);
            if (corner) result.push_back({*corner, placement, &display});
        }
    }
    return result;
}

std::vector<ArmedCorner> armed(const std::vector<PlacedCorner>& corners) {
    std::vector<ArmedCorner> result;
    for (const auto& [corner, placement, display] : corners) {
        result.push_back({placement->appPath, std::string(rawValue(corner)), display->ref.raw});
    }
    return result;
}

std::vector<ArmedCorner> armed(const std::vector<AppBinding>& apps,
                               const std::vector<Placement>& placements,
                               const std::vector<DisplayInfo>& attached) {
    return armed(placedCorners(apps, PlacementIndex(placements), attached));
}

}  // namespace quorvel::SettingsLayout
