#include "tests/support/x11/WindowManager.hpp"

#include <filesystem>
#include <ostream>
#include <stdexcept>

namespace quorvel::test {
namespace {

// Its animation of minimizing moves the window itself: killed meanwhile, it leaves it somewhere on
// the way, whoever asked for it.
constexpr std::string_view openboxConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
 <focus><focusNew>yes</focusNew><followMouse>no</followMouse></focus>
 <placement><policy>Smart</policy></placement>
 <theme><name>Clearlooks</name><titleLayout>NLIMC</titleLayout>
  <animateIconify>no</animateIconify></theme>
 <desktops><number>2</number></desktops>
 <keyboard/>
 <mouse>
  <context name="Client">
   <mousebind button="Left" action="Press">
    <action name="Focus"/><action name="Raise"/>
   </mousebind>
  </context>
  <context name="Titlebar">
   <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
  </context>
 </mouse>
</openbox_config>
)";

// "override" keeps the shortcuts of the system's defaults out.
constexpr std::string_view xfceShortcuts = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-keyboard-shortcuts" version="1.0">
 <property name="xfwm4" type="empty">
  <property name="custom" type="empty">
   <property name="override" type="bool" value="true"/>
  </property>
 </property>
</channel>
)";
constexpr std::string_view xfwmSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0">
 <property name="general" type="empty">
  <property name="use_compositing" type="bool" value="false"/>
  <property name="workspace_count" type="int" value="2"/>
 </property>
</channel>
)";

constexpr std::string_view kwinSettings = R"([Compositing]
Enabled=false
[Desktops]
Number=2
[ModifierOnlyShortcuts]
Meta=
)";

constexpr std::string_view i3Configuration = R"(# i3 config file (v4)
font pango:DejaVu Sans Mono 8
for_window [all] floating enable
focus_follows_mouse no
focus_on_window_activation focus
mouse_warping none
)";

constexpr std::string_view marcoSettings = R"([org/mate/marco/general]
center-new-windows=false
allow-tiling=false
[org/mate/marco/global-keybindings]
switch-to-workspace-left='disabled'
switch-to-workspace-right='disabled'
switch-to-workspace-up='disabled'
switch-to-workspace-down='disabled'
switch-group='disabled'
switch-windows='disabled'
switch-panels='disabled'
cycle-group='disabled'
cycle-windows='disabled'
cycle-panels='disabled'
show-desktop='disabled'
panel-main-menu='disabled'
panel-run-dialog='disabled'
run-command-screenshot='disabled'
run-command-window-screenshot='disabled'
[org/mate/marco/window-keybindings]
activate-window-menu='disabled'
toggle-maximized='disabled'
unmaximize='disabled'
minimize='disabled'
close='disabled'
begin-move='disabled'
begin-resize='disabled'
move-to-workspace-left='disabled'
move-to-workspace-right='disabled'
move-to-workspace-up='disabled'
move-to-workspace-down='disabled'
)";

constexpr std::string_view awesomeConfiguration = R"(
local gears = require("gears")
local awful = require("awful")
require("awful.autofocus")
require("beautiful").init(gears.filesystem.get_themes_dir() .. "default/theme.lua")
awful.layout.layouts = { awful.layout.suit.floating }
awful.screen.connect_for_each_screen(function(s)
    awful.tag({ "1", "2" }, s, awful.layout.suit.floating)
end)
awful.rules.rules = { { rule = {}, properties = {
    focus = awful.client.focus.filter, raise = true, screen = awful.screen.preferred } } }
)";

constexpr std::string_view icewmPreferences = R"(ShowTaskBar=0
ShowPopupsAbovePointer=0
SmartPlacement=1
EdgeSwitch=0
WorkspaceNames=" 1 ", " 2 "
)";

constexpr std::string_view fluxboxInit = R"(session.screen0.workspaces: 2
session.screen0.toolbar.visible: false
session.screen0.tabs.intitlebar: true
session.screen0.edgeSnapThreshold: 0
)";

