#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

#include "platform/Geometry.hpp"
#include "platform/linux/XConnection.hpp"

/// The single requests of which moves are made. All coordinates are those of the root; all are
/// rounded to whole pixels.
namespace quorvel::native {

/// Asks the window manager as a pager does (EWMH). Where the corner of what is moved lies is the
/// window manager's own idea. The size is that of the client's area. Not waited for.
void sendMoveResize(const XConnection& x, xcb_window_t client, Point corner,
                    std::optional<Size> clientSize = std::nullopt);

/// Asks as the client itself does. Without a window manager this moves it at once. Not waited for.
void sendConfigure(const XConnection& x, xcb_window_t client, Point corner,
                   std::optional<Size> clientSize = std::nullopt);

/// Moves a child of the root past the window manager, which goes on believing that it stands where
/// it stood. Takes effect before this returns: 0, or the server's error code.
std::uint8_t overrideFrame(const XConnection& x, xcb_window_t frame, bool isOverrideRedirect,
                           Point outerCorner);

}  // namespace quorvel::native
