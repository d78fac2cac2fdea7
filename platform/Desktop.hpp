#pragma once

#include "platform/ApplicationCatalog.hpp"
#include "platform/Applications.hpp"
#include "platform/Defaults.hpp"
#include "platform/Diagnostics.hpp"
#include "platform/Files.hpp"
#include "platform/HotKeys.hpp"
#include "platform/Log.hpp"
#include "platform/LoginItemService.hpp"
#include "platform/Pointer.hpp"
#include "platform/PollTimers.hpp"
#include "platform/RemoteControl.hpp"
#include "platform/RunLoop.hpp"
#include "platform/Screens.hpp"
#include "platform/StatusBar.hpp"
#include "platform/Trust.hpp"
#include "platform/WindowAccess.hpp"

namespace quorvel {

/// One desktop, whole: for those that wire the program together or put it to the test. Everything
/// else takes just the interfaces that it uses. Owns nothing; what it names outlives it.
struct Desktop {
    RunLoop& runLoop;
    Log& log;
    Defaults& defaults;
    Files& files;
    Screens& screens;
    Pointer& pointer;
    PollTimers& pollTimers;
    HotKeys& hotKeys;
    Applications& applications;
    ApplicationCatalog& catalog;
    WindowAccess& windows;
    Trust& trust;
    LoginItemService& loginItem;
    StatusBar& statusBar;
    RemoteControl& remoteControl;
    Diagnostics& diagnostics;
};

}  // namespace quorvel
