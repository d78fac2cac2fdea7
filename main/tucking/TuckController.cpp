#include "main/tucking/TuckController.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "main/tucking/AXPermission.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

/// A freshly activated application may take a moment to give one of its windows the keyboard.
constexpr RunLoop::Duration focusRetryDelay = std::chrono::milliseconds(250);
/// Rounding by the window server is no clamping.
constexpr double clampTolerance = 1;
/// What a window may drift before it counts as moved by someone else.
constexpr double driftTolerance = 40;

bool isWithin(double tolerance, Point a, Point b) {
    return std::abs(a.x - b.x) <= tolerance && std::abs(a.y - b.y) <= tolerance;
}

}  // namespace

TuckController::TuckController(AXWindows windows, Applications& applications, Screens& screens,
                               RunLoop& runLoop, Trust& trust, Log& log)
    : windows(windows),
      applications(applications),
      screens(screens),
      runLoop(runLoop),
      trust(trust),
      log(log),
      animator(windows, runLoop),
      screenObserver(screens.onChange([this] { displaysChanged(); })) {}

void TuckController::toggleTuck(const std::string& appPath, TuckEdge edge) {
    const auto application = runningApp(appPath);
    if (!application) {
        log.line(formatted("Quorvel: tuck requested but %@ is not running.", appPath));
        return;
    }
    if (edge == TuckEdge::bottom) {
        toggleBottomTuck(*application, appPath);
        return;
    }
    if (!trust.isTrusted()) {
        log.line("Quorvel: tuck requested but Accessibility is not granted.");
        AXPermission::promptAndOpenSettings(trust);
        return;
    }
    if (hiddenApps.contains(appPath) && applications.isHidden(*application)) {
        // Its windows are out of reach; the second toggle undoes what the first one did.
        log.note("It was hidden here: shown again.");
        toggleBottomTuck(*application, appPath);
        return;
    }
    const std::int32_t pid = application->processIdentifier;
    if (const auto window = windows.focusedWindow(pid, appPath)) {
        tuckOrUntuck(*window, appPath);
        return;
    }
    log.note("It has no window with the keyboard yet: once more in a moment.");
    runLoop.after(focusRetryDelay, [this, alive = life.watch(), pid, appPath] {
        if (alive.expired()) return;
        if (const auto window = windows.focusedWindow(pid, appPath)) {
            tuckOrUntuck(*window, appPath);
        } else {
            log.note("It has no window that could be tucked.");
        }
    });
}

void TuckController::tuckFocused(const std::string& appPath, std::int32_t pid, TuckEdge edge) {
    if (edge == TuckEdge::bottom) {
        autoBottomTuck(pid, appPath);
        return;
    }
    if (!trust.isTrusted()) return log.note(trust.reason());
    const auto window = windows.focusedWindow(pid, appPath);
    if (!window) return log.note("It has no window that could be tucked.");
    if (registry.find(*window)) return log.note("Its window is tucked already.");
    const auto frameAX = windows.frameAX(*window);
    if (!frameAX) return log.note("Its window cannot be read.");
    const auto display = screenCocoa(*frameAX);
    if (!display) return log.note("No display is attached.");
    const auto placed = placedEdge(appPath, *display);
    if (!placed.edge) return log.note(std::string("Left alone: ").append(placed.whyNot));
    if (*placed.edge == TuckEdge::bottom) {
        autoBottomTuck(pid, appPath);
        return;
    }
    if (edgeIsSharedWithAnotherDisplay(*placed.edge, *display)) {
        if (autoHide(pid, appPath)) {
            log.line(formatted("Quorvel: auto-hid %@ (%@ edge borders another display)", appPath,
                               placed.edge->rawValue()));
        }
        return;
    }
    tuck(*window, appPath, *placed.edge, *frameAX, *display);
    log.line(formatted("Quorvel: auto-tucked %@ window to %@", appPath, placed.edge->rawValue()));
}

void TuckController::untuck(AXWindow window, std::optional<TuckAnimationStyle> style, bool raise) {
    const auto record = registry.remove(window);
    if (!record) return;
    const auto known = meta.extract(window);
    const Rect frameAX = windows.frameAX(window).value_or(record->originalFrameAX);
    windows.letGo(window, EndOfHold::putBack);
    animator.move(window, frameAX.origin(), record->originalFrameAX.origin(),
                  style.value_or(animationStyle));
    if (raise) {
        windows.raise(window);
        if (!known.empty()) activate(known.mapped().appPath);
    }
    log.line("Quorvel: untucked window");
}

