#pragma once

#include "platform/ApplicationCatalog.hpp"
#include "platform/linux/DesktopEntries.hpp"

namespace quorvel::native {

/// What the XDG folders say is installed, as GIO would show it.
class XdgApplicationCatalog final : public ApplicationCatalog {
public:
    explicit XdgApplicationCatalog(DesktopEntries& entries) : entries(entries) {}

    std::vector<InstalledApplication> installed() const override;
    std::string nameOf(const std::string& path) const override;
    ApplicationIcon iconOf(const std::string& path) const override;

private:
    DesktopEntries& entries;
};

}  // namespace quorvel::native
