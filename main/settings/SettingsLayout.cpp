#include "main/settings/SettingsLayout.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

namespace quorvel::SettingsLayout {
namespace {

constexpr std::string_view builtin = "builtin";

/// In the order in which free ones are offered. A window at the bottom is hidden, never placed
/// there, so that side is not among them.
const std::array<Slot, 7>& slotOrder() {
    static const std::array<Slot, 7> slots{Slot::corner(HotZoneCorner::topLeft),
                                           Slot::corner(HotZoneCorner::topRight),
                                           Slot::corner(HotZoneCorner::bottomLeft),
                                           Slot::corner(HotZoneCorner::bottomRight),
                                           Slot::side(Side::left),
                                           Slot::side(Side::right),
                                           Slot::bottomHide()};
    return slots;
}

Slot slotOf(TuckEdge edge) {
    switch (edge.side()) {
        case TuckEdge::Side::left:
            return Slot::side(Side::left);
        case TuckEdge::Side::right:
            return Slot::side(Side::right);
        case TuckEdge::Side::bottom:
            break;
    }
    return Slot::bottomHide();
}

/// The first message that names the application anywhere.
std::optional<std::string> warningFor(const std::string& appPath,
                                      const std::vector<std::string>& messages) {
    const auto found = std::find_if(messages.begin(), messages.end(), [&](const std::string& text) {
        return text.find(appPath) != std::string::npos;
    });
    if (found == messages.end()) return std::nullopt;
    return *found;
}

void addWarnings(DisplayCard& card, const std::vector<std::string>& cornerMessages) {
    std::vector<EdgeClaim> claims;
    for (const Assignment& row : card.rows) {
        if (row.edge) claims.push_back({row.appPath, std::string(row.edge->rawValue())});
    }
    const std::vector<std::string> edgeMessages = AppBinding::tuckEdgeCollisions(claims);
    for (Assignment& row : card.rows) {
        row.warning = warningFor(row.appPath, row.edge ? edgeMessages : cornerMessages);
    }
}

}  // namespace

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

std::vector<Assignment> rows(const std::vector<AppBinding>& apps, const PlacementIndex& placements,
                             const DisplayInfo& on) {
    std::vector<Assignment> result;
    for (const AppBinding& app : apps) {
        const Placement* const placement = placements.matching(app.appPath, on);
        if (placement == nullptr) continue;
        if (const auto corner = parseHotZoneCorner(placement->corner)) {
            result.push_back({app.appPath, Slot::corner(*corner), std::nullopt, std::nullopt});
        }
        if (const auto edge = TuckEdge::parse(placement->tuckEdge)) {
            result.push_back({app.appPath, slotOf(*edge), *edge, std::nullopt});
        }
    }
    return result;
}

std::vector<Assignment> rows(const std::vector<AppBinding>& apps,
                             const std::vector<Placement>& placements, const DisplayInfo& on) {
    return rows(apps, PlacementIndex(placements), on);
}

std::vector<Slot> free(const std::vector<Assignment>& rows) {
    std::vector<Slot> result;
    for (const Slot& slot : slotOrder()) {
        const bool isTaken =
            std::any_of(rows.begin(), rows.end(),
                        [&](const Assignment& assignment) { return assignment.slot == slot; });
        if (!isTaken) result.push_back(slot);
    }
    return result;
}

std::vector<std::string> absentRefs(const std::vector<Placement>& placements,
                                    const std::vector<DisplayInfo>& attached) {
    std::vector<std::string> result;
    std::unordered_set<std::string> seen;
    for (const Placement& placement : placements) {
        const auto ref = DisplayRef::parse(placement.display);
        if (!ref || Displays::resolve(*ref, attached) || !seen.insert(ref->raw).second) continue;
        result.push_back(ref->raw);
    }
    return result;
}

std::vector<DisplayCard> cards(const std::vector<AppBinding>& apps,
                               const std::vector<Placement>& placements,
                               const std::vector<DisplayInfo>& attached,
                               const std::map<std::string, std::string>& remembered) {
    const PlacementIndex index(placements);
    std::vector<DisplayCard> result;
    const auto add = [&](const DisplayInfo& display, bool isAttached) {
        auto placed = rows(apps, index, display);
        auto unoccupied = free(placed);
        const auto aspect = isAttached ? std::optional(display.frameCocoa.size()) : std::nullopt;
        result.push_back({display.ref.raw, display.name, isAttached, aspect, std::move(placed),
                          std::move(unoccupied)});
    };
    for (const DisplayInfo& display : attached) add(display, true);
    for (const std::string& ref : absentRefs(placements, attached)) {
        const auto name = remembered.find(ref);
        add({{ref}, name == remembered.end() ? ref : name->second, {}, ref == builtin}, false);
    }

    const auto cornerMessages =
        AppBinding::cornerCollisions(armed(placedCorners(apps, index, attached)));
    for (DisplayCard& card : result) addWarnings(card, cornerMessages);
    return result;
}

}  // namespace quorvel::SettingsLayout
