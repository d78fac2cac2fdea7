#include "platform/linux/ClientWindows.hpp"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/linux/WindowTree.hpp"

namespace quorvel::native {

ClientWindows::ClientWindows(XConnection& x, WindowManagerInfo& manager)
    : x(x),
      manager(manager),
      reader(x),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })),
      managerEvents(manager.onChange([this] { managerChanged(); })) {
    x.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    if (!manager.isRunning()) x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    activeWindow = readActive();
    if (activeWindow != XCB_WINDOW_NONE) activity.push_back(activeWindow);
}

std::vector<xcb_window_t> ClientWindows::all() {
    updateList();
    if (!activityIsSeeded && !list.empty()) {
        // What lies on top was in use last, as far as anybody can tell afterwards.
        activityIsSeeded = true;
        for (const xcb_window_t window : byStacking(x, list)) {
            if (!hasBeenActive(window)) activity.push_back(window);
        }
    }
    std::vector<xcb_window_t> result;
    std::unordered_set<xcb_window_t> rest;
    for (const xcb_window_t window : list) {
        const auto found = known.find(window);
        if (found == known.end()) continue;
        const ClientWindow::Kind kind = found->second.kind;
        if (kind == ClientWindow::Kind::normal || kind == ClientWindow::Kind::dialog) {
            rest.insert(window);
        }
    }
    for (const xcb_window_t window : activity) {
        if (rest.erase(window) > 0) result.push_back(window);
    }
    for (const xcb_window_t window : list) {
        if (rest.erase(window) > 0) result.push_back(window);
    }
    return result;
}

bool ClientWindows::isManaged(xcb_window_t window) {
    updateList();
    return std::find(list.begin(), list.end(), window) != list.end();
}

const ClientWindow* ClientWindows::find(xcb_window_t window) {
    if (window == XCB_WINDOW_NONE || window == x.root()) return nullptr;
    load({window});
    const auto found = known.find(window);
    return found == known.end() ? nullptr : &found->second;
}

void ClientWindows::refresh(const std::vector<xcb_window_t>& windows) {
    for (const xcb_window_t window : windows) known.erase(window);
    load(windows);
}

xcb_window_t ClientWindows::activeNow() {
    return readActive();
}

bool ClientWindows::hasBeenActive(xcb_window_t window) const {
    return std::find(activity.begin(), activity.end(), window) != activity.end();
}

xcb_window_t ClientWindows::topmost(const std::vector<xcb_window_t>& windows) const {
    if (windows.size() < 2)
        return windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
    const auto order = byStacking(x, windows);
    return order.empty() ? windows.front() : order.front();
}

bool ClientWindows::isOnCurrentDesktop(xcb_window_t window) {
    const ClientWindow* client = find(window);
    if (client == nullptr || client->desktop.value_or(allDesktops) == allDesktops) return true;
    const auto current = x.property32(x.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL);
    return current.empty() || current.front() == client->desktop;
}

