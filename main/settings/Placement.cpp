#include "main/settings/Placement.hpp"

#include <algorithm>

#include "main/settings/TextRecords.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

template <class Predicate>
std::vector<Placement> without(const std::vector<Placement>& placements, Predicate goes) {
    std::vector<Placement> rest;
    std::remove_copy_if(placements.begin(), placements.end(), std::back_inserter(rest), goes);
    return rest;
}

}  // namespace

std::vector<Placement> Placement::decode(const std::optional<Value>& value) {
    std::vector<Placement> list;
    for (const TextRecord& record : textRecords(value)) {
        if (!hasAppPath(record) || !DisplayRef::parse(fieldOf(record, "display", ""))) continue;
        list.push_back({fieldOf(record, "appPath", ""), fieldOf(record, "display", ""),
                        fieldOf(record, "corner", "none"), fieldOf(record, "tuckEdge", "none")});
    }
    return list;
}

Value Placement::encode(const std::vector<Placement>& list) {
    Value::Array records;
    records.reserve(list.size());
    for (const Placement& placement : list) {
        records.emplace_back(Value::Dictionary{{"appPath", placement.appPath},
                                               {"display", placement.display},
                                               {"corner", placement.corner},
                                               {"tuckEdge", placement.tuckEdge}});
    }
    return records;
}

bool Placement::isOn(const DisplayInfo& shown) const {
    // Stored display texts are kept as they were typed, so they are compared by what they mean.
    const std::string name = trimmed(display);
    if (lowercased(name) == "builtin") return shown.isBuiltin;
    return name == shown.ref.raw;
}

std::optional<Placement> Placement::matching(std::string_view appPath, const DisplayInfo& on,
                                             const std::vector<Placement>& placements) {
    const auto found =
        std::find_if(placements.begin(), placements.end(), [&](const Placement& placement) {
            return placement.appPath == appPath && placement.isOn(on);
        });
    if (found == placements.end()) return std::nullopt;
    return *found;
}

std::vector<Placement> Placement::forgetting(const std::vector<Placement>& placements,
                                             std::string_view display) {
    return without(placements, [&](const Placement& p) { return p.display == display; });
}

std::vector<Placement> Placement::pruning(const std::vector<Placement>& placements,
                                          std::string_view removedAppPath,
                                          const std::vector<std::string>& stillConfigured) {
    const bool remains = std::find(stillConfigured.begin(), stillConfigured.end(),
                                   removedAppPath) != stillConfigured.end();
    if (remains) return placements;
    return without(placements, [&](const Placement& p) { return p.appPath == removedAppPath; });
}

}  // namespace quorvel

std::size_t std::hash<quorvel::Slot>::operator()(const quorvel::Slot& slot) const noexcept {
    constexpr std::size_t corners = quorvel::allHotZoneCorners.size();
    constexpr std::size_t sides = 3;
    if (const auto* corner = std::get_if<quorvel::HotZoneCorner>(&slot.position)) {
        return static_cast<std::size_t>(*corner);
    }
    if (const auto* side = std::get_if<quorvel::Side>(&slot.position)) {
        return corners + static_cast<std::size_t>(*side);
    }
    return corners + sides;
}
