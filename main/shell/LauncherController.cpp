#include "main/shell/LauncherController.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "main/settings/Displays.hpp"
#include "main/settings/Placement.hpp"
#include "main/settings/TextRecords.hpp"
#include "main/shell/LoginItem.hpp"
#include "main/shell/ProcessValues.hpp"
#include "main/shell/SettingsUpgrade.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "main/tucking/AXPermission.hpp"
#include "main/tucking/AXWindows.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

Desktop withLog(Desktop desktop, Log& log) {
    return {desktop.runLoop,       log,
            desktop.defaults,      desktop.files,
            desktop.screens,       desktop.pointer,
            desktop.pollTimers,    desktop.hotKeys,
            desktop.applications,  desktop.catalog,
            desktop.windows,       desktop.trust,
            desktop.loginItem,     desktop.statusBar,
            desktop.remoteControl, desktop.diagnostics};
}

}  // namespace

LauncherController::LauncherController(const Desktop& outer, Application& application,
                                       InterfaceProvider interface)
    : chronicle(outer.log, outer.runLoop),
      desktop(withLog(outer, chronicle)),
      application(application),
      interface(interface),
      settings(desktop.defaults),
      tuckController(AXWindows(desktop.windows, desktop.log), desktop.applications, desktop.screens,
                     desktop.runLoop, desktop.trust, desktop.log),
      alerts(std::move(interface), desktop.runLoop, desktop.log),
      opener({desktop.applications, desktop.catalog, desktop.files, desktop.runLoop, desktop.log},
             tuckController, alerts, [this] { openSettings(); }),
      bindingHotKeys(desktop.hotKeys, desktop.runLoop, desktop.log,
                     [this](std::uint32_t id) { handleHotKey(id); }),
      hotZoneAssignment(
          settings, desktop.runLoop,
          {desktop.pollTimers, desktop.pointer, desktop.screens, desktop.runLoop, desktop.log},
          [this](const std::string& appPath, const std::string& edgeHintRaw) {
              chronicle.begin("the hot corner of " + desktop.catalog.nameOf(appPath));
              activateOrTuck(appPath, edgeHintRaw);
          }),
      edgeRevealWatcher(tuckController,
                        {desktop.pollTimers, desktop.pointer, desktop.runLoop, desktop.log}),
      control(
          desktop, tuckController, chronicle,
          {[this](const std::string& appPath) {
               chronicle.begin("quorvelctl toggle " + desktop.catalog.nameOf(appPath));
               activateOrTuck(appPath, edgeHintUnderPointer(appPath));
           },
           [this] { reloadFromSettings(); }, [this] { openSettings(); },
           [this](const std::string& appPath) { return bindingHotKeys.isRegistered(appPath); }}) {}

void LauncherController::applicationDidFinishLaunching() {
    upgradeSettings();
    LoginItem::registerOnFirstLaunch(settings, desktop.loginItem, desktop.files, desktop.log);
    if (!createStatusItem()) {
        desktop.log.line("Quorvel: the system refused to create a status item button.");
        application.exit(EXIT_FAILURE);
        return;
    }
    putBackLostWindows();
    reloadFromSettings();
    edgeRevealWatcher.start();
    observeDesktop();

    requests = desktop.remoteControl.serve(
        [this](const RemoteRequest& request) { return answer(request); });
    sigTermSource = desktop.runLoop.onTerminationSignal([this, alive = life.watch()] {
        if (!alive.expired()) quitLauncher();
    });

    desktop.log.line(formatted("Quorvel: ready — %d app(s) bound", activeBindings.size()));
    desktop.log.line(formatted("Quorvel: accessibility %@",
                               desktop.trust.isTrusted() ? "granted" : "not granted"));

    if (settings.appBindings().empty()) {
        desktop.log.line("Quorvel: no apps bound; opening Settings");
        openSettings();
    }
}

/// Before anything of this run can move or hide a window.
void LauncherController::putBackLostWindows() {
    const int count = desktop.windows.putBackLost() + desktop.applications.showLost();
    if (count == 0) return;
    desktop.log.line(formatted("Quorvel: put back %d window(s) that an earlier run left", count));
}

bool LauncherController::createStatusItem() {
    statusItem = desktop.statusBar.makeStatusItem();
    if (!statusItem) return false;
    if (!statusItem->setApplicationIcon(menuBarIconSize)) statusItem->setTitle("◍");
    statusItem->setToolTip("Quorvel");
    statusItem->setAccessibilityLabel("Quorvel");
    statusItem->setAction([this](const StatusItemEvent& event) { statusItemClicked(event); });
    statusItem->setMenu([this] { return statusMenu(); });
    return true;
}

