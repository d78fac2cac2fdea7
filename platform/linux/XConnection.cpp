#include "platform/linux/XConnection.hpp"

#include <poll.h>

#include <algorithm>
#include <cstring>

namespace quorvel::native {
namespace {

// Interned in one round trip at the start; any other name costs one of its own.
constexpr std::array commonAtoms{
    "WM_STATE",
    "WM_CHANGE_STATE",
    "WM_CLASS",
    "WM_TRANSIENT_FOR",
    "UTF8_STRING",
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW",
    "_NET_WM_NAME",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_SHADED",
    "_NET_WM_STATE_MODAL",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DND",
    "_NET_WM_DESKTOP",
    "_NET_MOVERESIZE_WINDOW",
    "_NET_RESTACK_WINDOW",
    "_NET_FRAME_EXTENTS",
    "_GTK_FRAME_EXTENTS",
    "_GTK_APPLICATION_ID",
    "_KDE_NET_WM_DESKTOP_FILE",
};

xcb_timestamp_t timestampOf(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
        case XCB_MOTION_NOTIFY:
            return reinterpret_cast<const xcb_key_press_event_t&>(event).time;
        case XCB_PROPERTY_NOTIFY:
            return reinterpret_cast<const xcb_property_notify_event_t&>(event).time;
        default:
            return XCB_CURRENT_TIME;
    }
}

}  // namespace

std::unique_ptr<XConnection> XConnection::open(const std::string& displayName, std::string& error) {
    int screenNumber = 0;
    xcb_connection_t* connection =
        xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        const char* fromEnvironment = std::getenv("DISPLAY");
        const std::string name = !displayName.empty()         ? displayName
                                 : fromEnvironment != nullptr ? fromEnvironment
                                                              : "";
        error = name.empty() ? "DISPLAY is not set" : "no X server answers at " + name;
        return nullptr;
    }
    return std::unique_ptr<XConnection>(new XConnection(connection, screenNumber));
}

XConnection::XConnection(xcb_connection_t* connection, int screenNumber) : connection(connection) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i) xcb_screen_next(&screens);
    screenInfo = screens.data;

    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const char* name : commonAtoms) {
        cookies.push_back(
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name));
    }
    for (std::size_t i = 0; i < commonAtoms.size(); ++i) {
        const Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, cookies[i], nullptr));
        if (reply) atoms.emplace(commonAtoms[i], reply->atom);
    }
}

XConnection::~XConnection() {
    // Disconnecting throws away what has not been sent yet, and, where we have not read all that
    // the server has told us, also what it has not read yet.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

xcb_atom_t XConnection::atom(std::string_view name) const {
    if (const auto known = atoms.find(name); known != atoms.end()) return known->second;
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    if (!reply) return XCB_ATOM_NONE;
    atoms.emplace(name, reply->atom);
    return reply->atom;
}

void XConnection::selectOnRoot(std::uint32_t eventMask) {
    if ((rootMask & eventMask) == eventMask) return;
    rootMask |= eventMask;
    xcb_change_window_attributes(connection, root(), XCB_CW_EVENT_MASK, &rootMask);
}

void XConnection::select(xcb_window_t window, std::uint32_t eventMask) {
    if (window == root()) return selectOnRoot(eventMask);
    std::uint32_t& mask = masks[window];
    if ((mask & eventMask) == eventMask) return;
    mask |= eventMask | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
}

xcb_timestamp_t XConnection::serverTime() {
    if (clockWindow == XCB_WINDOW_NONE) {
        clockWindow = xcb_generate_id(connection);
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, clockWindow, root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &mask);
    }
    // Any change of a property is answered with the time; appending nothing is one.
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, clockWindow, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_timestamp_t now = XCB_CURRENT_TIME;
    waitFor(
        [&](const xcb_generic_event_t& event) {
            if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return false;
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (change.window != clockWindow) return false;
            now = change.time;
            return true;
        },
        std::chrono::steady_clock::now() + std::chrono::milliseconds(250));
    return now;
}

Subscription XConnection::onEvent(std::function<void(const xcb_generic_event_t&)> handler) {
    return eventSubscribers.add(std::move(handler));
}