constexpr std::string_view jwmConfiguration = R"(<?xml version="1.0"?>
<JWM>
 <Desktops width="2" height="1"/>
 <FocusModel>click</FocusModel>
 <SnapMode distance="0">none</SnapMode>
</JWM>
)";

constexpr std::string_view bspwmConfiguration = R"(#!/bin/sh
bspc monitor -d 1 2
bspc config focus_follows_pointer false
bspc config border_width 2
bspc rule -a '*' state=floating
)";

struct Recipe {
    std::vector<std::string> arguments;
    Environment environment;
};

Recipe prepare(WindowManagerKind kind, const ScratchFolder& folder) {
    switch (kind) {
        case WindowManagerKind::openbox: {
            const auto file = folder.write("openbox.xml", openboxConfiguration);
            return {{"openbox", "--sm-disable", "--config-file", file.string()}, {}};
        }
        case WindowManagerKind::xfwm4: {
            const std::string channels = "config/xfce4/xfconf/xfce-perchannel-xml/";
            folder.write(channels + "xfce4-keyboard-shortcuts.xml", xfceShortcuts);
            folder.write(channels + "xfwm4.xml", xfwmSettings);
            return {{"xfwm4", "--compositor=off"}, {}};
        }
        case WindowManagerKind::kwin:
            folder.write("config/kwinrc", kwinSettings);
            return {{"kwin_x11", "--no-kactivities"},
                    {{"KWIN_COMPOSE", "N"}, {"QT_QPA_PLATFORM", "xcb"}}};
        case WindowManagerKind::i3: {
            const auto file = folder.write("i3.config", i3Configuration);
            return {{"i3", "-c", file.string()}, {}};
        }
        case WindowManagerKind::marco:
            folder.write("config/glib-2.0/settings/keyfile", marcoSettings);
            return {{"marco", "--no-composite", "--sm-disable"},
                    {{"GSETTINGS_BACKEND", "keyfile"}}};
        case WindowManagerKind::metacity:
            return {{"metacity", "--no-composite", "--sm-disable"}, {}};
        case WindowManagerKind::mutter:
            return {{"mutter", "--x11", "--sm-disable"}, {}};
        case WindowManagerKind::awesome: {
            const auto file = folder.write("awesome.lua", awesomeConfiguration);
            return {{"awesome", "--config", file.string()}, {}};
        }
        case WindowManagerKind::icewm: {
            const auto file = folder.write("icewm/preferences", icewmPreferences);
            folder.write("icewm/keys", "");
            return {{"icewm"}, {{"ICEWM_PRIVCFG", file.parent_path().string()}}};
        }
        case WindowManagerKind::fluxbox: {
            // Or it tells in a window of its own that nothing is there to set a background with.
            folder.write("home/.fluxbox/overlay", "background: none\n");
            const auto file = folder.write("fluxbox/init", fluxboxInit);
            folder.write("fluxbox/keys", "");
            return {{"fluxbox", "-no-toolbar", "-no-slit", "-rc", file.string()}, {}};
        }
        case WindowManagerKind::jwm: {
            const auto file = folder.write("jwm.xml", jwmConfiguration);
            return {{"jwm", "-f", file.string()}, {}};
        }
        case WindowManagerKind::bspwm: {
            const auto file = folder.write("bspwmrc", bspwmConfiguration);
            std::filesystem::permissions(file, std::filesystem::perms::owner_all);
            return {{"bspwm", "-c", file.string()}, {}};
        }
    }
    throw std::invalid_argument("no such window manager");
}

std::vector<std::uint32_t> checkWindow(const XProbe& probe) {
    const XClient& x = probe.connection();
    return x.property32(x.root(), "_NET_SUPPORTING_WM_CHECK");
}

ChildProcess launch(WindowManagerKind kind, Environment environment, const ScratchFolder& folder,
                    WindowManager::Start start) {
    Recipe recipe = prepare(kind, folder);
    if (start == WindowManager::Start::replacing) recipe.arguments.emplace_back("--replace");
    for (const auto& [name, value] : recipe.environment) environment[name] = value;
    return ChildProcess({recipe.arguments, environment, folder / "window-manager.log", {}});
}

}  // namespace

