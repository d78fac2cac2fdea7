#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <unordered_map>

#include "platform/WindowAccess.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Names for windows that outlive the windows: the server uses an identifier again, this never
/// does. Learns of a window's end from its DestroyNotify, which whoever asks for a name must have
/// selected (StructureNotify on the window).
class WindowElements {
public:
    explicit WindowElements(XConnection& x);

    WindowElement elementOf(xcb_window_t window);
    /// Nothing once the window is gone.
    std::optional<xcb_window_t> windowOf(WindowElement element) const;
    void forget(xcb_window_t window);

private:
    XConnection& x;
    WindowElement last = 0;
    std::unordered_map<xcb_window_t, WindowElement> elements;
    std::unordered_map<WindowElement, xcb_window_t> windows;
    Subscription destructions;
};

}  // namespace quorvel::native
