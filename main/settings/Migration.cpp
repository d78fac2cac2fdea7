#include "main/settings/Migration.hpp"

#include <algorithm>

namespace quorvel::Migration {

Plan plan(bool markerSet, bool newDomainOccupied, const std::vector<Source>& sources) {
    Plan result{std::nullopt, {}, !markerSet};
    if (markerSet || newDomainOccupied) return result;
    for (const Source& source : sources) {
        for (const std::string_view key : keys) {
            const auto& present = source.keysPresent;
            if (std::find(present.begin(), present.end(), key) != present.end()) {
                result.keys.emplace_back(key);
            }
        }
        if (result.keys.empty()) continue;
        result.source = source.domain;
        break;
    }
    return result;
}

}  // namespace quorvel::Migration