const std::vector<WindowManagerKind>& allWindowManagers() {
    static const std::vector<WindowManagerKind> all{
        WindowManagerKind::openbox, WindowManagerKind::xfwm4, WindowManagerKind::kwin,
        WindowManagerKind::i3, WindowManagerKind::marco};
    return all;
}

const std::vector<WindowManagerKind>& everyWindowManager() {
    static const std::vector<WindowManagerKind> all{
        WindowManagerKind::openbox, WindowManagerKind::xfwm4,   WindowManagerKind::metacity,
        WindowManagerKind::marco,   WindowManagerKind::mutter,  WindowManagerKind::kwin,
        WindowManagerKind::i3,      WindowManagerKind::awesome, WindowManagerKind::icewm,
        WindowManagerKind::fluxbox, WindowManagerKind::jwm,     WindowManagerKind::bspwm};
    return all;
}

std::string nameOf(WindowManagerKind kind) {
    switch (kind) {
        case WindowManagerKind::openbox:
            return "openbox";
        case WindowManagerKind::xfwm4:
            return "xfwm4";
        case WindowManagerKind::kwin:
            return "kwin";
        case WindowManagerKind::i3:
            return "i3";
        case WindowManagerKind::marco:
            return "marco";
        case WindowManagerKind::metacity:
            return "metacity";
        case WindowManagerKind::mutter:
            return "mutter";
        case WindowManagerKind::awesome:
            return "awesome";
        case WindowManagerKind::icewm:
            return "icewm";
        case WindowManagerKind::fluxbox:
            return "fluxbox";
        case WindowManagerKind::jwm:
            return "jwm";
        case WindowManagerKind::bspwm:
            return "bspwm";
    }
    return "";
}

void PrintTo(WindowManagerKind kind, std::ostream* out) {
    *out << nameOf(kind);
}

WindowManager::WindowManager(WindowManagerKind kind, const Environment& environment,
                             const ScratchFolder& folder, const XProbe& probe, Start start)
    : managerKind(kind),
      predecessor(start == Start::replacing ? checkWindow(probe) : std::vector<std::uint32_t>{}),
      process(launch(kind, environment, folder, start)),
      firstClient(environment.at("DISPLAY")) {
    const auto need = [&](bool itHas, const char* what) {
        if (itHas) return;
        throw std::runtime_error(nameOf(kind) + " does not " + what + "; see window-manager.log");
    };
    const auto isReady = [&] {
        return probe.windowManagerIsReady() && checkWindow(probe) != predecessor;
    };
    waitUntil([&] { return isReady() || !process.isRunning(); });
    need(isReady(), "start");

    // Openbox announces itself a little before it answers, and loses a window mapped in between:
    // it is ready when it manages one.
    const xcb_window_t window = firstClient.open({.title = "Readiness"});
    // Where there are others, one of them may fill the screen, and some show no other then.
    const auto isTaken = [&] {
        return probe.isManaged(window) &&
               (probe.isViewable(window) || probe.clientList().size() > 1);
    };
    need(waitUntil([&] {
             firstClient.map(window);
             return waitUntil(isTaken, 20ms);
         }),
         "manage a window");
    firstClient.destroy(window);
    need(waitUntil([&] { return !probe.isManaged(window); }), "notice the end of a window");
}

void WindowManager::sync() {
    // It handles events in their order, so its answer to a question comes last.
    const XClient& x = firstClient.connection();
    const xcb_window_t window = xcb_generate_id(x.xcb());
    xcb_create_window(x.xcb(), XCB_COPY_FROM_PARENT, window, x.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    x.sendToRoot(window, "_NET_REQUEST_FRAME_EXTENTS", {0, 0, 0, 0, 0});
    const bool answered =
        waitUntil([&] { return !x.property32(window, "_NET_FRAME_EXTENTS").empty(); });
    xcb_destroy_window(x.xcb(), window);
    x.sync();
    if (!answered) throw std::runtime_error(nameOf(managerKind) + " does not answer");
}

}  // namespace quorvel::test