Subscription XConnection::onArrival(std::function<void(const xcb_generic_event_t&)> handler) {
    return arrivalSubscribers.add(std::move(handler));
}

Subscription XConnection::onError(std::function<void(const xcb_generic_error_t&)> handler) {
    return errorSubscribers.add(std::move(handler));
}

Subscription XConnection::onLost(std::function<void()> handler) {
    return lostSubscribers.add(std::move(handler));
}

std::uint8_t XConnection::check(xcb_void_cookie_t cookie) const {
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    if (error) return error->error_code;
    return isLost() ? 255 : 0;
}

/// False when the event is nobody's business; it is freed then.
bool XConnection::take(xcb_generic_event_t* event) {
    Reply<xcb_generic_event_t> owner(event);
    if (event->response_type == 0) {
        // The window was gone before its events could be selected.
        const auto& error = reinterpret_cast<const xcb_generic_error_t&>(*event);
        if (error.major_code == XCB_CHANGE_WINDOW_ATTRIBUTES && error.error_code == XCB_WINDOW &&
            masks.erase(error.resource_id) > 0) {
            return false;
        }
    }
    if (event->response_type == XCB_DESTROY_NOTIFY) {
        masks.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(*event).window);
    }
    if (const xcb_timestamp_t time = timestampOf(*event); time != XCB_CURRENT_TIME) {
        timestamp = time;
    }
    if (event->response_type != 0) arrivalSubscribers.notify(*event);
    queue.push_back(std::move(owner));
    return true;
}

bool XConnection::waitFor(const std::function<bool(const xcb_generic_event_t&)>& seen,
                          std::chrono::steady_clock::time_point deadline) {
    flush();
    while (true) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection)) {
            if (take(event) && seen(*event)) return true;
        }
        const auto left = deadline - std::chrono::steady_clock::now();
        if (isLost() || left <= left.zero()) return false;
        pollfd descriptor{fileDescriptor(), POLLIN, 0};
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
        poll(&descriptor, 1, static_cast<int>(milliseconds));
    }
}

bool XConnection::readPending() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(connection)) take(event);
    return !queue.empty() || (isLost() && !lostReported);
}

void XConnection::dispatch() {
    while (!queue.empty()) {
        const Reply<xcb_generic_event_t> event = std::move(queue.front());
        queue.pop_front();
        if (event->response_type == 0) {
            errorSubscribers.notify(reinterpret_cast<const xcb_generic_error_t&>(*event));
        } else {
            eventSubscribers.notify(*event);
        }
    }
    if (isLost() && !lostReported) {
        lostReported = true;
        lostSubscribers.notify();
    }
}

std::vector<std::uint8_t> XConnection::property(xcb_window_t window, std::string_view name,
                                                xcb_atom_t type) const {
    std::vector<std::uint8_t> bytes;
    constexpr std::uint32_t chunk = 16 * 1024;  // in 32-bit units
    while (true) {
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection,
            xcb_get_property(connection, 0, window, atom(name), type,
                             static_cast<std::uint32_t>(bytes.size() / 4), chunk),
            nullptr));
        if (!reply || reply->type == XCB_ATOM_NONE ||
            (type != XCB_ATOM_ANY && reply->type != type)) {
            return {};
        }
        const auto* data = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
        bytes.insert(bytes.end(), data, data + xcb_get_property_value_length(reply.get()));
        if (reply->bytes_after == 0) return bytes;
    }
}

std::vector<std::uint32_t> XConnection::property32(xcb_window_t window, std::string_view name,
                                                   xcb_atom_t type) const {
    const std::vector<std::uint8_t> bytes = property(window, name, type);
    std::vector<std::uint32_t> items(bytes.size() / 4);
    if (!items.empty()) std::memcpy(items.data(), bytes.data(), items.size() * 4);
    return items;
}

void XConnection::sendToRoot(xcb_window_t window, std::string_view type,
                             const std::array<std::uint32_t, 5>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(connection, 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    flush();
}

}  // namespace quorvel::native
