#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Settings.hpp"
#include "main/shell/Alerts.hpp"
#include "main/shell/AppOpener.hpp"
#include "main/shell/Application.hpp"
#include "main/shell/BindingHotKeys.hpp"
#include "main/shell/Chronicle.hpp"
#include "main/shell/Control.hpp"
#include "main/shell/HotZoneAssignment.hpp"
#include "main/shell/Interface.hpp"
#include "main/shell/SettingsHost.hpp"
#include "main/tucking/EdgeRevealWatcher.hpp"
#include "main/tucking/TuckController.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "platform/Desktop.hpp"

namespace quorvel {

/// The one coordinator of the program: launches it, applies the settings, turns shortcuts into
/// deeds, follows the active application and the displays, and puts all windows back at the end.
/// Lives as long as the process.
class LauncherController final : public ApplicationDelegate, public SettingsHost {
public:
    struct TuckConfig {
        std::optional<TuckEdge> edge;  ///< the preferred one across the displays
        bool isAuto = false;           ///< tucked whenever it is not the active application

        bool operator==(const TuckConfig&) const = default;
    };

    /// All that the desktop names, and the application, outlive the controller.
    LauncherController(const Desktop& outer, Application& application, InterfaceProvider interface);

    void applicationDidFinishLaunching() override;
    void applicationWillTerminate() override;
    bool applicationSupportsSecureRestorableState() const override { return true; }

    /// Once in the life of an installation: gives what earlier versions stored for all displays to
    /// those attached now.
    void flattenPlacementsIfNeeded();

    void reloadFromSettings() override;

    /// Shows the settings window; a line in the log where the interface is missing.
    void openSettings();

    /// Says why windows cannot be moved, where that is so.
    void requestAccessibility();

    /// Ends the program in the orderly way, whatever waits for an answer.
    void quitLauncher();

    /// What other programs may ask for.
    RemoteAnswer answer(const RemoteRequest& request) { return control.answer(request); }

    /// The deed behind every trigger of a bound application.
    void activateOrTuck(const std::string& appPath, const std::string& edgeHintRaw);

    /// The text of the edge that stands for an application across all displays: a side or corner
    /// rather than the bottom; "none" where no placement has an edge.
    std::string preferredPlacedEdgeRaw(const std::string& appPath) const;

    /// Nothing for an application that has no active binding.
    std::optional<TuckConfig> tuckConfig(const std::string& appPath) const;

    /// Which windows are tucked, and how.
    const TuckController& tucking() const { return tuckController; }

    /// Validates the bindings, registers their shortcuts, then does `applyAllHotZones`.
    void applyHotZone(int dwellMs) override;

    void setAnimationStyle(TuckAnimationStyle style) override {
        tuckController.animationStyle = style;
    }
    bool isTucked(const std::string& appPath, std::string_view edgeRaw) const override {
        return tuckController.isTucked(appPath, edgeRaw);
    }
    int runAlert(const Alert& alert) override { return alerts.runModal(alert); }
    void toggleTuck(const std::string& appPath, TuckEdge edge) override {
        tuckController.toggleTuck(appPath, edge);
    }

    /// What depends on the attached displays. Registers no shortcut.
    void applyAllHotZones(int dwellMs);

private:
    void putBackLostWindows();
    bool createStatusItem();
    void statusItemClicked(const StatusItemEvent& event);
    Menu statusMenu();
    void upgradeSettings();
    void letGoOf(const std::string& appPath, const std::vector<RunningApplication>& running);
    void observeDesktop();
    void applicationDeactivated(const std::string& appPath, std::int32_t pid);
    void applicationActivated(const std::string& appPath);
    void handleHotKey(std::uint32_t id);
    std::string edgeHintUnderPointer(const std::string& appPath) const;
    std::optional<std::string> placedEdgeRaw(const std::string& appPath,
                                             const Rect& displayCocoa) const;

    Chronicle chronicle;
    Desktop desktop;  ///< its log is the chronicle
    Application& application;
    InterfaceProvider interface;

    std::unique_ptr<StatusItem> statusItem;  ///< from the launch on
    Settings settings;
    TuckController tuckController;
    std::vector<AppBinding> activeBindings;  ///< in the stored order; shortcut ids count along it
    Alerts alerts;
    AppOpener opener;
    BindingHotKeys bindingHotKeys;
    HotZoneAssignment hotZoneAssignment;
    EdgeRevealWatcher edgeRevealWatcher;
    Control control;
    Subscription requests;
    std::vector<Subscription> workspaceObservers;
    Subscription screenObserver;
    Subscription sigTermSource;
    Lifetime life;
};

}  // namespace quorvel
