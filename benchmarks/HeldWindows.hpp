#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/WindowElements.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/X11Pointer.hpp"
#include "platform/linux/X11PollTimers.hpp"
#include "platform/linux/X11Screens.hpp"
#include "platform/linux/X11WindowAccess.hpp"
#include "platform/linux/XConnection.hpp"
#include "tests/support/x11/XClient.hpp"

namespace quorvel::bench {

/// Windows of another program, each in a frame as a window manager makes it.
class FramedWindows {
public:
    explicit FramedWindows(const std::string& displayName) : client(displayName) {}

    /// Opens more until there are so many.
    const std::vector<xcb_window_t>& open(std::size_t count);
    /// Every frame by a pixel, there and back; returns when the server has done it.
    void moveAll();

private:
    test::XClient client;
    std::vector<xcb_window_t> windows;
    std::vector<xcb_window_t> frames;
    static constexpr int home = -98;
    int place = home;  ///< where all frames are, in root coordinates
};

/// The program's own eyes: its poll timer, and nothing that acts on what it sees.
class Lookout {
public:
    explicit Lookout(const std::string& displayName);
    ~Lookout();

    /// Those of them that are not held yet.
    void hold(const std::vector<xcb_window_t>& windows);
    /// Reads the events of a move of each held window, as the loop does while it waits for a poll.
    void hearOfMoves();
    /// Lets the loop run to the end of the next poll: how long that took, in milliseconds. Throws
    /// when a window was not seen.
    double poll();

private:
    /// The program's run loop, which stops after each tick and tells how long that took.
    class TimedLoop;
    class NoFocus final : public native::FocusedWindowSource {
        FocusedWindowReading focusedWindow(std::int32_t, const std::string&) override { return {}; }
    };

    PollAgain look();

    std::unique_ptr<native::XConnection> x;
    std::unique_ptr<TimedLoop> loop;
    Subscription events;
    native::WindowElements elements;
    native::WindowManagerInfo manager;
    NoFocus focus;
    native::X11Screens screens;
    native::X11Pointer pointer;
    native::X11WindowAccess access;
    native::X11PollTimers timers;
    std::vector<AXWindow> held;
    std::size_t seen = 0;
    Subscription polling;
};

}  // namespace quorvel::bench
