#include "platform/linux/FillingStateKeeper.hpp"

#include <algorithm>
#include <cmath>

namespace quorvel::native {
namespace {

using std::chrono::milliseconds;

constexpr auto patience = milliseconds(120);

/// Not caught between the change of the frame and that of the client in it.
bool isOfOnePiece(const WindowReading& reading) {
    constexpr double thickestDecoration = 200;
    const double dx = reading.frameArea.width - reading.clientArea.width;
    const double dy = reading.frameArea.height - reading.clientArea.height;
    return dx >= 0 && dy >= 0 && dx < thickestDecoration && dy < thickestDecoration;
}

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

GivenUpStates FillingStateKeeper::leave(const WindowReading& now, Clock::time_point deadline) {
    GivenUpStates given{now.states, now.seen, std::nullopt};
    frames.watch(now, true);
    send(now.client, now.states, Change::remove);
    const auto left = frames.await(
        now.client, [](const WindowReading& reading) { return !reading.states.any(); },
        std::min(deadline, Clock::now() + patience));
    if (left && !left->states.any()) keepSize(*left, given, deadline);
    return given;
}

void FillingStateKeeper::keepSize(const WindowReading& now, GivenUpStates& given,
                                  Clock::time_point deadline) {
    std::optional<WindowReading> current = now;
    if (!given.normal) {
        current = frames.awaitAnswer(
            now.client,
            [&](const WindowReading& reading) {
                return reading.seen.size() != given.filledSeen.size() && isOfOnePiece(reading);
            },
            std::min(deadline, Clock::now() + patience));
        if (!current || !isOfOnePiece(*current)) return;
        given.normal = {current->seen, current->clientArea.size()};
    }
    // Twice, because some go on with the first change after they have announced it, and then take
    // no notice of the second.
    for (int attempt = 0; attempt < 2 && current && isOfOnePiece(*current); ++attempt) {
        const Size before = current->clientArea.size();
        const Size wanted = nextLargerSize(
            now.client, {given.filledSeen.width - (current->seen.width - before.width),
                         given.filledSeen.height - (current->seen.height - before.height)});
        frames.watch(*current, true);
        ladder.request(*current, given.filledSeen.origin(), wanted);
        current = frames.awaitAnswer(
            now.client,
            [&](const WindowReading& reading) {
                return reading.clientArea.size() == wanted && isOfOnePiece(reading) &&
                       reading.seen.origin() == given.filledSeen.origin();
            },
            std::min(deadline, Clock::now() + patience));
        const bool wasHeard = current && current->clientArea.width != before.width &&
                              current->clientArea.height != before.height;
        if (wasHeard) break;
    }
}

void FillingStateKeeper::restore(const WindowReading& now, const GivenUpStates& given,
                                 Clock::time_point deadline) {
    frames.watch(now, true);
    // Some take a window as large as the screen for one that wants to be fullscreen.
    FillingStates notGiven;
    notGiven.fullscreen = !given.states.fullscreen;
    send(now.client, notGiven, Change::remove);
    if (given.normal) {
        ladder.request(now, given.normal->seen.origin(), given.normal->clientSize);
    }
    send(now.client, given.states, Change::add);
    frames.await(
        now.client,
        [&](const WindowReading& reading) {
            return reading.states == given.states && reading.seen == given.filledSeen;
        },
        std::min(deadline, Clock::now() + patience));
}

}  // namespace quorvel::native
