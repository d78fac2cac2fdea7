#pragma once

#include <string>

#include "platform/LoginItemService.hpp"
#include "platform/linux/XdgFolders.hpp"

namespace quorvel::native {

/// The entry `com.tessivane.quorvel.desktop` in the user's autostart folder. What the desktop's
/// own start-up settings wrote into it (switched off, delayed) outlives a registration; switched
/// off reads as "requires approval". Never "not found".
class XdgLoginItem final : public LoginItemService {
public:
    /// `executable` is the absolute path of this program; without it nothing can be registered.
    XdgLoginItem(const XdgFolders& folders, std::string executable);

    std::string programPath() const override { return executable; }
    LoginItemStatus status() const override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    std::string folder;
    std::string path;
    std::string executable;
};

}  // namespace quorvel::native
