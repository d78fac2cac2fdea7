#include "platform/linux/MoveLadder.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/linux/DisplayGeometry.hpp"
#include "platform/linux/MoveRequests.hpp"

namespace quorvel::native {
namespace {

using std::chrono::milliseconds;

// Most answers come within 2 ms. Together these leave room for the rest of a call of 0.25 s.
constexpr auto patience = milliseconds(100);
constexpr auto patienceWithSecondMethod = milliseconds(60);
constexpr auto patienceWithProbe = milliseconds(50);
constexpr auto patienceAtABorder = milliseconds(40);
constexpr auto patienceWhenThereAlready = milliseconds(20);

Point minus(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}
Point plus(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}

/// One pixel towards the middle of the display that is nearest.
Point inwards(const WindowReading& window, const std::vector<Rect>& displays) {
    const Rect& seen = window.seen;
    Point step{1, 1};
    double shortest = std::numeric_limits<double>::infinity();
    for (const Rect& display : displays) {
        const double dx = display.x + display.width / 2 - (seen.x + seen.width / 2);
        const double dy = display.y + display.height / 2 - (seen.y + seen.height / 2);
        if (std::hypot(dx, dy) >= shortest) continue;
        shortest = std::hypot(dx, dy);
        step = {dx < 0 ? -1.0 : 1.0, dy < 0 ? -1.0 : 1.0};
    }
    return plus(seen.origin(), step);
}

}  // namespace

MoveLadder::MoveLadder(XConnection& x, FrameReader& frames, const WindowManagerInfo& manager)
    : x(x),
      frames(frames),
      manager(manager),
      events(x.onEvent([this](const xcb_generic_event_t& event) {
          if ((event.response_type & 0x7F) != XCB_DESTROY_NOTIFY) return;
          memories.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
      })) {}

MoveLadder::Memory& MoveLadder::remember(const WindowReading& now) {
    if (generation != manager.generation()) {
        generation = manager.generation();
        traits = traitsByName(manager.name(), manager.isComposited());
        provenMethod.reset();
        provenCorrection = {};
        memories.clear();
    }
    Memory& memory = memories[now.client];
    // Someone else has moved it since, so the window manager knows again where it stands.
    if (memory.believed && memory.overriddenCorner != now.frameArea.origin()) {
        memory.believed.reset();
    }
    return memory;
}

std::vector<MoveLadder::Method> MoveLadder::methods() const {
    std::vector<Method> result;
    if (manager.supports("_NET_MOVERESIZE_WINDOW") && traits.heedsMoveResize) {
        result.push_back(Method::moveResize);
    }
    result.push_back(Method::configure);
    if (provenMethod == Method::configure) std::reverse(result.begin(), result.end());
    return result;
}

bool MoveLadder::movesPastIt(const WindowReading& now, const Memory& memory) const {
    // One that stands where the window manager does not know stays in our hands until it arrives:
    // requests and our own moves are not carried out in one order.
    if (memory.believed) return true;
    if (!traits.paintsOverriddenFrames) return false;
    return traits.offScreen == OffScreenMoves::clamped || now.states.any();
}

Point MoveLadder::correctionFor(const WindowReading& now, const Memory& memory) const {
    if (memory.correction) return *memory.correction;
    if (const auto& proven = provenCorrection[now.drawsOwnShadow ? 1 : 0]) return *proven;
    if (traits.placesClientArea) {
        const Point border{now.clientBorder, now.clientBorder};
        return minus(minus(now.clientArea.origin(), border), now.seen.origin());
    }
    // To most a window with its own shadow begins where the shadow begins.
    return now.drawsOwnShadow ? minus(now.frameArea.origin(), now.seen.origin()) : Point{};
}

void MoveLadder::send(Method method, const WindowReading& now, Point corner,
                      std::optional<Size> clientSize) {
    if (method == Method::moveResize) {
        sendMoveResize(x, now.client, corner, clientSize);
    } else {
        sendConfigure(x, now.client, corner, clientSize);
    }
}

void MoveLadder::request(const WindowReading& now, Point target, std::optional<Size> clientSize) {
    const Memory& memory = remember(now);
    send(methods().front(), now, plus(target, correctionFor(now, memory)), clientSize);
}

MoveResult MoveLadder::place(const WindowReading& now, Point target,
                             const std::vector<Rect>& displays, Clock::time_point deadline) {
    const Memory& memory = remember(now);
    if (memory.believed == target) return goPastIt(now, target);
    if (!memory.believed && now.seen.origin() == target) return {MoveOutcome::reached};
    const bool leavesTheScreen =
        !isWhollyOnDisplays({target.x, target.y, now.seen.width, now.seen.height}, displays);
    // A window that fills the screen is not moved on request.
    const bool isOutOfReach = leavesTheScreen || now.states.any();
    if (isOutOfReach && movesPastIt(now, memory)) return goPastIt(now, target);
    return askManager(now, target, displays, deadline);
}

MoveResult MoveLadder::glide(const WindowReading& now, Point target,
                             const std::vector<Rect>& displays, Clock::time_point deadline) {
    const Memory& memory = remember(now);
    if (now.seen.origin() == target) return {MoveOutcome::reached};
    if (movesPastIt(now, memory)) return goPastIt(now, target);
    if (traits.offScreen == OffScreenMoves::unknown &&
        !isWhollyOnDisplays({target.x, target.y, now.seen.width, now.seen.height}, displays)) {
        return place(now, target, displays, deadline);
    }
    request(now, target);
    return {MoveOutcome::reached};
}

std::optional<WindowReading> MoveLadder::arrival(const WindowReading& before, Point target,
                                                 Clock::time_point latest) {
    const bool startsThere = before.seen.origin() == target;
    if (startsThere) {
        // The request only tells the window manager; wait whether it makes anything else of it.
        latest = std::min(latest, Clock::now() + patienceWhenThereAlready);
    }
    return frames.awaitAnswer(
        before.client,
        [&](const WindowReading& reading) {
            return !startsThere && reading.seen.origin() == target;
        },
        latest);
}

MoveResult MoveLadder::askManager(const WindowReading& now, Point target,
                                  const std::vector<Rect>& displays, Clock::time_point deadline) {
    Memory& memory = memories[now.client];
    const bool leavesTheScreen =
        !isWhollyOnDisplays({target.x, target.y, now.seen.width, now.seen.height}, displays);
    const Point start = now.seen.origin();
    frames.watch(now);

    std::optional<WindowReading> landed;
    // Where windows are kept on the screen this one may stand at the border already, and then
    // nothing at all happens.
    const bool isToBeClamped = leavesTheScreen && traits.offScreen == OffScreenMoves::clamped;
    milliseconds limit = isToBeClamped ? patienceAtABorder : patience;
    for (const Method method : methods()) {
        send(method, now, plus(target, correctionFor(now, memory)));
        landed = arrival(now, target, std::min(deadline, Clock::now() + limit));
        limit = patienceWithSecondMethod;
        if (!landed) return {MoveOutcome::vanished};
        if (landed->seen.origin() == start && start != target) {
            if (traits.neverRefuses) break;
            continue;
        }
        provenMethod = method;
        if (landed->seen.origin() != target && !isToBeClamped) {
            landed = correctOnce(method, *landed, target, deadline);
            if (!landed) return {MoveOutcome::vanished};
        }
        memory.believed.reset();
        break;
    }

    if (landed->seen.origin() == target) {
        if (leavesTheScreen && traits.offScreen == OffScreenMoves::unknown) {
            traits.offScreen = OffScreenMoves::carriedOut;
        }
        return {MoveOutcome::reached};
    }
    const bool wasAnswered = landed->seen.origin() != start;
    if (!wasAnswered && !memory.believed && !traits.neverRefuses) {
        // Kept by a border it stands at, or not to be moved at all, as a tile is.
        if (!movesAtAll(*landed, displays, deadline)) {
            // One on a hidden workspace may be moved when that is shown; not to the probe's place.
            send(methods().front(), now, plus(target, correctionFor(now, memory)));
            return {MoveOutcome::refused};
        }
        landed = frames.read(now.client);
        if (!landed) return {MoveOutcome::vanished};
    }
    if (leavesTheScreen && (wasAnswered || traits.offScreen == OffScreenMoves::unknown)) {
        traits.offScreen = OffScreenMoves::clamped;
    }
    if (traits.paintsOverriddenFrames) return goPastIt(*landed, target);
    // Here a picture of the window could take its place, were there one.
    return {wasAnswered || leavesTheScreen ? MoveOutcome::clamped : MoveOutcome::refused};
}

std::optional<WindowReading> MoveLadder::correctOnce(Method method, const WindowReading& landed,
                                                     Point target, Clock::time_point deadline) {
    Memory& memory = memories[landed.client];
    const Point better = plus(correctionFor(landed, memory), minus(target, landed.seen.origin()));
    send(method, landed, plus(target, better));
    auto corrected = arrival(landed, target, std::min(deadline, Clock::now() + patience));
    if (corrected && corrected->seen.origin() == target) {
        memory.correction = better;
        provenCorrection[landed.drawsOwnShadow ? 1 : 0] = better;
    }
    return corrected;
}

bool MoveLadder::movesAtAll(const WindowReading& now, const std::vector<Rect>& displays,
                            Clock::time_point deadline) {
    const Point nudged = inwards(now, displays);
    const Memory& memory = memories[now.client];
    for (const Method method : methods()) {
        send(method, now, plus(nudged, correctionFor(now, memory)));
    }
    const auto after = arrival(now, nudged, std::min(deadline, Clock::now() + patienceWithProbe));
    return after && after->seen.origin() != now.seen.origin();
}

MoveResult MoveLadder::goPastIt(const WindowReading& now, Point target, int attemptsLeft) {
    Memory& memory = memories[now.client];
    const Point corner = plus(target, minus(now.frameArea.origin(), now.seen.origin()));
    if (corner != now.frameArea.origin()) {
        const std::uint8_t error = overrideFrame(x, now.frame, now.frameIsOverrideRedirect, corner);
        if (error != 0) {
            const auto left = frames.read(now.client);
            if (!left) return {MoveOutcome::vanished};
            // The frame has gone with its window manager; the window has not.
            const bool isAnotherFrame = left->frame != now.frame;
            if (isAnotherFrame && attemptsLeft > 0)
                return goPastIt(*left, target, attemptsLeft - 1);
            return {MoveOutcome::refused, error};
        }
    }
    if (!memory.believed) memory.believed = now.seen.origin();
    if (memory.believed == target) memory.believed.reset();
    memory.overriddenCorner = corner;
    return {MoveOutcome::reached};
}

}  // namespace quorvel::native
