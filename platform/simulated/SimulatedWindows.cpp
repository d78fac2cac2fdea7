#include "platform/simulated/SimulatedWindows.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorvel {
namespace {

double clamped(double value, double low, double high) {
    // A window larger than its display keeps its upper left corner on it.
    return std::max(low, std::min(value, high));
}

Point within(const Rect& screenAX, Point origin, Size size) {
    return {clamped(origin.x, screenAX.minX(), screenAX.maxX() - size.width),
            clamped(origin.y, screenAX.minY(), screenAX.maxY() - size.height)};
}

}  // namespace

SimulatedWindows::SimulatedWindows(SimulatedWindowServer& server,
                                   const SimulatedApplications& applications,
                                   const SimulatedScreens& screens, const Trust& trust,
                                   SimulatedRunLoop& runLoop)
    : server(server),
      applications(applications),
      screens(screens),
      trust(trust),
      runLoop(runLoop),
      windowChanges(server.onChange([this](WindowElement window) {
          if (isHeld({window})) heldWindowChanges.notify();
      })) {}

std::optional<Rect> SimulatedWindows::heldFrameAX(AXWindow window) const {
    const auto at = holds.find(window);
    if (at == holds.end()) return std::nullopt;
    return at->second.originalFrameAX;
}

FocusedWindowReading SimulatedWindows::focusedWindow(std::int32_t processIdentifier,
                                                     const std::string& bundlePath) {
    ++focusedWindowCount;
    const auto error = focusErrors.find(processIdentifier);
    if (error != focusErrors.end()) return {error->second, std::nullopt};
    if (!trust.isTrusted()) return {refused, std::nullopt};
    RunningApplication application{bundlePath, processIdentifier};
    if (bundlePath.empty()) application.bundlePath.reset();
    const SimulatedWindow* window =
        SimulatedWindowServer::mostRecent(applications.windowsOf(application), false);
    if (!window) return {};
    while (window->transientFor) {
        const SimulatedWindow* parent = server.find(*window->transientFor);
        if (!parent || parent->isIconic) break;
        window = parent;
    }
    const AXWindow handle = window->handle();
    if (!reach(handle)) return {server.find(handle.element) ? refused : 0, std::nullopt};
    return {0, handle};
}

FrameReading SimulatedWindows::readFrame(AXWindow window) {
    ++readFrameCount;
    const SimulatedWindow* found = reach(window);
    if (!found || !trust.isTrusted()) return {};
    FrameReading reading;
    if (!found->faults.hidesPosition) reading.positionAX = found->frameAX.origin();
    if (!found->faults.hidesSize) reading.size = found->frameAX.size();
    return reading;
}

std::int32_t SimulatedWindows::setOrigin(AXWindow window, Point originAX, MoveStep step) {
    moves.push_back({window, originAX, step});
    SimulatedWindow* found = reach(window);
    if (!found || !trust.isTrusted()) return refused;
    if (found->faults.moveError != 0) return found->faults.moveError;
    if (found->faults.ignoresMoves || found->isMaximized) {
        return step == MoveStep::intermediate ? 0 : refused;
    }
    const Point landed = allowedOrigin(*found, originAX);
    found->frameAX.x = landed.x;
    found->frameAX.y = landed.y;
    // A window server tells of every move, whoever asked for it.
    if (isHeld(window)) heldWindowChanges.notify();
    if (step == MoveStep::final) arriveHome(*found);
    return 0;
}

void SimulatedWindows::raise(AXWindow window) {
    raised.push_back(window);
    if (reach(window)) server.raise(window.element);
}

void SimulatedWindows::hold(AXWindow window, const Rect& originalFrameAX) {
    SimulatedWindow* found = reach(window);
    const auto before = holds.find(window);
    Hold hold{originalFrameAX, before != holds.end() && before->second.wasMaximized, false};
    if (found && found->isMaximized) {
        found->isMaximized = false;
        hold.wasMaximized = true;
    }
    if (found) {
        found->noteOfHold = originalFrameAX;
        found->noteOfMaximized = hold.wasMaximized;
    }
    holds.insert_or_assign(window, hold);
    newHolds.notify();
}

