#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <unordered_map>
#include <vector>

#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Windows that have to be at home once another window manager has taken over. That one may have
/// found them away before they were back, and put them there again, so each is looked at whenever
/// something moves until the takeover is over.
class TakeoverWatch {
public:
    /// Brings the window home; true when it was away.
    using BringBack = std::function<bool(xcb_window_t)>;
    /// The window is left to itself from now on.
    using End = std::function<void(xcb_window_t)>;

    TakeoverWatch(
        XConnection& x, WindowManagerInfo& manager, End end = [](xcb_window_t) {});

    /// Brings it back at once and as long as it takes. `bringBack` neither adds nor removes.
    void add(xcb_window_t window, BringBack bringBack);
    /// Somebody else looks after it now; not an end.
    void remove(xcb_window_t window) { windows.erase(window); }
    /// Ends all.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    struct Returning {
        BringBack bringBack;
        Clock::time_point until;
        int attempts = 0;
    };

    void handle(const xcb_generic_event_t& event);
    void look();

    XConnection& x;
    WindowManagerInfo& manager;
    End end;
    std::unordered_map<xcb_window_t, Returning> windows;
    Subscription events;
    Subscription managerEvents;
};

}  // namespace quorvel::native