void TuckController::untuckAll() {
    for (const AXWindow window : std::vector(registry.order)) {
        untuck(window, TuckAnimationStyle::instant, false);
    }
    // Those that were on their way home already are in the registry no more.
    animator.finishAll();
    unhideAll();
}

void TuckController::unhideAll() {
    for (const auto& [appPath, pid] : std::exchange(hiddenApps, {})) {
        auto application = runningApp(appPath);
        if (!application) application = applications.applicationWithProcessIdentifier(pid);
        if (application) applications.unhide(*application);
    }
}

void TuckController::untuckAll(const std::string& appPath) {
    // Whoever brings the application forward shows it as well.
    hiddenApps.erase(appPath);
    for (const TuckedWindow& tucked : tuckedWindows()) {
        if (tucked.appPath == appPath) untuck(tucked.window, std::nullopt, true);
    }
}

void TuckController::hideRevealed(const std::string& appPath) {
    for (const TuckedWindow& tucked : tuckedWindows()) {
        if (tucked.appPath != appPath) continue;
        hide(tucked.window);
        return;
    }
}

void TuckController::hide(AXWindow window) {
    moveBetweenPositions(window, false);
}

void TuckController::reveal(AXWindow window) {
    if (!moveBetweenPositions(window, true)) return;
    windows.raise(window);
    activate(std::string(meta.at(window).appPath));
}

std::vector<TuckController::RevealTarget> TuckController::revealTargets() {
    if (screenFramesCocoa().empty()) return {};
    const double maxY = primaryScreenMaxY();
    std::vector<RevealTarget> targets;
    for (const AXWindow window : std::vector(registry.order)) {
        const auto known = meta.find(window);
        if (known == meta.end()) continue;
        const auto frameAX = windows.frameAX(window);
        if (!frameAX || wasMovedByOthers(known->second, frameAX->origin())) {
            release(window);
            continue;
        }
        const Rect frameCocoa = flipped(*frameAX, maxY);
        targets.push_back(
            {window, known->second.edge.revealStripCocoa(frameCocoa, known->second.screenCocoa),
             registry.find(window)->revealed, frameCocoa});
    }
    return targets;
}

bool TuckController::wasMovedByOthers(const Meta& known, Point originAX) const {
    return known.expectedOrigin && !isWithin(driftTolerance, originAX, *known.expectedOrigin);
}

void TuckController::release(AXWindow window) {
    animator.cancel(window);
    registry.remove(window);
    meta.erase(window);
    windows.letGo(window, EndOfHold::forgotten);
    log.line("Quorvel: released a tucked window — moved externally or closed");
}

void TuckController::displaysChanged() {
    const auto frames = screenFramesCocoa();
    // There is nowhere to put anything; when a display comes back, this is looked at again.
    if (frames.empty()) return;
    std::vector<AXWindow> stranded;
    for (const AXWindow window : registry.order) {
        const auto known = meta.find(window);
        if (known == meta.end()) continue;
        const bool isGone =
            std::find(frames.begin(), frames.end(), known->second.screenCocoa) == frames.end();
        // Another display may have taken the very place of the one that went; then the window is
        // beside it. The user has not moved it: no poll has come in between.
        const auto frameAX = isGone ? std::nullopt : windows.frameAX(window);
        if (isGone || (frameAX && wasMovedByOthers(known->second, frameAX->origin()))) {
            stranded.push_back(window);
        }
    }
    if (stranded.empty()) {
        log.line(formatted("Quorvel: displays changed — %d tucked window(s) unaffected",
                           registry.order.size()));
        return;
    }
    log.line(
        formatted("Quorvel: displays changed — restoring %d tucked window(s) whose display is "
                  "gone or resized",
                  stranded.size()));
    for (const AXWindow window : stranded) untuck(window, TuckAnimationStyle::instant, false);
}

bool TuckController::hasTuckedWindow(const std::string& appPath) const {
    const auto tucked = tuckedWindows();
    return std::any_of(tucked.begin(), tucked.end(),
                       [&](const TuckedWindow& each) { return each.appPath == appPath; });
}

