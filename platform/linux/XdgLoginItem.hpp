#pragma once

#include <string>

#include "platform/LoginItemService.hpp"
#include "platform/linux/XdgFolders.hpp"

namespace quorvel::native {

/// The entry `com.tessivane.quorvel.desktop` in the user's autostart folder. What the desktop's
/// own start-up settings wrote into it (switched off, delayed) outlives a registration; switched
/// off reads as "requires approval", whatever the entry starts. Never "not found".
///
/// Enabled is only an entry that starts this program: what its `TryExec` names, if anything, can
/// be run, and its command line
/// - holds the path of this program, also within what the user has wrapped around it
///   (`sh -c "sleep 5; exec /opt/Quorvel"`), or
/// - has an argument with the file name of this program that can be run: another copy of it.
/// Any other entry is "not registered", and registering makes it start this program.
///
/// In a file that is no desktop entry the two switches still count, and a registration carries
/// them on; the file is kept beside the new one as `….desktop.unreadable-<n>`.
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
