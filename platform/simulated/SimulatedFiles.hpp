#pragma once

#include <map>
#include <optional>
#include <set>

#include "platform/Files.hpp"

namespace quorvel {

class SimulatedFiles final : public Files {
public:
    std::string home = "/home/user";

    void add(const std::string& path) { entries[path] = std::nullopt; }
    /// A symbolic link; its target may not exist.
    void addLink(const std::string& path, const std::string& target) { entries[path] = target; }
    void remove(const std::string& path) { entries.erase(path); }

    /// Folders whose file systems nothing can be written to, and those that cannot be asked.
    std::set<std::string> readOnlyVolumes;
    std::set<std::string> silentVolumes;

    bool exists(std::string_view path) const override;
    std::optional<bool> isOnReadOnlyVolume(std::string_view path) const override;
    std::string homeDirectory() const override { return home; }

private:
    std::map<std::string, std::optional<std::string>> entries;
};

}  // namespace quorvel
