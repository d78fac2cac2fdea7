#include "platform/linux/WindowElements.hpp"

namespace quorvel::native {

WindowElements::WindowElements(XConnection& x)
    : x(x), destructions(x.onArrival([this](const xcb_generic_event_t& event) {
          if ((event.response_type & 0x7F) != XCB_DESTROY_NOTIFY) return;
          forget(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
      })) {}

WindowElement WindowElements::elementOf(xcb_window_t window) {
    // The window may have the identifier of one whose end has not been read yet.
    x.readPending();
    if (const auto known = elements.find(window); known != elements.end()) return known->second;
    const WindowElement element = ++last;
    elements.emplace(window, element);
    windows.emplace(element, window);
    return element;
}

std::optional<xcb_window_t> WindowElements::windowOf(WindowElement element) const {
    const auto known = windows.find(element);
    if (known == windows.end()) return std::nullopt;
    return known->second;
}

void WindowElements::forget(xcb_window_t window) {
    const auto known = elements.find(window);
    if (known == elements.end()) return;
    windows.erase(known->second);
    elements.erase(known);
}

}  // namespace quorvel::native
