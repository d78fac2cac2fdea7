#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Displays.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/Placement.hpp"
#include "main/settings/PlacementIndex.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "platform/Geometry.hpp"

namespace quorvel {

/// What holds one position of a display.
struct Assignment {
    std::string appPath;
    Slot slot;
    std::optional<TuckEdge> edge;  ///< absent for a corner
    std::optional<std::string> warning;

    bool operator==(const Assignment&) const = default;
};

/// One display as the settings show it.
struct DisplayCard {
    std::string ref;  ///< of an absent display: the identifier that its placements name
    std::string name;
    bool isAttached = false;
    std::optional<Size> aspect;  ///< absent for an absent display
    std::vector<Assignment> rows;
    std::vector<Slot> freeSlots;

    bool operator==(const DisplayCard&) const = default;
};

/// The picture that the settings draw, and what of it holds for the corners.
namespace SettingsLayout {

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

/// By binding; within one the corner comes before the edge.
std::vector<Assignment> rows(const std::vector<AppBinding>& apps,
                             const std::vector<Placement>& placements, const DisplayInfo& on);
std::vector<Assignment> rows(const std::vector<AppBinding>& apps, const PlacementIndex& placements,
                             const DisplayInfo& on);

/// The positions that no row holds: the corners row by row, the sides, the bottom.
std::vector<Slot> free(const std::vector<Assignment>& rows);

/// The displays that placements name and that are not attached, each once, as they first appear.
std::vector<std::string> absentRefs(const std::vector<Placement>& placements,
                                    const std::vector<DisplayInfo>& attached);

/// The attached displays, then the absent ones. `remembered` gives the names of the latter.
std::vector<DisplayCard> cards(const std::vector<AppBinding>& apps,
                               const std::vector<Placement>& placements,
                               const std::vector<DisplayInfo>& attached,
                               const std::map<std::string, std::string>& remembered);

}  // namespace SettingsLayout
}  // namespace quorvel
