#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <unordered_map>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/linux/FrameReader.hpp"
#include "platform/linux/HiddenNotes.hpp"
#include "platform/linux/TakeoverWatch.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Hides windows where the window manager cannot iconify them.
class OffscreenHider {
public:
    virtual ~OffscreenHider() = default;

    /// False when it stays in sight.
    virtual bool hide(xcb_window_t window) = 0;
    /// Back to where it belongs. Without effect on one that is not hidden here.
    virtual void show(xcb_window_t window) = 0;
    /// The same for one that an earlier run hid; false when it is not off the screen.
    virtual bool bringBack(xcb_window_t window, const HiddenNotes::MovedFrame& moved) = 0;
    virtual bool isHidden(xcb_window_t window) const = 0;
    virtual std::vector<xcb_window_t> hidden() const = 0;
};

/// Moves the window's frame past the window manager to a place left of every display, and again
/// whenever the window manager puts it back. Brings everything back at the end.
class FrameOverrideHider final : public OffscreenHider {
public:
    FrameOverrideHider(XConnection& x, WindowManagerInfo& manager, FrameReader& frames);
    ~FrameOverrideHider() override;

    bool hide(xcb_window_t window) override;
    void show(xcb_window_t window) override;
    bool bringBack(xcb_window_t window, const HiddenNotes::MovedFrame& moved) override;
    bool isHidden(xcb_window_t window) const override { return places.contains(window); }
    std::vector<xcb_window_t> hidden() const override;

private:
    using Clock = FrameReader::Clock;

    struct Place {
        xcb_window_t frame = XCB_WINDOW_NONE;
        bool isOverrideRedirect = false;
        Point home;   ///< where the window manager believes the frame to stand
        Point exile;  ///< where it stands
        int returns = 0;
    };

    void handle(const xcb_generic_event_t& event);
    void frameMoved(const xcb_configure_notify_event_t& change);
    void abandon();

    XConnection& x;
    WindowManagerInfo& manager;
    FrameReader& frames;
    HiddenNotes notes;
    std::unordered_map<xcb_window_t, Place> places;
    TakeoverWatch returning;  ///< what was hidden when the window manager changed
    Subscription events;
    Subscription managerEvents;
};

}  // namespace quorvel::native
