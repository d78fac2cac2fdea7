#pragma once

#include <functional>
#include <string>

#include "main/shell/Alerts.hpp"
#include "main/tucking/TuckController.hpp"
#include "platform/ApplicationCatalog.hpp"
#include "platform/Applications.hpp"
#include "platform/Files.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// What every trigger of a bound application ends in: it comes to the front, or, being there
/// already, is put away.
class AppOpener {
public:
    struct Platform {
        Applications& applications;
        const ApplicationCatalog& catalog;
        const Files& files;
        RunLoop& runLoop;
        Log& log;
    };

    AppOpener(Platform platform, TuckController& tuckController, Alerts& alerts,
              std::function<void()> openSettings);

    /// `edgeHintRaw` is the text of the tuck edge that applies, or "none".
    void activateOrTuck(const std::string& appPath, const std::string& edgeHintRaw);

    /// Launches the application at this path, or activates it when it runs. The user is told when
    /// there is none or it will not open.
    void openApp(const std::string& path);

    void presentAppMissingAlert(const std::string& path);

private:
    void presentOpenFailure(const std::string& path, const std::string& errorDescription);

    Platform platform;
    TuckController& tuckController;
    Alerts& alerts;
    std::function<void()> openSettings;
    Lifetime life;
};

}  // namespace quorvel
