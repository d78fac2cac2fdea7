#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "tests/support/x11/XClient.hpp"

namespace quorvel::bench {

using Clock = std::chrono::steady_clock;
using Instant = Clock::time_point;

/// Milliseconds, with their fraction.
inline double milliseconds(Clock::duration span) {
    return std::chrono::duration<double, std::milli>(span).count();
}

/// Reads the events of one connection with the time at which each came in.
class Observer {
public:
    /// Nothing about this event any more, or: it is the one that was waited for.
    using Accepts = std::function<bool(const xcb_generic_event_t& event, Instant at)>;

    explicit Observer(const std::string& displayName) : client(displayName) {}

    const test::XClient& connection() const { return client; }

    /// Replaces what is selected on a window.
    void select(xcb_window_t window, std::uint32_t eventMask) const;

    /// Asks about every event until one is accepted: when that came in; nothing at the deadline.
    std::optional<Instant> waitFor(const Accepts& accepts, Instant deadline) const;
    /// Everything that the server has sent up to now; true when one of it was accepted.
    bool drain(const Accepts& accepts) const;
    /// Lets time pass, whatever comes in.
    void sleepUntil(Instant deadline) const;
    /// Returns once nothing has come in for `quiet`, or after ten times that.
    void settle(std::chrono::milliseconds quiet, const Accepts& sees = {}) const;

private:
    test::XClient client;
};

}  // namespace quorvel::bench
