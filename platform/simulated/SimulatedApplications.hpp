#pragma once

#include <map>
#include <set>

#include "platform/Applications.hpp"
#include "platform/RunLoop.hpp"
#include "platform/simulated/SimulatedWindowServer.hpp"

namespace quorvel {

/// The applications behind the windows, and those that could be launched.
class SimulatedApplications final : public Applications {
public:
    /// For how long no window may be active before that counts: window managers pass through this
    /// state on the way from one window to the next.
    static constexpr RunLoop::Duration deactivationDelay = std::chrono::milliseconds(100);

    SimulatedApplications(SimulatedWindowServer& server, RunLoop& runLoop);

    // What is installed ------------------------------------------------------------------------

    struct Launch {
        Rect frameAX{100, 100, 800, 600};  ///< of the window that it opens
        RunLoop::Duration delay{};         ///< until that window is there
        bool opensWindow = true;
        std::optional<std::string> error{};  ///< fails for this reason
    };
    void install(const std::string& path) { install(path, Launch()); }
    void install(const std::string& path, Launch launch) { launches[path] = std::move(launch); }
    void uninstall(const std::string& path) { launches.erase(path); }
    /// The application at `path` could as well be known by `alias`.
    void addAlias(const std::string& path, const std::string& alias) { aliases[alias] = path; }

    // What can be seen -------------------------------------------------------------------------

    /// How often each path was launched.
    std::map<std::string, int> launchCounts;
    const std::vector<std::string>& preferredPaths() const { return preferred; }
    std::vector<SimulatedWindow*> windowsOf(const RunningApplication& application) const;

    // Applications -----------------------------------------------------------------------------

    void prefer(std::vector<std::string> paths) override { preferred = std::move(paths); }
    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> applicationWithProcessIdentifier(
        std::int32_t processIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override;
    bool isHidden(const RunningApplication& application) const override;
    void hide(const RunningApplication& application) override;
    void unhide(const RunningApplication& application) override;
    int showLost() override;

    /// The program is gone, and with it what it knew; the windows are as they are.
    void crash() { iconifiedByHide.clear(); }
    void activate(const RunningApplication& application) override;
    void open(const std::string& path, OpenCompletion completion) override;
    [[nodiscard]] Subscription onActivated(
        std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] Subscription onDeactivated(
        std::function<void(const RunningApplication&)> handler) override;

private:
    std::string installedPath(const std::string& path) const;
    std::string shownPath(const std::string& path) const;
    RunningApplication describe(const SimulatedWindow& window) const;
    void followActiveWindow();
    void report(const std::optional<RunningApplication>& front);

    SimulatedWindowServer& server;
    RunLoop& runLoop;
    std::map<std::string, Launch> launches;
    std::map<std::string, std::string> aliases;
    /// Launched, and their window is not there yet: a second launch would be one too many.
    std::set<std::string> starting;
    std::vector<std::string> preferred;
    /// What `hide` iconified, to be shown again, and which time that was for the window: one that
    /// has been shown since and is iconic again is somebody else's doing.
    std::map<WindowElement, int> iconifiedByHide;
    std::optional<RunningApplication> reportedFront;
    std::uint64_t activeChanges = 0;
    Subscribers<const RunningApplication&> activatedHandlers;
    Subscribers<const RunningApplication&> deactivatedHandlers;
};

}  // namespace quorvel
