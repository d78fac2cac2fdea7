#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "platform/Geometry.hpp"
#include "tests/support/x11/XClient.hpp"

namespace quorvel::test {

/// A window manager that nobody has heard of, for what the known ones do not do. It manages
/// windows without putting frames around them, on a thread of its own.
class TinyManager {
public:
    /// Where a window may go that stands there and was asked to go elsewhere.
    using Rule = std::function<Point(const Rect& now, Point asked)>;

    struct Behaviour {
        Rule onMessage;    ///< _NET_MOVERESIZE_WINDOW; not announced when empty
        Rule onConfigure;  ///< ConfigureRequest; ignored when empty
        std::string name = "Tiny";
    };

    static Point ignores(const Rect& now, Point) { return now.origin(); }
    static Point obeys(const Rect&, Point asked) { return asked; }

    /// Ready when the constructor returns.
    TinyManager(const std::string& displayName, Behaviour behaviour);
    ~TinyManager();

    /// How often it was asked to move a window.
    int requests() const { return requestCount; }

private:
    void announce();
    void run();
    void handle(const xcb_generic_event_t& event);
    void move(xcb_window_t window, const Rule& rule, Point asked);

    XClient client;
    Behaviour behaviour;
    xcb_window_t checkWindow = XCB_WINDOW_NONE;
    std::atomic<bool> ends = false;
    std::atomic<int> requestCount = 0;
    std::thread thread;
};

}  // namespace quorvel::test
