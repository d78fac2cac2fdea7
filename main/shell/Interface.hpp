#pragma once

#include <functional>
#include <string>
#include <vector>

#include "main/shell/Alert.hpp"
#include "main/shell/SettingsHost.hpp"
#include "platform/StatusBar.hpp"

namespace quorvel {

/// Everything that the user sees in a window. It lives in a module of its own that is loaded when
/// it is first needed.
class Interface {
public:
    virtual ~Interface() = default;

    /// Shows the alert in front of everything, with the keyboard, and spins a loop of its own until
    /// it is answered. To be called within `RunLoop::modal`.
    virtual int runAlert(const Alert& alert) = 0;

    /// Ends the alert that is up, if any, as its last button would.
    virtual void dismissAlert() = 0;

    /// Opens the settings window, or brings it to the front. The host outlives the interface.
    virtual void showSettings(SettingsHost& host) = 0;

    /// Opens the menu at the pointer and goes on at once. A menu that is still open closes.
    virtual void popUpMenu(const Menu& menu) = 0;

    /// Says why windows cannot be moved, and goes on at once. `closed` is called from the loop when
    /// the user has put the message away.
    virtual void showPrompt(const std::string& reason, std::function<void()> closed) = 0;
};

/// Loads the interface if need be; null where its module cannot be loaded. What it returns lives
/// as long as the program.
using InterfaceProvider = std::function<Interface*()>;

}  // namespace quorvel
