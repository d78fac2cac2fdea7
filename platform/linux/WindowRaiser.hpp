#pragma once

#include <xcb/xcb.h>

#include "platform/linux/FrameReader.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Brings windows to the front without giving them the keyboard.
class WindowRaiser {
public:
    WindowRaiser(XConnection& x, FrameReader& frames, const WindowManagerInfo& manager);

    /// Not waited for where the window manager does it.
    void raise(xcb_window_t client);

private:
    void raisePastIt(xcb_window_t client);
    bool keepsToTheFront(xcb_window_t client) const;

    XConnection& x;
    FrameReader& frames;
    const WindowManagerInfo& manager;
};

}  // namespace quorvel::native
