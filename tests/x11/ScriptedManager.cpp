#include "tests/x11/ScriptedManager.hpp"

#include <poll.h>

#include <algorithm>
#include <stdexcept>

namespace quorvel::test {

ScriptedManager::ScriptedManager(const std::string& displayName, Habits habits)
    : client(displayName), habits(habits) {
    xcb_connection_t* const x = client.xcb();
    const std::uint32_t mask =
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    const XReply<xcb_generic_error_t> error(xcb_request_check(
        x, xcb_change_window_attributes_checked(x, client.root(), XCB_CW_EVENT_MASK, &mask)));
    if (error) throw std::runtime_error("another window manager runs");
    checkWindow = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, checkWindow, client.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    client.setPropertyText(checkWindow, "_NET_WM_NAME", "UTF8_STRING", "Scripted");
    client.setProperty32(checkWindow, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {checkWindow});
    std::vector<std::uint32_t> supported;
    for (const char* name : {"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW", "_NET_WM_STATE",
                             "_NET_WM_STATE_HIDDEN", "_NET_SUPPORTING_WM_CHECK"}) {
        supported.push_back(client.atom(name));
    }
    client.setProperty32(client.root(), "_NET_SUPPORTED", "ATOM", supported);
    announce();
    client.setProperty32(client.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", {checkWindow});
    client.sync();
    thread = std::thread([this] { run(); });
}

ScriptedManager::~ScriptedManager() {
    ends = true;
    thread.join();
}

void ScriptedManager::run() {
    pollfd descriptor{xcb_get_file_descriptor(client.xcb()), POLLIN, 0};
    while (!ends && xcb_connection_has_error(client.xcb()) == 0) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(client.xcb())) {
            const XReply<xcb_generic_event_t> owner(event);
            handle(*event);
        }
        while (!plans.empty() && plans.front().due <= Clock::now()) {
            const Plan plan = plans.front();
            plans.pop_front();
            if (plan.action == Action::iconify) iconify(plan.window);
            if (plan.action == Action::activate) {
                activate(plan.window);
                ++activationCount;
            }
        }
        xcb_flush(client.xcb());
        poll(&descriptor, 1, 5);
    }
}

void ScriptedManager::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_MAP_REQUEST:
            return manage(reinterpret_cast<const xcb_map_request_event_t&>(event).window);
        case XCB_DESTROY_NOTIFY:
            return forget(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (message.type == client.atom("WM_CHANGE_STATE")) {
                plans.push_back(
                    {Clock::now() + habits.iconifiesAfter, Action::iconify, message.window});
            }
            if (message.type == client.atom("_NET_ACTIVE_WINDOW")) {
                if (iconic[message.window]) restore(message.window);
                activate(message.window);
            }
            return;
        }
        default:
            return;
    }
}

void ScriptedManager::manage(xcb_window_t window) {
    const bool isNew = std::find(managed.begin(), managed.end(), window) == managed.end();
    if (isNew) managed.push_back(window);
    restore(window);
    announce();
    if (isNew ? habits.activatesNew : habits.activatesRestored) {
        plans.push_back({Clock::now() + habits.activatesAfter, Action::activate, window});
    }
}

void ScriptedManager::iconify(xcb_window_t window) {
    iconic[window] = true;
    if (!habits.keepsIconicMapped) xcb_unmap_window(client.xcb(), window);
    client.setProperty32(window, "WM_STATE", "WM_STATE", {3, 0});
    client.setProperty32(window, "_NET_WM_STATE", "ATOM", {client.atom("_NET_WM_STATE_HIDDEN")});
    activate(XCB_WINDOW_NONE);
}

void ScriptedManager::restore(xcb_window_t window) {
    iconic[window] = false;
    xcb_map_window(client.xcb(), window);
    client.setProperty32(window, "WM_STATE", "WM_STATE", {1, 0});
    client.setProperty32(window, "_NET_WM_STATE", "ATOM", {});
}

void ScriptedManager::activate(xcb_window_t window) {
    client.setProperty32(client.root(), "_NET_ACTIVE_WINDOW", "WINDOW", {window});
}

void ScriptedManager::forget(xcb_window_t window) {
    if (std::erase(managed, window) > 0) announce();
}

void ScriptedManager::announce() {
    client.setProperty32(client.root(), "_NET_CLIENT_LIST", "WINDOW", managed);
}

}  // namespace quorvel::test
