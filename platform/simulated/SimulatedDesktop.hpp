#pragma once

#include "platform/Desktop.hpp"
#include "platform/simulated/SimulatedApplications.hpp"
#include "platform/simulated/SimulatedCatalog.hpp"
#include "platform/simulated/SimulatedDefaults.hpp"
#include "platform/simulated/SimulatedDiagnostics.hpp"
#include "platform/simulated/SimulatedFiles.hpp"
#include "platform/simulated/SimulatedHotKeys.hpp"
#include "platform/simulated/SimulatedLog.hpp"
#include "platform/simulated/SimulatedLoginItem.hpp"
#include "platform/simulated/SimulatedPointer.hpp"
#include "platform/simulated/SimulatedPollTimers.hpp"
#include "platform/simulated/SimulatedRemoteControl.hpp"
#include "platform/simulated/SimulatedRunLoop.hpp"
#include "platform/simulated/SimulatedScreens.hpp"
#include "platform/simulated/SimulatedStatusBar.hpp"
#include "platform/simulated/SimulatedTrust.hpp"
#include "platform/simulated/SimulatedWindowServer.hpp"
#include "platform/simulated/SimulatedWindows.hpp"

namespace quorvel {

/// A whole desktop in memory: one display of 1440 × 900, nothing installed, nothing running, an
/// empty log. The parts are there to be looked at and tampered with; `desktop()` is what the
/// program under test gets.
///
/// Time stands still until `advance`; what the desktop has to tell waits for the next turn of the
/// loop, as it does on a real one, so after playing the user call `settle`.
class SimulatedDesktop {
public:
    SimulatedRunLoop runLoop;
    SimulatedLog log;
    SimulatedDefaults defaults{log};
    SimulatedFiles files;
    SimulatedScreens screens{runLoop};
    SimulatedPointer pointer;
    SimulatedHotKeys hotKeys{runLoop};
    SimulatedCatalog catalog;
    SimulatedTrust trust;
    SimulatedLoginItem loginItem;
    SimulatedStatusBar statusBar;
    SimulatedRemoteControl remoteControl;
    SimulatedDiagnostics diagnostics;
    SimulatedWindowServer server;
    SimulatedApplications applications{server, runLoop};
    SimulatedWindows windows{server, applications, screens, trust, runLoop};
    SimulatedPollTimers pollTimers{runLoop, pointer, windows, screens};

    SimulatedDesktop() = default;
    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;

    Desktop desktop();

    void advance(RunLoop::Duration duration) { runLoop.advance(duration); }
    void settle() { runLoop.settle(); }

    /// Puts an application on the disk and into the catalog. An empty name takes that of the path.
    void install(const std::string& path, const std::string& name = "");
    void install(const std::string& path, const std::string& name,
                 SimulatedApplications::Launch launch);

    /// Installs it if it is not, opens a window of it and makes that the active one.
    AXWindow start(const std::string& path, const Rect& frameAX = {100, 100, 800, 600});

    /// As if the program had been killed: what it knew of windows is gone, its notes on them are
    /// not.
    void crash() {
        windows.crash();
        applications.crash();
        hotKeys.crash();
    }

    /// Absent when the window is gone.
    std::optional<Rect> frameAX(AXWindow window) const;
};

}  // namespace quorvel
