#include "platform/simulated/SimulatedCatalog.hpp"

#include <algorithm>

#include "platform/Text.hpp"

namespace quorvel {

void SimulatedCatalog::add(InstalledApplication application, bool isShown) {
    const std::string path = application.path;
    entries.insert_or_assign(path, Entry{std::move(application), isShown});
}

std::vector<InstalledApplication> SimulatedCatalog::installed() const {
    std::vector<InstalledApplication> result;
    for (const auto& [path, entry] : entries) {
        if (entry.isShown) result.push_back(entry.application);
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const InstalledApplication& a, const InstalledApplication& b) {
                         return lowercased(a.name) < lowercased(b.name);
                     });
    return result;
}

std::string SimulatedCatalog::nameOf(const std::string& path) const {
    const auto at = entries.find(path);
    return at == entries.end() ? nameWithoutExtension(path) : at->second.application.name;
}

ApplicationIcon SimulatedCatalog::iconOf(const std::string& path) const {
    const auto at = entries.find(path);
    if (at != entries.end() && at->second.application.icon != ApplicationIcon{}) {
        return at->second.application.icon;
    }
    return {{"application-x-executable"}, ""};
}

}  // namespace quorvel
