#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <thread>
#include <vector>

#include "tests/support/x11/XClient.hpp"

namespace quorvel::test {

/// An EWMH window manager with habits that the installed ones do not have. Puts no frames around
/// windows; runs on a thread of its own.
class ScriptedManager {
public:
    struct Habits {
        /// An iconic window stays mapped, so that mapping it again asks for nothing.
        bool keepsIconicMapped = false;
        bool activatesRestored = false;
        std::chrono::milliseconds iconifiesAfter{0};
        std::chrono::milliseconds activatesAfter{0};
        bool activatesNew = true;
    };

    /// Ready when the constructor returns.
    ScriptedManager(const std::string& displayName, Habits habits);
    ~ScriptedManager();

    /// How often it activated a window without being asked.
    int activations() const { return activationCount; }

private:
    using Clock = std::chrono::steady_clock;
    enum class Action { iconify, activate };
    struct Plan {
        Clock::time_point due;
        Action action;
        xcb_window_t window;
    };

    void run();
    void handle(const xcb_generic_event_t& event);
    void manage(xcb_window_t window);
    void iconify(xcb_window_t window);
    void restore(xcb_window_t window);
    void activate(xcb_window_t window);
    void forget(xcb_window_t window);
    void announce();

    XClient client;
    Habits habits;
    xcb_window_t checkWindow = XCB_WINDOW_NONE;
    std::vector<xcb_window_t> managed;
    std::map<xcb_window_t, bool> iconic;
    std::deque<Plan> plans;
    std::atomic<bool> ends = false;
    std::atomic<int> activationCount = 0;
    std::thread thread;
};

}  // namespace quorvel::test
