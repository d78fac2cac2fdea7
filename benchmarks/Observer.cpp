#include "benchmarks/Observer.hpp"

#include <poll.h>

#include <algorithm>
#include <stdexcept>

namespace quorvel::bench {
namespace {

using Event = test::XReply<xcb_generic_event_t>;

/// False at the deadline.
bool waitReadable(int descriptor, Instant deadline) {
    const auto left = std::max(Clock::duration::zero(), deadline - Clock::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec limit{seconds.count(), std::chrono::nanoseconds(left - seconds).count()};
    pollfd waiting{descriptor, POLLIN, 0};
    return ppoll(&waiting, 1, &limit, nullptr) > 0;
}

}  // namespace

void Observer::select(xcb_window_t window, std::uint32_t eventMask) const {
    xcb_change_window_attributes(client.xcb(), window, XCB_CW_EVENT_MASK, &eventMask);
    client.sync();
}

std::optional<Instant> Observer::waitFor(const Accepts& accepts, Instant deadline) const {
    xcb_flush(client.xcb());
    while (true) {
        while (const Event event{xcb_poll_for_event(client.xcb())}) {
            const Instant at = Clock::now();
            if (accepts(*event, at)) return at;
        }
        if (xcb_connection_has_error(client.xcb()) != 0) {
            throw std::runtime_error("the X server has gone");
        }
        if (!waitReadable(xcb_get_file_descriptor(client.xcb()), deadline)) return std::nullopt;
    }
}

bool Observer::drain(const Accepts& accepts) const {
    client.sync();
    bool accepted = false;
    while (const Event event{xcb_poll_for_queued_event(client.xcb())}) {
        accepted = accepts(*event, Clock::now()) || accepted;
    }
    return accepted;
}

void Observer::sleepUntil(Instant deadline) const {
    waitFor([](const xcb_generic_event_t&, Instant) { return false; }, deadline);
}

void Observer::settle(std::chrono::milliseconds quiet, const Accepts& sees) const {
    const Instant end = Clock::now() + 10 * quiet;
    const auto any = [&sees](const xcb_generic_event_t& event, Instant at) {
        if (sees) sees(event, at);
        return true;
    };
    while (Clock::now() < end && waitFor(any, Clock::now() + quiet)) {
    }
}

}  // namespace quorvel::bench
