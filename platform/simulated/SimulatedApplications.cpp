#include "platform/simulated/SimulatedApplications.hpp"

#include <algorithm>

namespace quorvel {

SimulatedApplications::SimulatedApplications(SimulatedWindowServer& server, RunLoop& runLoop)
    : server(server), runLoop(runLoop) {
    server.activeChanged = [this] {
        ++activeChanges;
        this->runLoop.async([this] { followActiveWindow(); });
    };
}

std::vector<RunningApplication> SimulatedApplications::runningApplications() const {
    std::vector<RunningApplication> result;
    for (const SimulatedWindow* window : std::as_const(server).all()) {
        const RunningApplication application = describe(*window);
        if (std::find(result.begin(), result.end(), application) == result.end()) {
            result.push_back(application);
        }
    }
    return result;
}

std::optional<RunningApplication> SimulatedApplications::applicationWithProcessIdentifier(
    std::int32_t processIdentifier) const {
    auto windows = std::as_const(server).all();
    std::erase_if(windows,
                  [&](const auto* other) { return other->processIdentifier != processIdentifier; });
    const SimulatedWindow* window = SimulatedWindowServer::mostRecent(windows, true);
    if (!window) return std::nullopt;
    return describe(*window);
}

std::optional<RunningApplication> SimulatedApplications::frontmostApplication() const {
    const auto active = server.active();
    if (!active) return std::nullopt;
    return describe(server.window(*active));
}

bool SimulatedApplications::isHidden(const RunningApplication& application) const {
    const auto windows = windowsOf(application);
    return !windows.empty() && std::all_of(windows.begin(), windows.end(),
                                           [](const auto* window) { return window->isIconic; });
}

void SimulatedApplications::hide(const RunningApplication& application) {
    // From the back to the front, so that the keyboard does not wander through its own windows.
    auto windows = windowsOf(application);
    std::sort(windows.begin(), windows.end(),
              [](const auto* a, const auto* b) { return a->lastActive < b->lastActive; });
    for (const SimulatedWindow* window : windows) {
        if (window->isIconic) continue;
        server.iconify(window->element);
        iconifiedByHide[window->element] = window->iconifications;
        server.window(window->element).noteOfHide = true;
    }
}

void SimulatedApplications::unhide(const RunningApplication& application) {
    auto toBeShown = windowsOf(application);
    std::erase_if(toBeShown, [this](const SimulatedWindow* window) {
        const auto remembered = iconifiedByHide.extract(window->element);
        return remembered.empty() || !window->isIconic ||
               remembered.mapped() != window->iconifications;
    });
    if (toBeShown.empty() && isHidden(application)) toBeShown = windowsOf(application);
    for (const SimulatedWindow* window : toBeShown) server.deiconify(window->element);
}

int SimulatedApplications::showLost() {
    int count = 0;
    for (SimulatedWindow* window : server.all()) {
        if (!window->noteOfHide) continue;
        if (window->isIconic) ++count;
        server.deiconify(window->element);
    }
    return count;
}

void SimulatedApplications::activate(const RunningApplication& application) {
    unhide(application);
    const SimulatedWindow* window =
        SimulatedWindowServer::mostRecent(windowsOf(application), false);
    if (window) server.activate(window->element);
}

void SimulatedApplications::open(const std::string& path, OpenCompletion completion) {
    const std::string installed = installedPath(path);
    if (!server.windowsOf(installed, 0).empty()) {
        activate({path, 0});
        runLoop.async([completion] { completion(std::nullopt); });
        return;
    }
    const auto found = launches.find(installed);
    if (found == launches.end()) {
        runLoop.async([completion, path] { completion("There is no application at " + path); });
        return;
    }
    const Launch launch = found->second;
    if (launch.error) {
        runLoop.async([completion, launch] { completion(launch.error); });
        return;
    }
    if (starting.contains(installed)) {
        runLoop.async([completion] { completion(std::nullopt); });
        return;
    }
    ++launchCounts[installed];
    if (launch.opensWindow) {
        starting.insert(installed);
        runLoop.after(launch.delay, [this, installed, frameAX = launch.frameAX] {
            starting.erase(installed);
            server.open({.bundlePath = installed, .frameAX = frameAX});
        });
    }
    runLoop.async([completion] { completion(std::nullopt); });
}

Subscription SimulatedApplications::onActivated(
    std::function<void(const RunningApplication&)> handler) {
    return activatedHandlers.add(std::move(handler));
}

Subscription SimulatedApplications::onDeactivated(
    std::function<void(const RunningApplication&)> handler) {
    return deactivatedHandlers.add(std::move(handler));
}

std::string SimulatedApplications::installedPath(const std::string& path) const {
    const auto alias = aliases.find(path);
    return alias == aliases.end() ? path : alias->second;
}

/// By which of its paths an application is known.
std::string SimulatedApplications::shownPath(const std::string& path) const {
    for (const std::string& candidate : preferred) {
        if (installedPath(candidate) == path) return candidate;
    }
    return path;
}

RunningApplication SimulatedApplications::describe(const SimulatedWindow& window) const {
    const SimulatedWindow* last = SimulatedWindowServer::mostRecent(
        server.windowsOf(window.bundlePath, window.processIdentifier), true);
    RunningApplication result;
    if (window.bundlePath) result.bundlePath = shownPath(*window.bundlePath);
    result.processIdentifier = last->processIdentifier;
    return result;
}

std::vector<SimulatedWindow*> SimulatedApplications::windowsOf(
    const RunningApplication& application) const {
    auto path = application.bundlePath;
    if (path) path = installedPath(*path);
    return server.windowsOf(path, application.processIdentifier);
}

void SimulatedApplications::followActiveWindow() {
    if (server.active()) {
        report(frontmostApplication());
        return;
    }
    runLoop.after(deactivationDelay, [this, since = activeChanges] {
        if (since == activeChanges) report(std::nullopt);
    });
}

void SimulatedApplications::report(const std::optional<RunningApplication>& front) {
    const auto isSame = [](const RunningApplication& a, const RunningApplication& b) {
        return a.bundlePath == b.bundlePath &&
               (a.bundlePath || a.processIdentifier == b.processIdentifier);
    };
    const auto before = reportedFront;
    reportedFront = front;
    if (before && front && isSame(*before, *front)) return;
    if (front) unhide(*front);
    if (before) deactivatedHandlers.notify(*before);
    if (front) activatedHandlers.notify(*front);
}

}  // namespace quorvel
