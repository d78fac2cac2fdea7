#include "platform/linux/WindowHider.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds patience{250};
/// Where nothing is expected, but might happen all the same.
constexpr milliseconds hope{30};
constexpr milliseconds activationMayFollow{500};

/// Known to have no iconic windows. Only shortens the wait that finds out.
bool isSaidToIgnoreIconify(const WindowManagerInfo& manager) {
    constexpr std::array<std::string_view, 2> names{"i3", "bspwm"};
    const std::string name = lowercased(manager.name());
    return !manager.isRunning() || std::find(names.begin(), names.end(), name) != names.end();
}

bool contains(const std::vector<xcb_window_t>& windows, xcb_window_t window) {
    return std::find(windows.begin(), windows.end(), window) != windows.end();
}

}  // namespace

WindowHider::WindowHider(XConnection& x, WindowManagerInfo& manager, ClientWindows& clients,
                         OffscreenHider& offscreen)
    : x(x),
      manager(manager),
      clients(clients),
      offscreen(offscreen),
      notes(x),
      windowEvents(clients.onWindowChange(
          [this](xcb_window_t window, ClientWindows::Change) { windowChanged(window); })),
      activeEvents(clients.onActiveChange([this] { activeChanged(); })) {}

WindowHider::~WindowHider() {
    for (const xcb_window_t window : iconified) notes.erase(window);
}

bool WindowHider::isHidden(xcb_window_t window) {
    if (offscreen.isHidden(window)) return true;
    const ClientWindow* client = clients.find(window);
    return client == nullptr || client->isIconic;
}

void WindowHider::hide(const std::vector<xcb_window_t>& windows) {
    std::erase_if(iconified, [this](xcb_window_t window) { return !clients.find(window); });
    std::vector<xcb_window_t> inSight = windows;
    std::erase_if(inSight, [this](xcb_window_t window) { return isHidden(window); });
    if (inSight.empty()) return;
    onlyShown.clear();
    for (const xcb_window_t window : inSight) notes.write(window);
    std::vector<xcb_window_t> left = iconify(inSight);
    for (const xcb_window_t window : inSight) {
        if (!contains(left, window)) iconified.insert(window);
    }
    std::erase_if(left, [this](xcb_window_t window) {
        const bool isHidden = offscreen.hide(window);
        if (!isHidden) notes.erase(window);
        return !isHidden;
    });
    if (!left.empty()) giveKeyboardToAnother(left);
}

std::vector<xcb_window_t> WindowHider::toBeShown(const std::vector<xcb_window_t>& windows) {
    std::vector<xcb_window_t> ours;
    std::vector<xcb_window_t> all;
    for (const xcb_window_t window : windows) {
        if (!isHidden(window)) continue;
        all.push_back(window);
        if (offscreen.isHidden(window) || iconified.contains(window)) ours.push_back(window);
    }
    const bool areAllHidden = all.size() == windows.size();
    return ours.empty() && areAllHidden ? all : ours;
}

void WindowHider::show(const std::vector<xcb_window_t>& windows) {
    if (windows.empty()) return;
    const xcb_window_t before = clients.activeNow();
    rightfullyActive = contains(windows, before) ? xcb_window_t{XCB_WINDOW_NONE} : before;
    const bool activated = !restore(windows).empty();
    onlyShown = {windows.begin(), windows.end()};
    onlyShownUntil = Clock::now() + activationMayFollow;
    if (activated || onlyShown.contains(clients.activeNow())) giveBackKeyboard();
}

void WindowHider::showAndActivate(const std::vector<xcb_window_t>& others, xcb_window_t main) {
    onlyShown.clear();
    restore(others);
    offscreen.show(main);
    forget(main);
    activeOffscreen = XCB_WINDOW_NONE;
    clients.activate(main);
}

int WindowHider::showLost() {
    std::vector<xcb_window_t> iconic;
    int count = 0;
    for (const auto& [window, moved] : notes.all()) {
        const ClientWindow* client = clients.find(window);
        if (client != nullptr && client->isIconic) {
            iconic.push_back(window);
        } else if (moved && offscreen.bringBack(window, *moved)) {
            ++count;
        }
        notes.erase(window);
    }
    show(iconic);
    return count + static_cast<int>(iconic.size());
}

void WindowHider::forget(xcb_window_t window) {
    if (iconified.erase(window) > 0) notes.erase(window);
}

WindowHider::Habits& WindowHider::habits() {
    if (current.generation != manager.generation()) {
        current = Habits{};
        current.generation = manager.generation();
    }
    return current;
}

std::vector<xcb_window_t> WindowHider::iconify(const std::vector<xcb_window_t>& windows) {
    Habits& habits = this->habits();
    if (habits.ignoresIconify) return windows;
    constexpr std::uint32_t iconicState = 3;
    for (const xcb_window_t window : windows) {
        x.sendToRoot(window, "WM_CHANGE_STATE", {iconicState, 0, 0, 0, 0});
    }
    const bool isHopeless = !habits.iconifies && isSaidToIgnoreIconify(manager);
    auto left = waitUntil(true, windows, isHopeless ? hope : patience);
    if (left.size() < windows.size()) habits.iconifies = true;
    // A dialog, a shaded window or one of another workspace may be refused what others are granted.
    const bool isTelling = std::any_of(left.begin(), left.end(), [this](xcb_window_t window) {
        const ClientWindow* client = clients.find(window);
        return client != nullptr && client->kind == ClientWindow::Kind::normal &&
               !client->isShaded && clients.isOnCurrentDesktop(window);
    });
    if (isTelling && !habits.iconifies) habits.ignoresIconify = true;
    return left;
}