bool TuckController::isTucked(const std::string& appPath, std::string_view edgeRaw) const {
    if (TuckEdge::parse(edgeRaw) == TuckEdge(TuckEdge::bottom)) {
        const auto application = runningApp(appPath);
        return application && applications.isHidden(*application);
    }
    return hasTuckedWindow(appPath);
}

std::vector<TuckController::TuckedWindow> TuckController::tuckedWindows() const {
    std::vector<TuckedWindow> result;
    for (const AXWindow window : registry.order) {
        const auto at = meta.find(window);
        if (at != meta.end()) result.push_back({at->second.appPath, window, at->second.edge});
    }
    return result;
}

bool TuckController::hasRevealedWindow(const std::string& appPath) const {
    const auto tucked = tuckedWindows();
    return std::any_of(tucked.begin(), tucked.end(), [&](const TuckedWindow& each) {
        return each.appPath == appPath && isRevealed(each.window);
    });
}

bool TuckController::isRevealed(AXWindow window) const {
    const auto* const record = registry.find(window);
    return record && record->revealed;
}

std::optional<RunningApplication> TuckController::runningApp(const std::string& appPath) const {
    for (RunningApplication& application : applications.runningApplications()) {
        if (application.bundlePath == appPath) return std::move(application);
    }
    return std::nullopt;
}

void TuckController::activate(const std::string& appPath) {
    if (const auto application = runningApp(appPath)) applications.activate(*application);
}

void TuckController::tuckOrUntuck(AXWindow window, const std::string& appPath) {
    if (registry.find(window)) {
        untuck(window, std::nullopt, true);
        return;
    }
    const auto frameAX = windows.frameAX(window);
    if (!frameAX) return log.note("Its window cannot be read.");
    const auto display = screenCocoa(*frameAX);
    if (!display) return log.note("No display is attached.");
    const auto placed = placedEdge(appPath, *display);
    if (!placed.edge) {
        hideInstead(appPath, placed.whyNot);
        return;
    }
    if (*placed.edge == TuckEdge::bottom) {
        if (const auto application = runningApp(appPath)) toggleBottomTuck(*application, appPath);
        return;
    }
    if (edgeIsSharedWithAnotherDisplay(*placed.edge, *display)) {
        hideInstead(appPath,
                    formatted("the %@ edge of the display at (%d, %d) borders another display, so "
                              "a tuck there would land the window on the neighbour",
                              placed.edge->rawValue(), truncated(display->minX()),
                              truncated(display->minY())));
        return;
    }
    tuck(window, appPath, *placed.edge, *frameAX, *display);
    log.line(formatted("Quorvel: tucked %@ window to %@", appPath, placed.edge->rawValue()));
}

TuckController::PlacedEdge TuckController::placedEdge(const std::string& appPath,
                                                      const Rect& displayCocoa) const {
    const auto text = edgeForDisplay ? edgeForDisplay(appPath, displayCocoa) : std::nullopt;
    if (!text) return {std::nullopt, "nothing is placed for it on this display"};
    return {TuckEdge::parse(*text), "it is placed on this display with tuck set to Off"};
}

void TuckController::tuck(AXWindow window, const std::string& appPath, TuckEdge edge,
                          const Rect& frameAX, const Rect& screenCocoa) {
    // A window that is still on its way home belongs there, not where it happens to be.
    Rect originalFrameAX = frameAX;
    if (const auto home = animator.destination(window)) {
        originalFrameAX.x = home->x;
        originalFrameAX.y = home->y;
    }
    registry.insert(window, {originalFrameAX, false});
    meta.insert_or_assign(window, Meta{appPath, edge, screenCocoa, std::nullopt});
    windows.hold(window, originalFrameAX);
    moveTracked(window, frameAX.origin(), edge.tuckedOrigin(frameAX, screenAX(screenCocoa)),
                std::nullopt);
}

bool TuckController::moveBetweenPositions(AXWindow window, bool revealed) {
    const auto known = meta.find(window);
    auto* const record = registry.find(window);
    if (known == meta.end() || !record || record->revealed == revealed) return false;
    const auto frameAX = windows.frameAX(window);
    // Without displays there is no telling where anything is.
    if (!frameAX || screenFramesCocoa().empty()) return false;
    record->revealed = revealed;
    const TuckEdge edge = known->second.edge;
    const Rect displayAX = screenAX(known->second.screenCocoa);
    moveTracked(window, frameAX->origin(),
                revealed ? edge.revealedOrigin(*frameAX, displayAX)
                         : edge.tuckedOrigin(*frameAX, displayAX),
                std::nullopt);
    return true;
}

