#include "main/settings/PlacementIndex.hpp"

#include <algorithm>

namespace quorvel {

PlacementIndex::PlacementIndex(const std::vector<Placement>& placements) {
    for (const Placement& placement : placements) {
        byApplication[placement.appPath].push_back(&placement);
    }
}

const Placement* PlacementIndex::matching(std::string_view appPath, const DisplayInfo& on) const {
    const auto own = byApplication.find(appPath);
    if (own == byApplication.end()) return nullptr;
    const auto found =
        std::find_if(own->second.begin(), own->second.end(),
                     [&](const Placement* placement) { return placement->isOn(on); });
    return found == own->second.end() ? nullptr : *found;
}

std::string PlacementIndex::tuckEdge(std::string_view appPath, const DisplayInfo& on) const {
    const Placement* const placement = matching(appPath, on);
    return placement == nullptr ? "none" : placement->tuckEdge;
}

}  // namespace quorvel
