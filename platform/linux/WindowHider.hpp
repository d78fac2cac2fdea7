#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "platform/linux/ClientWindows.hpp"
#include "platform/linux/HiddenNotes.hpp"
#include "platform/linux/OffscreenHider.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Hides windows and shows them again: by iconifying, and where that has no effect, off the screen.
/// What the window manager does is measured, and remembered for its life. A call waits for the
/// outcome, at most 0.25 s for each kind of request.
class WindowHider {
public:
    WindowHider(XConnection& x, WindowManagerInfo& manager, ClientWindows& clients,
                OffscreenHider& offscreen);
    /// What is iconic stays so, and is no longer ours.
    ~WindowHider();

    /// Iconic, or off the screen by our doing. A window that is gone counts as hidden.
    bool isHidden(xcb_window_t window);

    /// In this order. Remembers those that were in sight.
    void hide(const std::vector<xcb_window_t>& windows);

    /// Of these, in their order: those that `hide` hid and nobody has shown since, or, where there
    /// are none and not one is in sight, all.
    std::vector<xcb_window_t> toBeShown(const std::vector<xcb_window_t>& windows);

    /// Those that an earlier run hid and never showed again; how many. As `show`.
    int showLost();

    /// In this order. Whatever was active stays active, or becomes so again.
    void show(const std::vector<xcb_window_t>& windows);
    /// In this order, and then the keyboard for `main`.
    void showAndActivate(const std::vector<xcb_window_t>& others, xcb_window_t main);

private:
    using Clock = std::chrono::steady_clock;

    /// What is known of one window manager.
    struct Habits {
        std::uint64_t generation = 0;
        bool iconifies = false;       ///< has been seen to
        bool ignoresIconify = false;  ///< has never been seen to, although it was asked
        bool restoresMapped = false;  ///< the same for windows that are mapped while iconic
        bool ignoresMapping = false;
    };

    Habits& habits();
    /// Gives those that did not heed it.
    std::vector<xcb_window_t> iconify(const std::vector<xcb_window_t>& windows);
    std::vector<xcb_window_t> restore(const std::vector<xcb_window_t>& windows);
    std::vector<xcb_window_t> waitUntil(bool isIconic, std::vector<xcb_window_t> windows,
                                        std::chrono::milliseconds limit);
    void giveKeyboardToAnother(const std::vector<xcb_window_t>& hidden);
    bool areTogether(xcb_window_t a, xcb_window_t b);
    void giveBackKeyboard();
    void windowChanged(xcb_window_t window);
    void forget(xcb_window_t window);
    void activeChanged();
    void offscreenActivated(xcb_window_t window, xcb_window_t before);

    XConnection& x;
    WindowManagerInfo& manager;
    ClientWindows& clients;
    OffscreenHider& offscreen;
    HiddenNotes notes;
    Habits current;
    std::unordered_set<xcb_window_t> iconified;  ///< by `hide`, and not restored since

    /// Off the screen and active nevertheless, for want of another window.
    xcb_window_t activeOffscreen = XCB_WINDOW_NONE;
    xcb_window_t lastActive = XCB_WINDOW_NONE;

    // The window manager may make active what was only shown, and may take its time.
    xcb_window_t rightfullyActive = XCB_WINDOW_NONE;
    std::unordered_set<xcb_window_t> onlyShown;
    Clock::time_point onlyShownUntil;

    Subscription windowEvents;
    Subscription activeEvents;
};

}  // namespace quorvel::native
