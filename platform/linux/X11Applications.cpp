#include "platform/linux/X11Applications.hpp"

#include <algorithm>
#include <utility>

namespace quorvel::native {
namespace {

bool isSame(const RunningApplication& a, const RunningApplication& b) {
    return a.bundlePath == b.bundlePath &&
           (a.bundlePath || a.processIdentifier == b.processIdentifier);
}

}  // namespace

X11Applications::X11Applications(XConnection& x, RunLoop& runLoop, WindowManagerInfo& manager,
                                 WindowElements& elements, DesktopEntries& entries)
    : runLoop(runLoop),
      elements(elements),
      entries(entries),
      clients(x, manager),
      owners(clients, entries),
      frames(x),
      offscreen(x, manager, frames),
      hider(x, manager, clients, offscreen),
      launcher(x, runLoop),
      launches(runLoop,
               [this](const std::string& path) {
                   activate(RunningApplication{path, 0});
               }),
      entryMonitor(entries) {
    subscriptions.push_back(clients.onActiveChange([this] { follow(); }));
    subscriptions.push_back(clients.onListChange([this] { follow(); }));
    subscriptions.push_back(
        clients.onWindowChange([this](xcb_window_t window, ClientWindows::Change) {
            if (window == clients.active() || (reported && window == reported->window)) follow();
        }));
    subscriptions.push_back(owners.onChange([this] { namesAreStale = true; }));
    subscriptions.push_back(
        launcher.onExit([this](std::int32_t pid, int status) { launches.exited(pid, status); }));
    // Whoever is in front as we start has not just come there. Which application that is need not
    // be known before somebody asks.
    const xcb_window_t active = clients.active();
    if (const ClientWindow* client = clients.find(active);
        client != nullptr && client->kind != ClientWindow::Kind::furniture) {
        reported = Front{{std::nullopt, client->pid}, active};
        namesAreStale = true;
    }
}

void X11Applications::prefer(std::vector<std::string> paths) {
    entries.prefer(std::move(paths));
}

std::vector<RunningApplication> X11Applications::runningApplications() const {
    entryMonitor.start();
    return owners.running();
}

std::optional<RunningApplication> X11Applications::applicationWithProcessIdentifier(
    std::int32_t processIdentifier) const {
    if (processIdentifier <= 0) return std::nullopt;
    for (const RunningApplication& application : owners.running()) {
        if (application.processIdentifier == processIdentifier) return application;
    }
    for (const xcb_window_t window : clients.all()) {
        const ClientWindow* client = clients.find(window);
        if (client != nullptr && client->pid == processIdentifier) {
            return owners.applicationOf(window);
        }
    }
    return std::nullopt;
}

std::optional<RunningApplication> X11Applications::frontmostApplication() const {
    // A shortcut is answered as soon as it is read, perhaps before what came with it: it must not
    // hide what has just gone behind another.
    const xcb_window_t active = clients.activeNow();
    if (active != clients.active() && active != XCB_WINDOW_NONE) clients.refresh({active});
    if (const auto front = frontOf(active)) return front->application;
    renameFront();
    if (reported && isStillThere(*reported)) return reported->application;
    return std::nullopt;
}

bool X11Applications::isHidden(const RunningApplication& application) const {
    return areHidden(windowsOf(application));
}

void X11Applications::hide(const RunningApplication& application) {
    auto windows = windowsOf(application);
    // From the back to the front, so that the keyboard does not wander through its own windows.
    std::reverse(windows.begin(), windows.end());
    hider.hide(windows);
    followSoon();
}

void X11Applications::unhide(const RunningApplication& application) {
    auto shown = hider.toBeShown(windowsOf(application));
    if (shown.empty()) return;
    std::reverse(shown.begin(), shown.end());
    hider.show(shown);
    followSoon();
}

void X11Applications::activate(const RunningApplication& application) {
    const auto windows = windowsOf(application);
    if (windows.empty()) return;
    auto shown = hider.toBeShown(windows);
    const auto willBeInSight = [&](xcb_window_t window) {
        return !hider.isHidden(window) ||
               std::find(shown.begin(), shown.end(), window) != shown.end();
    };
    const auto main = std::find_if(windows.begin(), windows.end(), willBeInSight);
    if (main == windows.end()) return;
    const bool showsAny = !shown.empty();
    std::erase(shown, *main);
    std::reverse(shown.begin(), shown.end());
    bringForward(shown, *main);
    if (showsAny) followSoon();
}

void X11Applications::bringForward(const std::vector<xcb_window_t>& others, xcb_window_t main) {
    hider.showAndActivate(others, main);
    runLoop.after(patienceWithFocus, [this, alive = life.watch(), main, asked = ++activations] {
        if (alive.expired() || asked != activations) return;
        if (clients.active() == XCB_WINDOW_NONE && clients.isManaged(main)) clients.activate(main);
    });
}

void X11Applications::open(const std::string& path, OpenCompletion completion) {
    const DesktopEntry* entry = entries.at(path);
    const std::string known = entry == nullptr ? path : entry->path;
    const RunningApplication application{known, 0};
    if (!windowsOf(application).empty()) {
        activate(application);
        runLoop.async([completion = std::move(completion)] { completion(std::nullopt); });
        return;
    }
    if (launches.isStarting(known)) {
        runLoop.async([completion = std::move(completion)] { completion(std::nullopt); });
        return;
    }
    const auto front = frontmostApplication();
    launches.begin(known, front ? front->bundlePath : std::nullopt);
    launcher.launch(path, [this, alive = life.watch(), known, completion = std::move(completion)](
                              const ApplicationLauncher::Outcome& outcome) {
        if (!alive.expired()) {
            if (outcome.error) launches.failed(known);
            if (outcome.pid > 0) launches.started(known, outcome.pid);
        }
        completion(outcome.error);
    });
}

Subscription X11Applications::onActivated(std::function<void(const RunningApplication&)> handler) {
    return activatedHandlers.add(std::move(handler));
}

Subscription X11Applications::onDeactivated(
    std::function<void(const RunningApplication&)> handler) {
    return deactivatedHandlers.add(std::move(handler));
}

FocusedWindowReading X11Applications::focusedWindow(std::int32_t processIdentifier,
                                                    const std::string& bundlePath) {
    auto windows =
        bundlePath.empty()
            ? windowsOf(applicationWithProcessIdentifier(processIdentifier)
                            .value_or(RunningApplication{std::nullopt, processIdentifier}))
            : windowsOf({bundlePath, processIdentifier});
    std::erase_if(windows, [this](xcb_window_t window) { return hider.isHidden(window); });
    if (windows.empty()) return {};
    xcb_window_t found = windows.front();
    if (!clients.hasBeenActive(found)) found = clients.topmost(windows);
    return {0, AXWindow{elements.elementOf(mainWindowOf(found))}};
}

std::vector<xcb_window_t> X11Applications::windowsOf(const RunningApplication& application) const {
    return owners.windowsOf(application.bundlePath, application.processIdentifier);
}

bool X11Applications::areHidden(const std::vector<xcb_window_t>& windows) const {
    return !windows.empty() &&
           std::all_of(windows.begin(), windows.end(),
                       [this](xcb_window_t window) { return hider.isHidden(window); });
}

/// Nothing while it cannot be told from the active window: there is none, or it is no
/// application's.
std::optional<X11Applications::Front> X11Applications::frontOf(xcb_window_t active) const {
    const ClientWindow* client = clients.find(active);
    if (client == nullptr || client->kind == ClientWindow::Kind::furniture) return std::nullopt;
    if (hider.isHidden(active)) return std::nullopt;
    const auto application = owners.applicationOf(active);
    if (!application) return std::nullopt;
    return Front{*application, active};
}

/// What is hidden or closed is not in front, even while nothing else is.
bool X11Applications::isStillThere(const Front& front) const {
    const auto windows = windowsOf(front.application);
    return !windows.empty() && !areHidden(windows);
}

/// What is hidden off the screen may stay active, and then nobody tells of a change.
void X11Applications::followSoon() {
    runLoop.async([this, alive = life.watch()] {
        if (!alive.expired()) follow();
    });
}

void X11Applications::follow() {
    entryMonitor.start();
    if (!launches.empty()) {
        launches.windowsSeen([this](const std::string& path) {
            return !windowsOf({path, 0}).empty();
        });
    }
    renameFront();
    if (auto front = frontOf(clients.active())) {
        ++frontChanges;
        report(std::move(front));
        return;
    }
    if (!reported || keepsFront() || waitingSince == frontChanges) return;
    waitingSince = frontChanges;
    runLoop.after(deactivationDelay, [this, alive = life.watch(), since = frontChanges] {
        if (alive.expired()) return;
        if (waitingSince == since) waitingSince.reset();
        if (since == frontChanges && !frontOf(clients.active()) && !keepsFront())
            report(std::nullopt);
    });
}

/// Docks and the desktop may have the keyboard for a while without anybody leaving the front.
bool X11Applications::keepsFront() const {
    const ClientWindow* client = clients.find(clients.active());
    if (client == nullptr || client->kind != ClientWindow::Kind::furniture) return false;
    renameFront();
    return reported && isStillThere(*reported);
}

void X11Applications::report(std::optional<Front> front) {
    const auto before = std::exchange(reported, front);
    if (before && front && isSame(before->application, front->application)) return;
    if (front) {
        launches.frontChanged(front->application.bundlePath);
        unhide(front->application);
    }
    if (before) deactivatedHandlers.notify(before->application);
    if (front) activatedHandlers.notify(front->application);
}

/// The same application, by another path than before: nobody has come or gone.
void X11Applications::renameFront() const {
    if (!std::exchange(namesAreStale, false) || !reported) return;
    if (const auto application = owners.applicationOf(reported->window)) {
        reported->application = *application;
    }
}

/// Where the keyboard goes when the dialog is done.
xcb_window_t X11Applications::mainWindowOf(xcb_window_t dialog) const {
    xcb_window_t window = dialog;
    for (int depth = 0; depth < 8; ++depth) {
        const ClientWindow* client = clients.find(window);
        if (client == nullptr || !client->isModal) break;
        const xcb_window_t parent = client->transientFor;
        if (parent == XCB_WINDOW_NONE || !clients.isManaged(parent) || hider.isHidden(parent)) {
            break;
        }
        window = parent;
    }
    return window;
}

}  // namespace quorvel::native
