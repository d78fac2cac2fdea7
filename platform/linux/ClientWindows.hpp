#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "platform/linux/ClientWindowReader.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// The windows that the window manager manages, what is known of each, and the one that has the
/// keyboard. Follows events and asks the server only for what has changed. Where no EWMH window
/// manager runs, the windows on the screen count as managed and the input focus as activation.
class ClientWindows {
public:
    enum class Change {
        identity,  ///< what tells whose window it is
        state,
    };

    ClientWindows(XConnection& x, WindowManagerInfo& manager);

    /// The normal windows and dialogs on all workspaces, the most recently active first; those that
    /// never were active come last.
    std::vector<xcb_window_t> all();

    bool isManaged(xcb_window_t window);

    /// Any window, managed or not. Null when it is gone. Holds until the next call of anything here
    /// or the next event.
    const ClientWindow* find(xcb_window_t window);
    /// Like `find` for several, in one round trip and past what is remembered.
    void refresh(const std::vector<xcb_window_t>& windows);

    /// The one that has the keyboard, whatever kind it is of; XCB_WINDOW_NONE for none.
    xcb_window_t active() const { return activeWindow; }
    /// Asks the server instead of waiting for its event.
    xcb_window_t activeNow();
    bool hasBeenActive(xcb_window_t window) const;

    /// Of these, the one that no other covers; XCB_WINDOW_NONE of none.
    xcb_window_t topmost(const std::vector<xcb_window_t>& windows) const;

    /// True also where windows belong to no workspace.
    bool isOnCurrentDesktop(xcb_window_t window);

    /// Gives it the keyboard, as a pager or task bar does; changes to its workspace at need.
    void activate(xcb_window_t window);

    /// Also when another window was active only for a moment in between.
    [[nodiscard]] Subscription onActiveChange(std::function<void()> handler);
    /// A window has come or gone.
    [[nodiscard]] Subscription onListChange(std::function<void()> handler);
    [[nodiscard]] Subscription onWindowChange(std::function<void(xcb_window_t, Change)> handler);

private:
    void handle(const xcb_generic_event_t& event);
    void frameCameOrWent(xcb_window_t frame);
    void handleProperty(const xcb_property_notify_event_t& change);
    void managerChanged();
    void listChanged();
    void setActive(xcb_window_t window);
    void remember(xcb_window_t active);
    xcb_window_t readActive();
    xcb_window_t focusedClient();
    void updateList();
    void load(const std::vector<xcb_window_t>& windows);

    XConnection& x;
    WindowManagerInfo& manager;
    ClientWindowReader reader;
    bool listIsFresh = false;
    bool activityIsSeeded = false;
    std::vector<xcb_window_t> list;
    std::unordered_map<xcb_window_t, ClientWindow> known;
    std::vector<xcb_window_t> activity;  ///< the most recent first
    xcb_window_t activeWindow = XCB_WINDOW_NONE;
    Subscribers<> activeHandlers;
    Subscribers<> listHandlers;
    Subscribers<xcb_window_t, Change> windowHandlers;
    Subscription events;
    Subscription managerEvents;
};

}  // namespace quorvel::native