void LauncherController::statusItemClicked(const StatusItemEvent& event) {
    if (event.type == StatusItemEvent::Type::rightMouseUp || event.control) {
        statusItem->popUpMenu(statusMenu());
    } else {
        openSettings();
    }
}

Menu LauncherController::statusMenu() {
    // What is chosen while an alert is up waits for its answer, except the way out.
    const auto later = [this](void (LauncherController::*action)()) {
        return [this, action] {
            desktop.runLoop.async([this, action, alive = life.watch()] {
                if (!alive.expired()) (this->*action)();
            });
        };
    };
    Menu menu{{"Settings…", later(&LauncherController::openSettings), ","}};
    if (!desktop.trust.isTrusted()) {
        menu.push_back({"Enable Tuck (needs Accessibility)…",
                        later(&LauncherController::requestAccessibility)});
    }
    menu.push_back(MenuItem::separator());
    menu.push_back({"Quit Quorvel", [this] { quitLauncher(); }, "q"});
    return menu;
}

void LauncherController::requestAccessibility() {
    AXPermission::promptAndOpenSettings(desktop.trust);
}

void LauncherController::upgradeSettings() {
    if (SettingsUpgrade::migrate(desktop.defaults, desktop.log)) {
        flattenPlacementsIfNeeded();
    } else {
        // Anything of our own in the store would keep the import out at the next launch.
        hotZoneAssignment.remembersDisplays = false;
    }
}

void LauncherController::flattenPlacementsIfNeeded() {
    SettingsUpgrade::flatten(settings, desktop.screens, desktop.files, desktop.log);
}

/// Nothing is done while others are still being told: each deed waits for the next turn.
void LauncherController::observeDesktop() {
    RunLoop& runLoop = desktop.runLoop;
    const auto alive = life.watch();
    workspaceObservers.push_back(desktop.applications.onDeactivated(
        [this, alive, &runLoop](const RunningApplication& deactivated) {
            if (!deactivated.bundlePath) return;
            runLoop.async([this, alive, deactivated] {
                if (alive.expired()) return;
                applicationDeactivated(*deactivated.bundlePath, deactivated.processIdentifier);
            });
        }));
    workspaceObservers.push_back(desktop.applications.onActivated(
        [this, alive, &runLoop](const RunningApplication& activated) {
            if (!activated.bundlePath) return;
            runLoop.async([this, alive, activated] {
                if (alive.expired()) return;
                // A shortcut may have hidden it since: then that is the news to go by.
                if (desktop.applications.isHidden(activated)) return;
                applicationActivated(*activated.bundlePath);
            });
        }));
    screenObserver = desktop.screens.onChange([this, alive, &runLoop] {
        runLoop.async([this, alive] {
            if (!alive.expired()) applyAllHotZones(settings.hotZoneDwellMs());
        });
    });
}

void LauncherController::applicationDeactivated(const std::string& appPath, std::int32_t pid) {
    tuckController.hideRevealed(appPath);
    const auto config = tuckConfig(appPath);
    if (config && config->isAuto && config->edge) {
        chronicle.begin("Auto, as " + desktop.catalog.nameOf(appPath) + " is no longer in front");
        tuckController.tuckFocused(appPath, pid, *config->edge);
    }
}

void LauncherController::applicationActivated(const std::string& appPath) {
    const auto config = tuckConfig(appPath);
    if (!config || !config->isAuto) return;
    // The user works in a revealed window; it goes back by itself when they leave it.
    if (tuckController.hasRevealedWindow(appPath)) return;
    tuckController.untuckAll(appPath);
}

void LauncherController::applicationWillTerminate() {
    tuckController.untuckAll();
}

void LauncherController::quitLauncher() {
    // The alert's own loop must come to an end before anything that is queued can run.
    alerts.endAll();
    desktop.runLoop.async([this, alive = life.watch()] {
        if (!alive.expired()) application.terminate();
    });
}

void LauncherController::reloadFromSettings() {
    const std::vector<AppBinding> before = activeBindings;
    // By the paths that they are bound by; afterwards they may be called otherwise.
    std::vector<RunningApplication> running;
    if (!before.empty()) running = desktop.applications.runningApplications();
    applyHotZone(settings.hotZoneDwellMs());
    tuckController.animationStyle =
        parseTuckAnimationStyle(settings.tuckAnimation().value_or("slide"))
            .value_or(TuckAnimationStyle::slide);
    tuckController.edgeForDisplay = [this, alive = life.watch()](
                                        const std::string& appPath,
                                        const Rect& displayCocoa) -> std::optional<std::string> {
        if (alive.expired()) return std::nullopt;
        return placedEdgeRaw(appPath, displayCocoa);
    };
    for (const AppBinding& binding : before) {
        const bool isStillThere =
            std::any_of(activeBindings.begin(), activeBindings.end(),
                        [&](const AppBinding& now) { return now.appPath == binding.appPath; });
        if (!isStillThere) letGoOf(binding.appPath, running);
    }
}

