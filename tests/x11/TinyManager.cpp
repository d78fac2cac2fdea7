#include "tests/x11/TinyManager.hpp"

#include <poll.h>

#include <stdexcept>

namespace quorvel::test {

TinyManager::TinyManager(const std::string& displayName, Behaviour behaviour)
    : client(displayName), behaviour(std::move(behaviour)) {
    const std::uint32_t mask =
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const XReply<xcb_generic_error_t> taken(xcb_request_check(
        client.xcb(), xcb_change_window_attributes_checked(client.xcb(), client.root(),
                                                           XCB_CW_EVENT_MASK, &mask)));
    if (taken) throw std::runtime_error("another window manager runs");
    announce();
    thread = std::thread([this] { run(); });
}

TinyManager::~TinyManager() {
    ends = true;
    thread.join();
}

void TinyManager::announce() {
    checkWindow = xcb_generate_id(client.xcb());
    xcb_create_window(client.xcb(), XCB_COPY_FROM_PARENT, checkWindow, client.root(), -1, -1, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    std::vector<std::uint32_t> supported{client.atom("_NET_SUPPORTING_WM_CHECK")};
    if (behaviour.onMessage) supported.push_back(client.atom("_NET_MOVERESIZE_WINDOW"));
    client.setPropertyText(checkWindow, "_NET_WM_NAME", "UTF8_STRING", behaviour.name);
    client.setProperty32(client.root(), "_NET_SUPPORTED", "ATOM", supported);
    client.setProperty32(checkWindow, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {checkWindow});
    client.setProperty32(client.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", {checkWindow});
    client.sync();
}

void TinyManager::run() {
    while (!ends) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(client.xcb())) {
            const XReply<xcb_generic_event_t> owner(event);
            handle(*event);
        }
        xcb_flush(client.xcb());
        pollfd descriptor{xcb_get_file_descriptor(client.xcb()), POLLIN, 0};
        poll(&descriptor, 1, 20);
    }
}

void TinyManager::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_MAP_REQUEST: {
            const auto& request = reinterpret_cast<const xcb_map_request_event_t&>(event);
            client.setProperty32(request.window, "WM_STATE", "WM_STATE", {1, 0});
            xcb_map_window(client.xcb(), request.window);
            break;
        }
        case XCB_CONFIGURE_REQUEST: {
            const auto& request = reinterpret_cast<const xcb_configure_request_event_t&>(event);
            if (behaviour.onConfigure) {
                move(request.window, behaviour.onConfigure,
                     {static_cast<double>(request.x), static_cast<double>(request.y)});
            }
            break;
        }
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (!behaviour.onMessage || message.type != client.atom("_NET_MOVERESIZE_WINDOW")) {
                break;
            }
            move(message.window, behaviour.onMessage,
                 {static_cast<double>(static_cast<std::int32_t>(message.data.data32[1])),
                  static_cast<double>(static_cast<std::int32_t>(message.data.data32[2]))});
            break;
        }
        default:
            break;
    }
}

void TinyManager::move(xcb_window_t window, const Rule& rule, Point asked) {
    ++requestCount;
    const XReply<xcb_get_geometry_reply_t> now(
        xcb_get_geometry_reply(client.xcb(), xcb_get_geometry(client.xcb(), window), nullptr));
    if (!now) return;
    const Point to =
        rule({double(now->x), double(now->y), double(now->width), double(now->height)}, asked);
    const std::uint32_t values[]{static_cast<std::uint32_t>(static_cast<std::int32_t>(to.x)),
                                 static_cast<std::uint32_t>(static_cast<std::int32_t>(to.y))};
    xcb_configure_window(client.xcb(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
}

}  // namespace quorvel::test