void TuckController::moveTracked(AXWindow window, Point from, Point to,
                                 std::optional<TuckAnimationStyle> style) {
    meta.at(window).expectedOrigin.reset();
    animator.move(window, from, to, style.value_or(animationStyle),
                  [this, alive = life.watch(), window, to](bool written) {
                      if (alive.expired() || !written) return;
                      const auto known = meta.find(window);
                      if (known == meta.end()) return;
                      const auto frameAX = windows.frameAX(window);
                      if (!frameAX) return;
                      const Point got = frameAX->origin();
                      known->second.expectedOrigin = got;
                      if (!isWithin(clampTolerance, got, to)) {
                          log.line(
                              formatted("Quorvel: the window server clamped the move — asked "
                                        "(%.0f, %.0f), got (%.0f, %.0f)",
                                        to.x, to.y, got.x, got.y));
                      }
                  });
}

bool TuckController::toggleHidden(const RunningApplication& application,
                                  const std::string& appPath) {
    if (applications.isHidden(application)) {
        applications.unhide(application);
        applications.activate(application);
        hiddenApps.erase(appPath);
        return false;
    }
    applications.hide(application);
    hiddenApps.insert_or_assign(appPath, application.processIdentifier);
    return true;
}

void TuckController::toggleBottomTuck(const RunningApplication& application,
                                      const std::string& appPath) {
    log.line(formatted(toggleHidden(application, appPath) ? "Quorvel: hid %@ (bottom tuck)"
                                                          : "Quorvel: shown %@ (bottom tuck)",
                       appPath));
}

void TuckController::hideInstead(const std::string& appPath, std::string_view reason) {
    log.line(formatted("Quorvel: hiding %@ instead — %@", appPath, reason));
    if (const auto application = runningApp(appPath)) toggleHidden(*application, appPath);
}

bool TuckController::autoHide(std::int32_t pid, const std::string& appPath) {
    auto application = applications.applicationWithProcessIdentifier(pid);
    // One process may serve several applications.
    if (application && application->bundlePath != appPath) application = runningApp(appPath);
    if (!application || applications.isHidden(*application)) return false;
    applications.hide(*application);
    hiddenApps.insert_or_assign(appPath, application->processIdentifier);
    return true;
}

void TuckController::autoBottomTuck(std::int32_t pid, const std::string& appPath) {
    if (autoHide(pid, appPath)) {
        log.line(formatted("Quorvel: auto-hid %@ (bottom tuck)", appPath));
    }
}

std::vector<Rect> TuckController::screenFramesCocoa() const {
    std::vector<Rect> result;
    for (const Screen& screen : screens.screens()) {
        // What shows nothing is no display to put a window on, nor to measure by.
        if (!screen.frameCocoa.isEmpty()) result.push_back(screen.frameCocoa);
    }
    return result;
}

double TuckController::primaryScreenMaxY() const {
    const auto frames = screenFramesCocoa();
    for (const Rect& frame : frames) {
        if (frame.origin() == Point{}) return frame.maxY();
    }
    return frames.empty() ? 0 : frames.front().maxY();
}

std::optional<Rect> TuckController::screenCocoa(const Rect& containingAX) const {
    const auto frames = screenFramesCocoa();
    if (frames.empty()) return std::nullopt;
    const Rect windowCocoa = flipped(containingAX, primaryScreenMaxY());
    for (const Rect& frame : frames) {
        if (frame.intersects(windowCocoa)) return frame;
    }
    for (const Rect& frame : frames) {
        if (frame.origin() == Point{}) return frame;
    }
    return frames.front();
}

Rect TuckController::screenAX(const Rect& screenCocoa) const {
    return flipped(screenCocoa, primaryScreenMaxY());
}

bool TuckController::edgeIsSharedWithAnotherDisplay(TuckEdge edge, const Rect& screenCocoa) const {
    return tuckEdgeIsShared(edge, screenCocoa, screenFramesCocoa());
}

}  // namespace quorvel
