#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Which window manager runs, by what it publishes (EWMH). One that publishes nothing counts as
/// none here.
class WindowManagerInfo {
public:
    explicit WindowManagerInfo(XConnection& x);

    bool isRunning() const { return checkWindow != XCB_WINDOW_NONE; }
    /// Empty when it has none.
    const std::string& name() const { return managerName; }
    /// Whether it lists this atom among what it supports.
    bool supports(std::string_view atomName) const;
    /// Whether something paints the windows from pictures of them. One round trip.
    bool isComposited() const;

    /// Another number means another window manager, or another life of the same one: nothing that
    /// was learnt about the one before holds.
    std::uint64_t generation() const { return life; }

    /// For how long a new one may still put windows where it found them, or where it likes.
    static constexpr std::chrono::seconds takeover{5};
    /// Whether this life has begun before our eyes and so lately.
    bool isTakingOver() const;

    /// A question on its way to the server, so that it shares a round trip with others.
    struct Question {
        xcb_get_property_cookie_t published;
        xcb_get_property_cookie_t confirmed;
    };
    [[nodiscard]] Question ask() const;
    /// Takes the answer in; every question must be taken in once.
    void update(Question question);

    /// Another window manager has taken over, or the last one has gone.
    [[nodiscard]] Subscription onChange(std::function<void()> handler);

private:
    void handle(const xcb_generic_event_t& event);
    void read();
    void beginLife();

    XConnection& x;
    xcb_window_t publishedWindow = XCB_WINDOW_NONE;  ///< may not be a window manager's
    xcb_window_t checkWindow = XCB_WINDOW_NONE;
    std::string managerName;
    std::unordered_set<xcb_atom_t> supported;
    std::uint64_t life = 0;
    std::uint64_t announcedLife = 0;
    std::optional<std::chrono::steady_clock::time_point> lifeBegan;
    Subscribers<> subscribers;
    Subscription events;
};

}  // namespace quorvel::native
