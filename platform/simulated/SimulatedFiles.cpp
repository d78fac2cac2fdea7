#include "platform/simulated/SimulatedFiles.hpp"

#include <algorithm>

namespace quorvel {

bool SimulatedFiles::exists(std::string_view path) const {
    std::string at(path);
    // As many links as the kernel follows before it gives up on a circle.
    for (int links = 0; links <= 40; ++links) {
        while (at.size() > 1 && at.back() == '/') at.pop_back();
        const auto entry = entries.find(at);
        if (entry == entries.end()) return false;
        if (!entry->second) return true;
        at = *entry->second;
    }
    return false;
}

std::optional<bool> SimulatedFiles::isOnReadOnlyVolume(std::string_view path) const {
    const auto holds = [path](const std::string& folder) { return path.starts_with(folder + "/"); };
    if (std::any_of(silentVolumes.begin(), silentVolumes.end(), holds)) return std::nullopt;
    return std::any_of(readOnlyVolumes.begin(), readOnlyVolumes.end(), holds);
}

}  // namespace quorvel