/// Nothing would bring its windows back any more.
void LauncherController::letGoOf(const std::string& appPath,
                                 const std::vector<RunningApplication>& running) {
    for (const auto& tucked : tuckController.tuckedWindows()) {
        if (tucked.appPath == appPath) tuckController.untuck(tucked.window, std::nullopt, false);
    }
    for (const RunningApplication& each : running) {
        if (each.bundlePath != appPath) continue;
        const auto now =
            desktop.applications.applicationWithProcessIdentifier(each.processIdentifier);
        if (now && desktop.applications.isHidden(*now)) desktop.applications.unhide(*now);
    }
}

void LauncherController::applyHotZone(int dwellMs) {
    const std::vector<AppBinding> stored = settings.appBindings();
    std::vector<std::string> paths;
    for (const AppBinding& binding : stored) paths.push_back(binding.appPath);
    desktop.applications.prefer(std::move(paths));

    AppBinding::Validation validation = AppBinding::validated(stored);
    for (const std::string& reason : validation.dropped) {
        desktop.log.line(formatted("Quorvel: binding dropped — %@", reason));
    }
    activeBindings = std::move(validation.kept);
    bindingHotKeys.apply(activeBindings);
    applyAllHotZones(dwellMs);
}

void LauncherController::applyAllHotZones(int dwellMs) {
    hotZoneAssignment.apply(activeBindings, dwellMs);
}

void LauncherController::openSettings() {
    if (Interface* const shown = interface()) {
        shown->showSettings(*this);
    } else {
        desktop.log.line("Quorvel: settings not shown — the interface is missing");
    }
}

void LauncherController::activateOrTuck(const std::string& appPath,
                                        const std::string& edgeHintRaw) {
    opener.activateOrTuck(appPath, edgeHintRaw);
}

void LauncherController::handleHotKey(std::uint32_t id) {
    const auto index = BindingHotKeys::indexOf(id, activeBindings.size());
    if (!index) {
        desktop.log.line(formatted("Quorvel: hotkey fired with stale id %u — ignored", id));
        return;
    }
    // A copy: an alert on the way may be followed by a reload.
    const std::string appPath = activeBindings[*index].appPath;
    const auto spec = HotKeySpec::parse(activeBindings[*index].hotKey);
    chronicle.begin("the shortcut " + (spec ? spec->display() : "") + " of " +
                    desktop.catalog.nameOf(appPath));
    activateOrTuck(appPath, edgeHintUnderPointer(appPath));
}

std::string LauncherController::edgeHintUnderPointer(const std::string& appPath) const {
    const std::vector<DisplayInfo> attached = Displays::attached(desktop.screens);
    if (!attached.empty()) {
        const Point pointerCocoa = desktop.pointer.read().locationCocoa;
        auto display = std::find_if(attached.begin(), attached.end(), [&](const DisplayInfo& info) {
            return cursorIsOn(info.frameCocoa, pointerCocoa);
        });
        if (display == attached.end()) display = attached.begin();
        const auto placement = Placement::matching(appPath, *display, settings.placements());
        if (placement && TuckEdge::parse(placement->tuckEdge)) return placement->tuckEdge;
    }
    return preferredPlacedEdgeRaw(appPath);
}

std::string LauncherController::preferredPlacedEdgeRaw(const std::string& appPath) const {
    std::string preferred = "none";
    for (const Placement& placement : settings.placements()) {
        if (placement.appPath != appPath) continue;
        const auto edge = TuckEdge::parse(placement.tuckEdge);
        if (!edge) continue;
        preferred = edge->rawValue();
        if (*edge != TuckEdge::bottom) break;
    }
    return preferred;
}

std::optional<std::string> LauncherController::placedEdgeRaw(const std::string& appPath,
                                                             const Rect& displayCocoa) const {
    for (const DisplayInfo& display : Displays::attached(desktop.screens)) {
        if (display.frameCocoa != displayCocoa) continue;
        const auto placement = Placement::matching(appPath, display, settings.placements());
        if (!placement) return std::nullopt;
        return placement->tuckEdge;
    }
    return std::nullopt;
}

std::optional<LauncherController::TuckConfig> LauncherController::tuckConfig(
    const std::string& appPath) const {
    const auto binding =
        std::find_if(activeBindings.begin(), activeBindings.end(),
                     [&](const AppBinding& candidate) { return candidate.appPath == appPath; });
    if (binding == activeBindings.end()) return std::nullopt;
    return TuckConfig{TuckEdge::parse(preferredPlacedEdgeRaw(appPath)), saysYes(binding->autoTuck)};
}

}  // namespace quorvel
