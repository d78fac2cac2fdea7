#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Applications.hpp"
#include "platform/RunLoop.hpp"
#include "platform/linux/ApplicationLauncher.hpp"
#include "platform/linux/ClientWindows.hpp"
#include "platform/linux/DesktopEntries.hpp"
#include "platform/linux/DesktopEntryMonitor.hpp"
#include "platform/linux/FocusedWindowSource.hpp"
#include "platform/linux/FrameReader.hpp"
#include "platform/linux/OffscreenHider.hpp"
#include "platform/linux/PendingLaunches.hpp"
#include "platform/linux/WindowElements.hpp"
#include "platform/linux/WindowHider.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/WindowOwners.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Applications by their windows, as the window manager lists them. What it hid off the screen
/// comes back when it ends. Everything that it is given outlives it.
class X11Applications final : public Applications, public FocusedWindowSource {
public:
    /// For how long no window may be active before that counts: window managers pass through this
    /// state on the way from one window to the next.
    static constexpr RunLoop::Duration deactivationDelay = std::chrono::milliseconds(100);
    /// After this long no window manager is still on its way to giving a window the keyboard.
    static constexpr RunLoop::Duration patienceWithFocus = std::chrono::milliseconds(250);

    X11Applications(XConnection& x, RunLoop& runLoop, WindowManagerInfo& manager,
                    WindowElements& elements, DesktopEntries& entries);

    void prefer(std::vector<std::string> paths) override;
    std::vector<RunningApplication> runningApplications() const override;
    std::optional<RunningApplication> applicationWithProcessIdentifier(
        std::int32_t processIdentifier) const override;
    std::optional<RunningApplication> frontmostApplication() const override;
    bool isHidden(const RunningApplication& application) const override;
    void hide(const RunningApplication& application) override;
    void unhide(const RunningApplication& application) override;
    int showLost() override { return hider.showLost(); }
    void activate(const RunningApplication& application) override;
    void open(const std::string& path, OpenCompletion completion) override;
    [[nodiscard]] Subscription onActivated(
        std::function<void(const RunningApplication&)> handler) override;
    [[nodiscard]] Subscription onDeactivated(
        std::function<void(const RunningApplication&)> handler) override;

    FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                       const std::string& bundlePath) override;

private:
    struct Front {
        RunningApplication application;
        xcb_window_t window = XCB_WINDOW_NONE;  ///< by which it came to the front
    };

    std::vector<xcb_window_t> windowsOf(const RunningApplication& application) const;
    /// A window manager that switches workspaces may lose the keyboard on the way; it is asked
    /// once more where nothing has got it in the end.
    void bringForward(const std::vector<xcb_window_t>& others, xcb_window_t main);
    bool areHidden(const std::vector<xcb_window_t>& windows) const;
    /// Nothing where that window puts no application in front.
    std::optional<Front> frontOf(xcb_window_t active) const;
    bool isStillThere(const Front& front) const;
    bool keepsFront() const;
    void followSoon();
    void follow();
    void report(std::optional<Front> front);
    void renameFront() const;
    xcb_window_t mainWindowOf(xcb_window_t dialog) const;

    RunLoop& runLoop;
    WindowElements& elements;
    DesktopEntries& entries;
    // The questions are constant, but answering them may mean to ask the server.
    mutable ClientWindows clients;
    mutable WindowOwners owners;
    FrameReader frames;
    FrameOverrideHider offscreen;
    mutable WindowHider hider;
    ApplicationLauncher launcher;
    PendingLaunches launches;
    mutable DesktopEntryMonitor entryMonitor;
    mutable std::optional<Front> reported;
    mutable bool namesAreStale = false;
    std::uint64_t activations = 0;
    std::uint64_t frontChanges = 0;
    std::optional<std::uint64_t> waitingSince;  ///< the change after which nothing was in front
    Subscribers<const RunningApplication&> activatedHandlers;
    Subscribers<const RunningApplication&> deactivatedHandlers;
    std::vector<Subscription> subscriptions;
    Lifetime life;
};

}  // namespace quorvel::native
