#pragma once

#include <string>
#include <vector>

#include "platform/RunLoop.hpp"
#include "platform/Screens.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// The active RandR monitors. The primary one is that at the origin of the root window, else the
/// one RandR calls so, else the first. Mirrored monitors count once. A server without RandR 1.5
/// has one screen, the root window.
///
/// Read once and kept until the server says that something changed. Changes are announced when
/// none has followed for 100 ms, and only if they changed something; one that was undone by then
/// is, if somebody has read it meanwhile.
class X11Screens final : public Screens {
public:
    X11Screens(XConnection& x, RunLoop& runLoop);

    std::vector<Screen> screens() const override;
    Subscription onChange(std::function<void()> handler) override;

    /// Whether a change is still to be announced, or found to be none.
    bool areSettling() const { return isSettling; }

    /// Where AX space begins, in root coordinates: AX = root − this. While no screen is attached
    /// both conversions stay as they were.
    Point axOriginInRoot() const;
    /// Cocoa y = this − AX y of a point; the height of the primary screen.
    double primaryScreenMaxY() const;
    /// All of them in root coordinates, in the order of `screens`.
    std::vector<Rect> framesInRoot() const;

private:
    struct Monitor;
    struct Arrangement {
        std::vector<Screen> screens;
        Point axOriginInRoot;
        double primaryScreenMaxY = 0;

        bool operator==(const Arrangement&) const = default;
    };

    const Arrangement& current() const;
    Arrangement read() const;
    std::vector<Monitor> readMonitors() const;
    void handle(const xcb_generic_event_t& event);
    void announceWhenSettled(RunLoop::Duration delay);

    XConnection& x;
    RunLoop& runLoop;
    std::uint8_t firstRandrEvent = 0;
    bool hasMonitors = false;
    mutable bool isStale = true;
    mutable Arrangement arrangement;
    Arrangement announced;
    /// Somebody has read an arrangement that is not announced yet.
    mutable bool isOwedAnAnnouncement = false;
    std::uint64_t lastEvent = 0;
    bool isSettling = false;
    Subscribers<> subscribers;
    Lifetime life;
    Subscription events;
};

}  // namespace quorvel::native