/// Gives those that had to be activated for it.
std::vector<xcb_window_t> WindowHider::restore(const std::vector<xcb_window_t>& windows) {
    std::vector<xcb_window_t> iconic;
    for (const xcb_window_t window : windows) {
        offscreen.show(window);
        forget(window);
        const ClientWindow* client = clients.find(window);
        if (client != nullptr && client->isIconic) iconic.push_back(window);
    }
    if (iconic.empty()) return {};
    Habits& habits = this->habits();
    std::vector<xcb_window_t> left = iconic;
    if (!habits.ignoresMapping) {
        for (const xcb_window_t window : iconic) {
            xcb_discard_reply(x.xcb(), xcb_map_window_checked(x.xcb(), window).sequence);
        }
        left = waitUntil(false, iconic, patience);
        if (left.size() < iconic.size()) habits.restoresMapped = true;
        habits.ignoresMapping = !habits.restoresMapped;
    }
    for (const xcb_window_t window : left) clients.activate(window);
    if (!left.empty()) waitUntil(false, left, patience);
    return left;
}

std::vector<xcb_window_t> WindowHider::waitUntil(bool isIconic, std::vector<xcb_window_t> windows,
                                                 std::chrono::milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    const xcb_atom_t wmState = x.atom("WM_STATE");
    const xcb_atom_t netState = x.atom("_NET_WM_STATE");
    const auto seen = [&](const xcb_generic_event_t& event) {
        switch (event.response_type & 0x7F) {
            case XCB_PROPERTY_NOTIFY: {
                const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
                return (change.atom == wmState || change.atom == netState) &&
                       contains(windows, change.window);
            }
            case XCB_MAP_NOTIFY:
            case XCB_UNMAP_NOTIFY:
                return true;  // of a frame, which may be all that tells
            case XCB_DESTROY_NOTIFY:
                return contains(windows,
                                reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            default:
                return false;
        }
    };
    bool isLast = false;
    while (true) {
        clients.refresh(windows);
        std::erase_if(windows, [&](xcb_window_t window) {
            const ClientWindow* client = clients.find(window);
            return client == nullptr || client->isIconic == isIconic;
        });
        if (windows.empty() || isLast) return windows;
        isLast = !x.waitFor(seen, deadline);
    }
}

/// What cannot be seen must not take what is typed.
void WindowHider::giveKeyboardToAnother(const std::vector<xcb_window_t>& hidden) {
    const xcb_window_t active = clients.activeNow();
    if (!contains(hidden, active)) return;
    activeOffscreen = active;
    for (const xcb_window_t window : clients.all()) {
        if (isHidden(window) || !areTogether(window, active)) continue;
        clients.activate(window);
        // From then on only somebody's wish makes the hidden one active again.
        const xcb_atom_t property = x.atom("_NET_ACTIVE_WINDOW");
        const auto deadline = Clock::now() + patience;
        const auto changes = [&](const xcb_generic_event_t& event) {
            return (event.response_type & 0x7F) == XCB_PROPERTY_NOTIFY &&
                   reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == property;
        };
        while (clients.activeNow() == active && x.waitFor(changes, deadline)) {
        }
        if (clients.activeNow() != active) activeOffscreen = XCB_WINDOW_NONE;
        return;
    }
}

bool WindowHider::areTogether(xcb_window_t a, xcb_window_t b) {
    const auto desktopOf = [this](xcb_window_t window) {
        const ClientWindow* client = clients.find(window);
        return client == nullptr ? allDesktops : client->desktop.value_or(allDesktops);
    };
    const std::uint32_t first = desktopOf(a);
    const std::uint32_t second = desktopOf(b);
    return first == second || first == allDesktops || second == allDesktops;
}

void WindowHider::giveBackKeyboard() {
    if (rightfullyActive == XCB_WINDOW_NONE || isHidden(rightfullyActive)) return;
    clients.activate(rightfullyActive);
}

void WindowHider::windowChanged(xcb_window_t window) {
    const ClientWindow* client = clients.find(window);
    if (client == nullptr) return;
    if (!client->isIconic) {
        forget(window);
        return;
    }
    Habits& habits = this->habits();
    habits.iconifies = true;
    habits.ignoresIconify = false;
    if (offscreen.isHidden(window)) {
        // It has been iconified after all: the window manager was only slow.
        iconified.insert(window);
        offscreen.show(window);
    }
}

void WindowHider::activeChanged() {
    const xcb_window_t active = clients.active();
    const xcb_window_t before = std::exchange(lastActive, active);
    if (active != activeOffscreen) {
        activeOffscreen = XCB_WINDOW_NONE;
        if (offscreen.isHidden(active)) offscreenActivated(active, before);
    }
    if (onlyShown.empty()) return;
    if (Clock::now() > onlyShownUntil) {
        onlyShown.clear();
    } else if (onlyShown.contains(active)) {
        giveBackKeyboard();
    }
}

/// Whoever makes it active wants to see it, as with an iconic one. But it may also have been the
/// next in line when another window was closed, or when the workspace was changed.
void WindowHider::offscreenActivated(xcb_window_t window, xcb_window_t before) {
    const bool isNextInLine = before != XCB_WINDOW_NONE && before != window &&
                              (!clients.isManaged(before) || !areTogether(before, window));
    if (isNextInLine) {
        giveKeyboardToAnother({window});
    } else {
        offscreen.show(window);
    }
}

}  // namespace quorvel::native