void SimulatedWindows::letGo(AXWindow window, EndOfHold how) {
    letGone.emplace_back(window, how);
    const auto at = holds.find(window);
    if (at == holds.end()) return;
    if (how == EndOfHold::putBack) {
        at->second.comesHome = true;
    } else {
        holds.erase(at);
        if (SimulatedWindow* found = server.find(window.element)) eraseNote(*found);
    }
}

int SimulatedWindows::putBackLost() {
    int count = 0;
    for (SimulatedWindow* window : server.all()) {
        if (!window->noteOfHold) continue;
        const std::vector<Rect> displays = screenFramesAX();
        const bool isInSight =
            std::any_of(displays.begin(), displays.end(), [&](const Rect& display) {
                return within(display, window->frameAX.origin(), window->frameAX.size()) ==
                       window->frameAX.origin();
            });
        if (!isInSight) {
            window->frameAX.x = window->noteOfHold->x;
            window->frameAX.y = window->noteOfHold->y;
            window->isMaximized = window->noteOfMaximized;
            bringOntoDisplays(*window);
            ++count;
        }
        eraseNote(*window);
    }
    return count;
}

void SimulatedWindows::eraseNote(SimulatedWindow& window) {
    window.noteOfHold.reset();
    window.noteOfMaximized = false;
}

/// The window, if it is there and answers in time. What that takes passes here.
SimulatedWindow* SimulatedWindows::reach(AXWindow window) {
    SimulatedWindow* found = server.find(window.element);
    if (!found) return nullptr;
    auto& callsLeft = found->faults.vanishesAfterCalls;
    if (callsLeft && (*callsLeft)-- <= 0) {
        server.close(window.element);
        return nullptr;
    }
    runLoop.consume(std::min<RunLoop::Duration>(found->faults.responseTime, timeout));
    return found->faults.responseTime < timeout ? found : nullptr;
}

Point SimulatedWindows::allowedOrigin(const SimulatedWindow& window, Point asked) const {
    const Point off = window.faults.landsOffBy;
    const Point landed{asked.x + off.x, asked.y + off.y};
    if (!window.faults.isClampedToDisplay) return landed;
    for (const Rect& screenAX : screenFramesAX()) {
        if (screenAX.intersects(window.frameAX)) {
            return within(screenAX, landed, window.frameAX.size());
        }
    }
    return landed;
}

/// What a window server does for a window that is back and could not be seen there.
void SimulatedWindows::arriveHome(SimulatedWindow& window) {
    const auto at = holds.find(window.handle());
    if (at == holds.end() || !at->second.comesHome) return;
    window.isMaximized = at->second.wasMaximized;
    holds.erase(at);
    eraseNote(window);
    bringOntoDisplays(window);
}

void SimulatedWindows::bringOntoDisplays(SimulatedWindow& window) const {
    std::optional<Point> nearest;
    double shortest = std::numeric_limits<double>::infinity();
    for (const Rect& screenAX : screenFramesAX()) {
        if (screenAX.intersects(window.frameAX)) return;
        const Point origin = within(screenAX, window.frameAX.origin(), window.frameAX.size());
        const double distance =
            std::hypot(origin.x - window.frameAX.x, origin.y - window.frameAX.y);
        if (distance < shortest) {
            shortest = distance;
            nearest = origin;
        }
    }
    if (!nearest) return;
    window.frameAX.x = nearest->x;
    window.frameAX.y = nearest->y;
}

std::vector<Rect> SimulatedWindows::screenFramesAX() const {
    std::vector<Rect> result;
    for (const Screen& screen : screens.screens()) {
        result.push_back(flipped(screen.frameCocoa, screens.primaryScreenMaxY()));
    }
    return result;
}

}  // namespace quorvel
