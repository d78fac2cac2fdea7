#include "platform/linux/X11Trust.hpp"

#include <xcb/randr.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quorvel::native {
namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool hasExtension(const XConnection& x, std::string_view name) {
    const Reply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(
        x.xcb(), xcb_query_extension(x.xcb(), static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply && reply->present != 0;
}

bool hasMonitorNamed(const XConnection& x, std::string_view beginning) {
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(x.xcb(), &xcb_randr_id);
    if (randr == nullptr || randr->present == 0) return false;
    const Reply<xcb_randr_get_monitors_reply_t> monitors(xcb_randr_get_monitors_reply(
        x.xcb(), xcb_randr_get_monitors(x.xcb(), x.root(), 1), nullptr));
    if (!monitors) return false;
    for (auto i = xcb_randr_get_monitors_monitors_iterator(monitors.get()); i.rem > 0;
         xcb_randr_monitor_info_next(&i)) {
        const Reply<xcb_get_atom_name_reply_t> name(
            xcb_get_atom_name_reply(x.xcb(), xcb_get_atom_name(x.xcb(), i.data->name), nullptr));
        if (!name) continue;
        const std::string_view text(
            xcb_get_atom_name_name(name.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
        if (text.starts_with(beginning)) return true;
    }
    return false;
}

bool hasInputDeviceNamed(const XConnection& x, std::string_view beginning) {
    const xcb_query_extension_reply_t* input = xcb_get_extension_data(x.xcb(), &xcb_input_id);
    if (input == nullptr || input->present == 0) return false;
    const auto versionCookie = xcb_input_xi_query_version(x.xcb(), 2, 2);
    const auto devicesCookie = xcb_input_xi_query_device(x.xcb(), XCB_INPUT_DEVICE_ALL);
    const Reply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(x.xcb(), versionCookie, nullptr));
    const Reply<xcb_input_xi_query_device_reply_t> devices(
        xcb_input_xi_query_device_reply(x.xcb(), devicesCookie, nullptr));
    if (!devices) return false;
    for (auto i = xcb_input_xi_query_device_infos_iterator(devices.get()); i.rem > 0;
         xcb_input_xi_device_info_next(&i)) {
        const std::string_view name(
            xcb_input_xi_device_info_name(i.data),
            static_cast<std::size_t>(xcb_input_xi_device_info_name_length(i.data)));
        if (name.starts_with(beginning)) return true;
    }
    return false;
}

}  // namespace

bool X11Trust::isWaylandSession() {
    return variable("XDG_SESSION_TYPE") == "wayland" || !variable("WAYLAND_DISPLAY").empty();
}

X11Trust::X11Trust(XConnection& x, bool isWaylandSession, Prompt prompt)
    : x(x), waylandSession(isWaylandSession), prompt(std::move(prompt)) {}

std::string X11Trust::reason() const {
    if (isUnderWayland()) {
        return "This is a Wayland session, which does not let a program move the windows of "
               "others. Log in to an X11 session to tuck windows.";
    }
    if (followsEwmh()) return {};
    if (!windowManagerRuns()) {
        return "No window manager is running, so windows cannot be listed or moved. Start one, and "
               "tucking works at once.";
    }
    return "The window manager does not follow the EWMH standard, so windows cannot be listed or "
           "moved. Use one that does, such as that of any full desktop.";
}

bool X11Trust::isTrustedWithPrompt() {
    const std::string why = reason();
    if (why.empty()) return true;
    if (prompt && !isPrompting) {
        isPrompting = true;
        prompt(why, [this, alive = life.watch()] {
            if (!alive.expired()) isPrompting = false;
        });
    }
    return false;
}

bool X11Trust::isUnderWayland() const {
    // Another X server inside a Wayland session (nested, virtual) is a desktop of its own.
    if (!waylandSession) return false;
    if (!serverIsXwayland) {
        // The extension is recent, the names of the outputs were given up, the devices depend on a
        // seat: one of the three is always there.
        serverIsXwayland = hasExtension(x, "XWAYLAND") || hasMonitorNamed(x, "XWAYLAND") ||
                           hasInputDeviceNamed(x, "xwayland-");
    }
    return *serverIsXwayland;
}

bool X11Trust::windowManagerRuns() const {
    const Reply<xcb_get_window_attributes_reply_t> root(xcb_get_window_attributes_reply(
        x.xcb(), xcb_get_window_attributes(x.xcb(), x.root()), nullptr));
    // Only one client can have this, and managing windows is having it.
    return root && (root->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
}

bool X11Trust::followsEwmh() const {
    // A window manager that has ended leaves its properties on the root, but not its window.
    const auto check = x.property32(x.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW);
    if (check.size() != 1 || check[0] == x.root() ||
        x.property32(check[0], "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW) != check) {
        return false;
    }
    const auto supported = x.property32(x.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM);
    const auto supports = [&](std::string_view hint) {
        return std::find(supported.begin(), supported.end(), x.atom(hint)) != supported.end();
    };
    return supports("_NET_CLIENT_LIST") && supports("_NET_ACTIVE_WINDOW");
}

}  // namespace quorvel::native
