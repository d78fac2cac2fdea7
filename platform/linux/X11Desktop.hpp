#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/Desktop.hpp"
#include "platform/linux/BusControl.hpp"
#include "platform/linux/DesktopEntries.hpp"
#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/JsonDefaults.hpp"
#include "platform/linux/PosixFiles.hpp"
#include "platform/linux/WindowElements.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/X11Applications.hpp"
#include "platform/linux/X11Diagnostics.hpp"
#include "platform/linux/X11HotKeys.hpp"
#include "platform/linux/X11Pointer.hpp"
#include "platform/linux/X11PollTimers.hpp"
#include "platform/linux/X11Screens.hpp"
#include "platform/linux/X11Trust.hpp"
#include "platform/linux/X11WindowAccess.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/XdgApplicationCatalog.hpp"
#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/XdgLoginItem.hpp"
#include "platform/linux/status/PanelStatusBar.hpp"

namespace quorvel::native {

/// Everything that this platform has for the program, made in the order in which it leans on one
/// another. What it is made over outlives it.
class X11Desktop {
public:
    /// What the platform has to show in a window, and has none of its own for.
    struct Windows {
        X11Trust::Prompt prompt;
        std::function<void(const Menu&)> popUpMenu;
    };

    /// `executable` is the absolute path of this program.
    X11Desktop(XConnection& x, const XdgFolders& folders, const std::string& executable, Log& log,
               PosixFiles& files, XdgLoginItem& loginItem, Windows shown);

    /// Lives as long as this object.
    Desktop desktop();

    /// Makes a window of our own that is on the screen the active one, as a pager would. Without a
    /// window manager it gets the keyboard from us.
    void bringToFront(std::uint64_t identifier) const;

private:
    XConnection& x;
    Log& log;
    PosixFiles& files;
    XdgLoginItem& loginItem;

    GlibRunLoop runLoop;
    Subscription events;
    JsonDefaults defaults;
    WindowElements elements;
    WindowManagerInfo manager;
    X11Screens screens;
    X11Pointer pointer;
    X11HotKeys hotKeys;
    DesktopEntries entries;
    XdgApplicationCatalog catalog;
    X11Applications applications;
    X11WindowAccess windows;
    X11PollTimers pollTimers;
    X11Trust trust;
    SessionBus bus;
    PanelStatusBar statusBar;
    BusControl remoteControl;
    X11Diagnostics diagnostics;
};

}  // namespace quorvel::native
