#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <functional>
#include <string>

#include "platform/RunLoop.hpp"
#include "platform/StatusBar.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/status/StatusNotifierItem.hpp"

namespace quorvel::native {

/// The item as a small window of ours inside a system tray (System Tray Protocol and XEmbed, both
/// of freedesktop.org). While it is wanted it goes into whatever tray runs or comes.
class TrayWindow {
public:
    /// The content outlives it.
    TrayWindow(XConnection& x, RunLoop& runLoop, const StatusItemContent& content,
               std::function<void(const StatusItemEvent&)> clicked);
    ~TrayWindow();
    TrayWindow(const TrayWindow&) = delete;
    TrayWindow& operator=(const TrayWindow&) = delete;

    void setWanted(bool wanted);
    void contentChanged();

private:
    void handle(const xcb_generic_event_t& event);
    void handleRelease(const xcb_button_release_event_t& event) const;
    void lookForTray();
    void dock();
    void create();
    void destroy();
    void leaveTray();
    void tryAgain();
    void setProperties() const;
    void sizeChanged(int width, int height);
    void draw() const;

    XConnection& x;
    RunLoop& runLoop;
    const StatusItemContent& content;
    std::function<void(const StatusItemEvent&)> clicked;
    RunLoop::Duration patience;  ///< before the next try
    xcb_atom_t selection;
    bool wanted = false;
    xcb_window_t tray = XCB_WINDOW_NONE;
    xcb_window_t window = XCB_WINDOW_NONE;
    xcb_visualid_t visual = 0;
    xcb_colormap_t colormap = XCB_NONE;
    int width = 0;
    int height = 0;
    Subscription events;
    Lifetime life;
};

}  // namespace quorvel::native
