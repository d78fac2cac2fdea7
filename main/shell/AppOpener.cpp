#include "main/shell/AppOpener.hpp"

#include <optional>
#include <utility>

#include "main/tucking/TuckEdge.hpp"
#include "platform/Text.hpp"

namespace quorvel {

AppOpener::AppOpener(Platform platform, TuckController& tuckController, Alerts& alerts,
                     std::function<void()> openSettings)
    : platform(platform),
      tuckController(tuckController),
      alerts(alerts),
      openSettings(std::move(openSettings)) {}

void AppOpener::activateOrTuck(const std::string& appPath, const std::string& edgeHintRaw) {
    const auto frontmost = platform.applications.frontmostApplication();
    if (!frontmost || frontmost->bundlePath != appPath) {
        const std::string front =
            frontmost ? platform.catalog.nameOf(frontmost->bundlePath.value_or("another program"))
                      : "nothing";
        platform.log.note("It is not in front (" + front + " is): started, or brought forward.");
        openApp(appPath);
        return;
    }
    if (const auto edge = TuckEdge::parse(edgeHintRaw)) {
        platform.log.note("It is in front, and has the " + std::string(edge->rawValue()) +
                          " edge: to the edge, or back.");
        tuckController.toggleTuck(appPath, *edge);
    } else if (tuckController.hasTuckedWindow(appPath)) {
        // Its edge was taken away meanwhile: without this the window could not be reached again.
        platform.log.note("It is in front, and tucked at an edge that it no longer has: back.");
        tuckController.untuckAll(appPath);
    } else {
        platform.log.note("It is in front, and has no edge: hidden.");
        platform.applications.hide(*frontmost);
    }
}

void AppOpener::openApp(const std::string& path) {
    if (!platform.files.exists(path)) {
        presentAppMissingAlert(path);
        return;
    }
    platform.applications.open(path, [this, alive = life.watch(),
                                      path](std::optional<std::string> errorDescription) {
        if (!errorDescription || alive.expired()) return;
        platform.log.line(formatted("Quorvel: failed to open %@ — %@", path, *errorDescription));
        platform.runLoop.async([this, alive, path, errorDescription] {
            if (!alive.expired()) presentOpenFailure(path, *errorDescription);
        });
    });
}

void AppOpener::presentOpenFailure(const std::string& path, const std::string& errorDescription) {
    alerts.runModal({"Could not open " + platform.catalog.nameOf(path), errorDescription, {"OK"}});
}

void AppOpener::presentAppMissingAlert(const std::string& path) {
    const int response = alerts.runModal(
        {platform.catalog.nameOf(path) + " not found",
         "Nothing is installed at:\n" + path + "\n\nChoose a different application in Settings.",
         {"Open Settings…", "Cancel"}});
    if (response == alertFirstButtonReturn) openSettings();
}

}  // namespace quorvel
