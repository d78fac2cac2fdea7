#include "main/corners/HotZoneWatcher.hpp"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <utility>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

constexpr RunLoop::Duration pollInterval = std::chrono::nanoseconds(std::chrono::seconds(1)) / 15;
constexpr RunLoop::Duration pollTolerance = std::chrono::milliseconds(20);

constexpr std::uint64_t nanosPerMs = 1'000'000;
static_assert(std::uint64_t{std::numeric_limits<int>::max()} <=
                  std::numeric_limits<std::uint64_t>::max() / nanosPerMs,
              "every dwell has its number of nanoseconds");

Rect zoneRect(HotZoneCorner corner, const Rect& frameCocoa) {
    constexpr double side = HotZoneWatcher::zoneSide;
    const bool isLeft = corner == HotZoneCorner::bottomLeft || corner == HotZoneCorner::topLeft;
    const bool isBottom =
        corner == HotZoneCorner::bottomLeft || corner == HotZoneCorner::bottomRight;
    return {isLeft ? frameCocoa.minX() : frameCocoa.maxX() - side,
            isBottom ? frameCocoa.minY() : frameCocoa.maxY() - side, side, side};
}

std::string text(const Rect& rect) {
    return formatted("(%d,%d %dx%d)", truncated(rect.x), truncated(rect.y), truncated(rect.width),
                     truncated(rect.height));
}

}  // namespace

std::unique_ptr<HotZoneWatcher> HotZoneWatcher::create(std::vector<Assignment> assignments,
                                                       int dwellMs, Platform platform) {
    if (assignments.empty()) return nullptr;
    return std::unique_ptr<HotZoneWatcher>(
        new HotZoneWatcher(std::move(assignments), std::max(dwellMs, 0), platform));
}

HotZoneWatcher::HotZoneWatcher(std::vector<Assignment> assignments, int dwellMs, Platform platform)
    : platform(platform),
      assignments(std::move(assignments)),
      dwellMs(dwellMs),
      dwellNanos(static_cast<std::uint64_t>(dwellMs) * nanosPerMs) {}

void HotZoneWatcher::start() {
    rebuildZones();
    screenObserver = platform.screens.onChange([this] { rebuildZones(); });
    timer = platform.pollTimers.polling(pollInterval, pollTolerance, [this] { return tick(); });

    std::vector<std::string> corners;
    for (const Assignment& assignment : assignments) {
        corners.emplace_back(rawValue(assignment.corner));
    }
    platform.log.line(
        formatted("Quorvel: hot corner armed (%@, dwell %dms)", joined(corners, ", "), dwellMs));
}

void HotZoneWatcher::stop() {
    timer.reset();
    screenObserver.reset();
}

void HotZoneWatcher::rebuildZones() {
    std::vector<Rect> screenFramesCocoa;
    for (const Screen& screen : platform.screens.screens()) {
        screenFramesCocoa.push_back(screen.frameCocoa);
    }
    zones.clear();
    for (const Assignment& assignment : assignments) {
        addZones(assignment, assignment.displayFramesCocoa.value_or(screenFramesCocoa));
    }
    // Where it rested is perhaps no zone any more, or another one.
    if (state.isDwelling()) state.phase = HotZoneState::Armed{};

    std::vector<std::string> texts;
    for (const Zone& zone : zones) texts.push_back(text(zone.rectCocoa));
    platform.log.line(
        formatted("Quorvel: hot corner zones: %@", texts.empty() ? "none" : joined(texts, " ")));
}

void HotZoneWatcher::addZones(const Assignment& assignment, const std::vector<Rect>& framesCocoa) {
    for (const Rect& frameCocoa : framesCocoa) {
        // A display that shows nothing has no corner to rest in.
        if (frameCocoa.isEmpty()) continue;
        zones.push_back({zoneRect(assignment.corner, frameCocoa), assignment.action});
    }
}

const HotZoneWatcher::Zone* HotZoneWatcher::zoneAt(Point cursorCocoa) const {
    const auto zone = std::find_if(zones.begin(), zones.end(), [&](const Zone& candidate) {
        return candidate.rectCocoa.containsInclusive(cursorCocoa);
    });
    return zone == zones.end() ? nullptr : &*zone;
}

PollAgain HotZoneWatcher::tick() {
    const auto [cursorCocoa, pressedButtons] = platform.pointer.read();
    const Zone* const zone = zoneAt(cursorCocoa);
    const bool isOver = state.step(
        {zone != nullptr, pressedButtons, platform.clock.uptimeNanoseconds()}, dwellNanos);
    if (!isOver) {
        return state.isDwelling() ? PollAgain::afterInterval : PollAgain::onceAnythingMoves;
    }
    platform.log.line(formatted("Quorvel: hot corner fired at (%d, %d)", truncated(cursorCocoa.x),
                                truncated(cursorCocoa.y)));
    // Called through a copy, and last: the action may be the end of the watcher.
    const auto action = zone->action;
    action();
    return PollAgain::onceAnythingMoves;
}

}  // namespace quorvel
