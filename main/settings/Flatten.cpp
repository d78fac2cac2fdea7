#include "main/settings/Flatten.hpp"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/PlacementIndex.hpp"
#include "main/settings/TextRecords.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "platform/Text.hpp"

namespace quorvel::Flatten {
namespace {

std::string withTildeExpanded(const std::string& path, std::string_view homeDirectory) {
    const bool isBelowHome = path == "~" || path.starts_with("~/");
    if (!isBelowHome) return path;
    const std::string rest = path.substr(1);
    // The root as a home already ends with the slash.
    return homeDirectory.ends_with('/') && !rest.empty() ? rest : std::string(homeDirectory) + rest;
}

std::string cornerText(std::string_view stored) {
    const auto corner = parseHotZoneCorner(stored);
    return corner ? std::string(rawValue(*corner)) : "none";
}

std::string edgeText(std::string_view stored) {
    const auto edge = TuckEdge::parse(stored);
    return edge ? std::string(edge->rawValue()) : "none";
}

/// The application of the oldest versions joins the others; where it is among them already it only
/// fills in what is missing there.
void foldIn(const Stored& stored, std::string_view homeDirectory, std::vector<OldBinding>& old) {
    const std::string target = trimmed(stored.targetPath.value_or(""));
    if (target.empty()) return;
    const OldBinding single{withTildeExpanded(target, homeDirectory),
                            stored.hotKey.value_or("none"), stored.hotZone.value_or("none"),
                            stored.tuckEdge.value_or("none"),
                            saysYes(stored.tuckAuto.value_or("false")) ? "true" : "false"};

    const auto known = std::find_if(old.begin(), old.end(), [&](const OldBinding& binding) {
        return binding.appPath == single.appPath;
    });
    if (known == old.end()) {
        old.insert(old.begin(), single);
        return;
    }
    if (!HotKeySpec::parse(known->hotKey) && HotKeySpec::parse(single.hotKey)) {
        known->hotKey = single.hotKey;
    }
    if (single.autoTuck == "true") known->autoTuck = single.autoTuck;
    if (!parseHotZoneCorner(known->corner)) known->corner = single.corner;
    if (!TuckEdge::parse(known->tuckEdge)) known->tuckEdge = single.tuckEdge;
}

std::vector<Placement> materialised(const std::vector<OldBinding>& old,
                                    const std::vector<Placement>& placements,
                                    const std::vector<DisplayInfo>& attached) {
    std::vector<Placement> result = placements;
    const PlacementIndex stored(placements);
    std::unordered_set<std::string_view> placed;
    for (const OldBinding& binding : old) {
        // The first of a path has left no display without a placement of it.
        if (!placed.insert(binding.appPath).second) continue;
        const auto before = static_cast<std::ptrdiff_t>(result.size());
        for (const DisplayInfo& display : attached) {
            const auto isThere = [&](const Placement& placement) {
                return placement.isOn(display);
            };
            if (stored.matching(binding.appPath, display) != nullptr ||
                std::any_of(result.begin() + before, result.end(), isThere)) {
                continue;
            }
            result.push_back({binding.appPath, display.ref.raw, cornerText(binding.corner),
                              edgeText(binding.tuckEdge)});
        }
    }
    return result;
}

}  // namespace

std::vector<OldBinding> decodeOld(const std::optional<Value>& value) {
    std::vector<OldBinding> list;
    for (const TextRecord& record : textRecords(value)) {
        if (!hasAppPath(record)) continue;
        list.push_back({fieldOf(record, "appPath", ""), fieldOf(record, "hotKey", "none"),
                        fieldOf(record, "corner", "none"), fieldOf(record, "tuckEdge", "none"),
                        fieldOf(record, "autoTuck", "false")});
    }
    return list;
}

Plan plan(bool markerSet, const Stored& stored, const std::vector<Placement>& placements,
          const std::vector<DisplayInfo>& attached, std::string_view homeDirectory) {
    if (markerSet) return {};
    std::vector<OldBinding> old = decodeOld(stored.rawBindings);
    foldIn(stored, homeDirectory, old);

    Plan result;
    for (const OldBinding& binding : old) {
        result.bindings.push_back({binding.appPath, binding.hotKey, binding.autoTuck});
    }
    result.placements = materialised(old, placements, attached);
    result.retiredKeys.assign(retiredKeys.begin(), retiredKeys.end());
    result.setMarker = true;
    return result;
}

}  // namespace quorvel::Flatten
