#include "platform/linux/WindowManagerInfo.hpp"

#include <cstring>
#include <utility>
#include <vector>

namespace quorvel::native {
namespace {

constexpr std::string_view checkProperty = "_NET_SUPPORTING_WM_CHECK";

xcb_window_t windowIn(const XConnection& x, xcb_get_property_cookie_t cookie) {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.xcb(), cookie, nullptr));
    xcb_window_t window = XCB_WINDOW_NONE;
    if (reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) >= 4) {
        std::memcpy(&window, xcb_get_property_value(reply.get()), sizeof(window));
    }
    return window;
}

xcb_get_property_cookie_t askCheckProperty(const XConnection& x, xcb_window_t window) {
    return xcb_get_property(x.xcb(), 0, window, x.atom(checkProperty), XCB_ATOM_WINDOW, 0, 1);
}

}  // namespace

WindowManagerInfo::WindowManagerInfo(XConnection& x)
    : x(x), events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {
    x.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    read();
    announcedLife = life;
    lifeBegan.reset();
}

bool WindowManagerInfo::supports(std::string_view atomName) const {
    return supported.contains(x.atom(atomName));
}

bool WindowManagerInfo::isComposited() const {
    const xcb_setup_t* setup = xcb_get_setup(x.xcb());
    int number = 0;
    for (auto screens = xcb_setup_roots_iterator(setup); screens.rem > 0;
         xcb_screen_next(&screens)) {
        if (screens.data->root == x.root()) break;
        ++number;
    }
    const xcb_atom_t selection = x.atom("_NET_WM_CM_S" + std::to_string(number));
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        x.xcb(), xcb_get_selection_owner(x.xcb(), selection), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

WindowManagerInfo::Question WindowManagerInfo::ask() const {
    return {askCheckProperty(x, x.root()), askCheckProperty(x, checkWindow)};
}

void WindowManagerInfo::update(Question question) {
    const xcb_window_t published = windowIn(x, question.published);
    const xcb_window_t confirmed = windowIn(x, question.confirmed);
    // The property on the root outlives a window manager that was killed; its window does not.
    const bool isUnchanged = checkWindow == XCB_WINDOW_NONE
                                 ? published == XCB_WINDOW_NONE
                                 : published == checkWindow && confirmed == checkWindow;
    if (!isUnchanged) read();
}

bool WindowManagerInfo::isTakingOver() const {
    return lifeBegan && std::chrono::steady_clock::now() - *lifeBegan < takeover;
}

void WindowManagerInfo::beginLife() {
    ++life;
    lifeBegan = std::chrono::steady_clock::now();
}

Subscription WindowManagerInfo::onChange(std::function<void()> handler) {
    return subscribers.add(std::move(handler));
}

void WindowManagerInfo::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY: {
            const auto& end = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
            if (checkWindow == XCB_WINDOW_NONE || end.window != checkWindow) return;
            // The next one may be given the very same identifier.
            checkWindow = XCB_WINDOW_NONE;
            beginLife();
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            // Of the root, and of the window that it names: some fill that in afterwards.
            if (change.window != x.root() && change.window != publishedWindow) return;
            if (change.atom != x.atom(checkProperty) && change.atom != x.atom("_NET_SUPPORTED") &&
                change.atom != x.atom("_NET_WM_NAME")) {
                return;
            }
            break;
        }
        default:
            return;
    }
    read();
    if (announcedLife == life) return;
    announcedLife = life;
    subscribers.notify();
}

void WindowManagerInfo::read() {
    publishedWindow = windowIn(x, askCheckProperty(x, x.root()));
    xcb_window_t found = XCB_WINDOW_NONE;
    if (publishedWindow != XCB_WINDOW_NONE && publishedWindow != x.root()) {
        x.select(publishedWindow, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
        if (windowIn(x, askCheckProperty(x, publishedWindow)) == publishedWindow) {
            found = publishedWindow;
        }
    }
    std::string name;
    std::unordered_set<xcb_atom_t> atoms;
    if (found != XCB_WINDOW_NONE) {
        const std::vector<std::uint8_t> text = x.property(found, "_NET_WM_NAME", XCB_ATOM_ANY);
        name.assign(text.begin(), text.end());
        const auto listed = x.property32(x.root(), "_NET_SUPPORTED", XCB_ATOM_ATOM);
        atoms.insert(listed.begin(), listed.end());
    }
    if (found != checkWindow || name != managerName) beginLife();
    checkWindow = found;
    managerName = std::move(name);
    supported = std::move(atoms);
}

}  // namespace quorvel::native
