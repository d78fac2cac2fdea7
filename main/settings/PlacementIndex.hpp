#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "main/settings/Displays.hpp"
#include "main/settings/Placement.hpp"

namespace quorvel {

/// The placements by application, for those that look up every one of many. The list that it is
/// made over outlives it.
class PlacementIndex {
public:
    explicit PlacementIndex(const std::vector<Placement>& placements);

    /// As `Placement::matching`; null where that gives nothing.
    const Placement* matching(std::string_view appPath, const DisplayInfo& on) const;

    /// The text of the edge placed there, or "none".
    std::string tuckEdge(std::string_view appPath, const DisplayInfo& on) const;

private:
    std::unordered_map<std::string_view, std::vector<const Placement*>> byApplication;
};

}  // namespace quorvel
