#pragma once

#include <string>
#include <vector>

#include "platform/Diagnostics.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/status/SessionBus.hpp"

namespace quorvel::native {

class X11Diagnostics final : public Diagnostics {
public:
    /// The folders are those that the program writes to. Everything else outlives it.
    X11Diagnostics(XConnection& x, WindowManagerInfo& manager, SessionBus& bus,
                   std::vector<std::string> folders);

    std::vector<Finding> examine() override;
    /// By the names of the processes of this user, and the window manager.
    std::vector<std::string> shortcutTakers() override;

private:
    Finding windowManager();
    Finding panel();

    XConnection& x;
    WindowManagerInfo& manager;
    SessionBus& bus;
    std::vector<std::string> folders;
};

}  // namespace quorvel::native
