#pragma once

#include <map>

#include "platform/ApplicationCatalog.hpp"

namespace quorvel {

class SimulatedCatalog final : public ApplicationCatalog {
public:
    /// `isShown` is false for what is installed and not meant for menus.
    void add(InstalledApplication application, bool isShown = true);
    void remove(const std::string& path) { entries.erase(path); }
    bool contains(const std::string& path) const { return entries.contains(path); }

    std::vector<InstalledApplication> installed() const override;
    std::string nameOf(const std::string& path) const override;
    ApplicationIcon iconOf(const std::string& path) const override;

private:
    struct Entry {
        InstalledApplication application;
        bool isShown = true;
    };

    std::map<std::string, Entry> entries;
};

}  // namespace quorvel