void ClientWindows::activate(xcb_window_t window) {
    if (manager.isRunning()) {
        constexpr std::uint32_t fromPager = 2;
        // Not every window manager changes the workspace for a window that is to be active.
        if (!isOnCurrentDesktop(window)) {
            const std::uint32_t desktop = find(window)->desktop.value_or(allDesktops);
            x.sendToRoot(x.root(), "_NET_CURRENT_DESKTOP", {desktop, x.serverTime(), 0, 0, 0});
        }
        x.sendToRoot(window, "_NET_ACTIVE_WINDOW", {fromPager, x.serverTime(), 0, 0, 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const auto cookie :
         {xcb_map_window_checked(x.xcb(), window),
          xcb_configure_window_checked(x.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above),
          xcb_set_input_focus_checked(x.xcb(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME)}) {
        xcb_discard_reply(x.xcb(), cookie.sequence);
    }
    x.flush();
}

Subscription ClientWindows::onActiveChange(std::function<void()> handler) {
    return activeHandlers.add(std::move(handler));
}

Subscription ClientWindows::onListChange(std::function<void()> handler) {
    return listHandlers.add(std::move(handler));
}

Subscription ClientWindows::onWindowChange(std::function<void(xcb_window_t, Change)> handler) {
    return windowHandlers.add(std::move(handler));
}

void ClientWindows::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_PROPERTY_NOTIFY:
            return handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
        case XCB_DESTROY_NOTIFY: {
            const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            const bool wasKnown = known.erase(window) > 0;
            std::erase(activity, window);
            if (wasKnown) listChanged();
            if (wasKnown && window == activeWindow) setActive(readActive());
            return;
        }
        case XCB_MAP_NOTIFY:
            frameCameOrWent(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
            if (!manager.isRunning()) listChanged();
            return;
        case XCB_UNMAP_NOTIFY:
            frameCameOrWent(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window);
            if (!manager.isRunning()) listChanged();
            return;
        case XCB_REPARENT_NOTIFY:
            if (!manager.isRunning()) listChanged();
            return;
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT:
            if (!manager.isRunning()) setActive(readActive());
            return;
        default:
            return;
    }
}

void ClientWindows::frameCameOrWent(xcb_window_t frame) {
    const auto held = std::find_if(known.begin(), known.end(), [&](const auto& each) {
        return each.second.tellingFrame == frame;
    });
    if (held == known.end()) return;
    const xcb_window_t window = held->first;
    known.erase(held);
    windowHandlers.notify(window, Change::state);
}

void ClientWindows::handleProperty(const xcb_property_notify_event_t& change) {
    if (change.window == x.root()) {
        if (change.atom == x.atom("_NET_CLIENT_LIST")) listChanged();
        if (change.atom == x.atom("_NET_ACTIVE_WINDOW")) {
            // It may have changed there and back since; whoever counts on the difference is told.
            remember(readActive());
            activeHandlers.notify();
        }
        return;
    }
    const auto concern = reader.concernOf(change.atom);
    if (concern == ClientWindowReader::Concern::none || known.erase(change.window) == 0) return;
    windowHandlers.notify(change.window, concern == ClientWindowReader::Concern::identity
                                             ? Change::identity
                                             : Change::state);
}

void ClientWindows::managerChanged() {
    if (!manager.isRunning()) x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    known.clear();
    listChanged();
    setActive(readActive());
}

void ClientWindows::listChanged() {
    listIsFresh = false;
    // Events of the focus are told by the windows themselves, so new ones must be known at once.
    if (!manager.isRunning()) setActive(readActive());
    listHandlers.notify();
}

void ClientWindows::setActive(xcb_window_t window) {
    if (window == activeWindow) return;
    remember(window);
    activeHandlers.notify();
}

void ClientWindows::remember(xcb_window_t active) {
    activeWindow = active;
    if (active == XCB_WINDOW_NONE) return;
    std::erase(activity, active);
    activity.insert(activity.begin(), active);
}

xcb_window_t ClientWindows::readActive() {
    if (!manager.isRunning()) return focusedClient();
    const auto windows = x.property32(x.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    return windows.empty() || windows.front() == x.root() ? xcb_window_t{XCB_WINDOW_NONE}
                                                          : windows.front();
}

/// The window of the list that has the input focus or holds the one that has it.
xcb_window_t ClientWindows::focusedClient() {
    const Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(x.xcb(), xcb_get_input_focus(x.xcb()), nullptr));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT) return XCB_WINDOW_NONE;
    updateList();
    for (xcb_window_t window = focus->focus; window != XCB_WINDOW_NONE;
         window = parentOf(x, window)) {
        if (std::find(list.begin(), list.end(), window) != list.end()) return window;
    }
    return XCB_WINDOW_NONE;
}

void ClientWindows::updateList() {
    if (!listIsFresh) {
        listIsFresh = true;
        list = manager.isRunning() ? x.property32(x.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)
                                   : windowsOnScreen(x);
    }
    load(list);
}

void ClientWindows::load(const std::vector<xcb_window_t>& windows) {
    std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (!manager.isRunning()) mask |= XCB_EVENT_MASK_FOCUS_CHANGE;
    std::vector<xcb_window_t> unknown;
    for (const xcb_window_t window : windows) {
        if (known.contains(window)) continue;
        // Before it is asked, or a change in between would go unnoticed.
        x.select(window, mask);
        unknown.push_back(window);
    }
    if (unknown.empty()) return;
    for (auto& [window, client] : reader.read(unknown, manager.supports("_NET_WM_STATE_HIDDEN"))) {
        known.insert_or_assign(window, std::move(client));
    }
}

}  // namespace quorvel::native
