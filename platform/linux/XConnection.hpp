#pragma once

#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/Subscription.hpp"

namespace quorvel::native {

/// Frees what xcb hands out with malloc.
struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// The one connection to the X server. Events are read in one place and handed to whoever
/// subscribed, in order; waiting for an answer reads them too but never hands them out, so no
/// caller is ever re-entered. Main thread only.
class XConnection {
public:
    /// Why there is no connection, in `error`, when the result is null. An empty name means
    /// $DISPLAY.
    static std::unique_ptr<XConnection> open(const std::string& displayName, std::string& error);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* xcb() const { return connection; }
    const xcb_screen_t& screen() const { return *screenInfo; }
    xcb_window_t root() const { return screenInfo->root; }
    int fileDescriptor() const { return xcb_get_file_descriptor(connection); }
    bool isLost() const { return xcb_connection_has_error(connection) != 0; }

    /// Interned once. XCB_ATOM_NONE only when the connection is lost.
    xcb_atom_t atom(std::string_view name) const;

    /// Adds to the events selected on the root window; those that others selected stay.
    void selectOnRoot(std::uint32_t eventMask);
    /// The same on any other window; its DestroyNotify always comes along. One that is gone is no
    /// error.
    void select(xcb_window_t window, std::uint32_t eventMask);

    /// All events except errors, as they came; the response type still carries the bit of a sent
    /// event (0x80).
    [[nodiscard]] Subscription onEvent(std::function<void(const xcb_generic_event_t&)> handler);
    /// Each event as it is read, before its turn has come: for tables that must not lag behind the
    /// answers of the server. The handler calls nothing here.
    [[nodiscard]] Subscription onArrival(std::function<void(const xcb_generic_event_t&)> handler);
    /// Errors of requests that nobody checks.
    [[nodiscard]] Subscription onError(std::function<void(const xcb_generic_error_t&)> handler);
    /// The server has gone. Called once, from `dispatch`.
    [[nodiscard]] Subscription onLost(std::function<void()> handler);

    /// Sends the request and waits: 0, or the server's error code; 255 when the connection is lost.
    std::uint8_t check(xcb_void_cookie_t cookie) const;

    void flush() const { xcb_flush(connection); }

    /// Reads events into the queue until `seen` accepts one that arrives from now on (it is asked
    /// about each once) or `deadline` has passed. They are handed out later, by `dispatch`.
    bool waitFor(const std::function<bool(const xcb_generic_event_t&)>& seen,
                 std::chrono::steady_clock::time_point deadline);

    /// Takes in what has arrived without waiting; true when there is something to hand out.
    bool readPending();
    /// Hands out everything that is queued.
    void dispatch();

    /// A whole property as bytes; empty when absent or of another type (XCB_ATOM_ANY takes all).
    std::vector<std::uint8_t> property(xcb_window_t window, std::string_view name,
                                       xcb_atom_t type) const;
    /// A property of 32-bit items.
    std::vector<std::uint32_t> property32(xcb_window_t window, std::string_view name,
                                          xcb_atom_t type) const;

    /// A message to the root window about `window`, as EWMH window managers expect it.
    void sendToRoot(xcb_window_t window, std::string_view type,
                    const std::array<std::uint32_t, 5>& data) const;

    /// The server time of the last user event or property change seen; 0 before the first.
    xcb_timestamp_t lastTimestamp() const { return timestamp; }
    /// The server's clock now, for requests that a window manager refuses when they look older
    /// than the user's last input. One round trip; XCB_CURRENT_TIME when no answer comes.
    xcb_timestamp_t serverTime();

private:
    XConnection(xcb_connection_t* connection, int screenNumber);
    bool take(xcb_generic_event_t* event);

    xcb_connection_t* connection;
    const xcb_screen_t* screenInfo = nullptr;
    mutable std::map<std::string, xcb_atom_t, std::less<>> atoms;
    std::uint32_t rootMask = 0;
    std::unordered_map<xcb_window_t, std::uint32_t> masks;
    xcb_window_t clockWindow = XCB_WINDOW_NONE;
    std::deque<Reply<xcb_generic_event_t>> queue;
    xcb_timestamp_t timestamp = 0;
    bool lostReported = false;
    Subscribers<const xcb_generic_event_t&> eventSubscribers;
    Subscribers<const xcb_generic_event_t&> arrivalSubscribers;
    Subscribers<const xcb_generic_error_t&> errorSubscribers;
    Subscribers<> lostSubscribers;
};

}  // namespace quorvel::native
