#pragma once

#include <xcb/xcb.h>

#include <vector>

#include "platform/linux/XConnection.hpp"

/// What the server's tree of windows tells by itself.
namespace quorvel::native {

/// The children of the root, or what a window manager without a list of clients has put into them,
/// as far as they are on the screen or are marked as managed (WM_STATE).
std::vector<xcb_window_t> windowsOnScreen(const XConnection& x);

/// The same windows from the top down, by the children of the root that hold them. Those that are
/// gone are left out.
std::vector<xcb_window_t> byStacking(const XConnection& x,
                                     const std::vector<xcb_window_t>& windows);

/// The ancestor right under the root, or the window itself; XCB_WINDOW_NONE when it is gone.
xcb_window_t frameOf(const XConnection& x, xcb_window_t window);

/// XCB_WINDOW_NONE for the root and for one that is gone.
xcb_window_t parentOf(const XConnection& x, xcb_window_t window);

}  // namespace quorvel::native
