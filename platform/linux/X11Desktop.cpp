#include "platform/linux/X11Desktop.hpp"

#include <utility>

#include "platform/linux/status/IconFiles.hpp"

namespace quorvel::native {

X11Desktop::X11Desktop(XConnection& x, const XdgFolders& folders, const std::string& executable,
                       Log& log, PosixFiles& files, XdgLoginItem& loginItem, Windows shown)
    : x(x),
      log(log),
      files(files),
      loginItem(loginItem),
      events(runLoop.attach(x)),
      defaults("com.tessivane.quorvel", folders, log),
      elements(x),
      manager(x),
      screens(x, runLoop),
      pointer(x, screens),
      hotKeys(x, runLoop, log),
      entries(DesktopEntries::standardFolders()),
      catalog(entries),
      applications(x, runLoop, manager, elements, entries),
      windows(x, elements, manager, applications, [this] { return screens.framesInRoot(); }),
      pollTimers(x, runLoop, pointer, screens, windows),
      trust(x, X11Trust::isWaylandSession(), std::move(shown.prompt)),
      bus(runLoop, log),
      statusBar({x, runLoop, log, manager, bus, iconFolders(executable, folders),
                 std::move(shown.popUpMenu)}),
      remoteControl(bus),
      diagnostics(x, manager, bus,
                  {folders.configHome + "/com.tessivane.quorvel",
                   files.homeDirectory() + "/Library/Logs"}) {}

Desktop X11Desktop::desktop() {
    return {runLoop,    log,       defaults,      files,      screens, pointer,
            pollTimers, hotKeys,   applications,  catalog,    windows, trust,
            loginItem,  statusBar, remoteControl, diagnostics};
}

void X11Desktop::bringToFront(std::uint64_t identifier) const {
    const auto window = static_cast<xcb_window_t>(identifier);
    if (manager.isRunning()) {
        // With the time of now: the user may have typed elsewhere since we last heard of them.
        constexpr std::uint32_t fromPager = 2;
        x.sendToRoot(window, "_NET_ACTIVE_WINDOW",
                     {fromPager, x.serverTime(), XCB_WINDOW_NONE, 0, 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const auto cookie :
         {xcb_configure_window_checked(x.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above),
          xcb_set_input_focus_checked(x.xcb(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME)}) {
        xcb_discard_reply(x.xcb(), cookie.sequence);
    }
    x.flush();
}

}  // namespace quorvel::native
