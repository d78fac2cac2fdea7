#include "platform/linux/FillingStateKeeper.hpp"

#include <algorithm>
#include <cmath>

namespace quorvel::native {
namespace {

using std::chrono::milliseconds;

constexpr auto patience = milliseconds(100);

double roundedUp(double length, std::uint32_t base, std::uint32_t increment) {
    if (increment < 2 || increment > 0x7FFF || base > 0x7FFF || length <= base) return length;
    return base + std::ceil((length - base) / increment) * increment;
}

}  // namespace

FillingStateKeeper::FillingStateKeeper(XConnection& x, FrameReader& frames, MoveLadder& ladder)
    : x(x), frames(frames), ladder(ladder) {}

void FillingStateKeeper::send(xcb_window_t client, const FillingStates& states,
                              Change change) const {
    constexpr std::uint32_t fromPager = 2;
    const auto action = static_cast<std::uint32_t>(change);
    const auto sendOne = [&](xcb_atom_t first, xcb_atom_t second) {
        x.sendToRoot(client, "_NET_WM_STATE", {action, first, second, fromPager, 0});
    };
    const xcb_atom_t vertically = x.atom("_NET_WM_STATE_MAXIMIZED_VERT");
    const xcb_atom_t horizontally = x.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
    const auto sendMaximized = [&] {
        if (states.maximizedVertically && states.maximizedHorizontally) {
            sendOne(vertically, horizontally);
        } else if (states.maximizedVertically) {
            sendOne(vertically, XCB_ATOM_NONE);
        } else if (states.maximizedHorizontally) {
            sendOne(horizontally, XCB_ATOM_NONE);
        }
    };
    // Fullscreen lies above maximised: off first, on last.
    if (change == Change::add) sendMaximized();
    if (states.fullscreen) sendOne(x.atom("_NET_WM_STATE_FULLSCREEN"), XCB_ATOM_NONE);
    if (change == Change::remove) sendMaximized();
}

Size FillingStateKeeper::nextLargerSize(xcb_window_t client, Size size) const {
    constexpr std::uint32_t hasIncrement = 1U << 6;
    constexpr std::uint32_t hasBase = 1U << 8;
    constexpr std::uint32_t hasMinimum = 1U << 4;
    const auto hints = x.property32(client, "WM_NORMAL_HINTS", XCB_ATOM_ANY);
    if (hints.size() < 17 || (hints[0] & hasIncrement) == 0) return size;
    const std::size_t base = (hints[0] & hasBase) != 0 ? 15 : 5;
    const bool hasAnyBase = (hints[0] & (hasBase | hasMinimum)) != 0;
    return {roundedUp(size.width, hasAnyBase ? hints[base] : 0, hints[9]),
            roundedUp(size.height, hasAnyBase ? hints[base + 1] : 0, hints[10])};
}

std::optional<GivenUpStates> FillingStateKeeper::leave(const WindowReading& now,
                                                       Clock::time_point deadline) {
    frames.watch(now, true);
    send(now.client, now.states, Change::remove);
    const auto left = frames.await(
        now.client,
        [&](const WindowReading& reading) {
            return !reading.states.any() && reading.clientArea.size() != now.clientArea.size();
        },
        std::min(deadline, Clock::now() + patience));
    if (!left || left->states.any()) return std::nullopt;
    const GivenUpStates given{now.states, left->seen, left->clientArea.size()};

    const Size decoration{left->seen.width - left->clientArea.width,
                          left->seen.height - left->clientArea.height};
    const Size wanted = nextLargerSize(
        now.client, {now.seen.width - decoration.width, now.seen.height - decoration.height});
    frames.watch(*left);
    ladder.request(*left, now.seen.origin(), wanted);
    frames.await(
        now.client,
        [&](const WindowReading& reading) {
            return reading.clientArea.size() == wanted &&
                   reading.seen.origin() == now.seen.origin();
        },
        std::min(deadline, Clock::now() + patience));
    return given;
}

void FillingStateKeeper::restore(const WindowReading& now, const GivenUpStates& given,
                                 Clock::time_point deadline) {
    frames.watch(now, true);
    ladder.request(now, given.normalSeen.origin(), given.normalClientSize);
    send(now.client, given.states, Change::add);
    frames.await(
        now.client,
        [&](const WindowReading& reading) {
            return reading.states == given.states &&
                   reading.clientArea.size() != given.normalClientSize;
        },
        std::min(deadline, Clock::now() + patience));
}

}  // namespace quorvel::native
