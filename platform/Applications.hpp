#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Subscription.hpp"

namespace quorvel {

/// An application that has at least one window, as it was when it was asked for.
struct RunningApplication {
    std::optional<std::string> bundlePath;  ///< its desktop entry, or its executable if it has none
    std::int32_t processIdentifier = 0;     ///< of its most recently active window

    bool operator==(const RunningApplication&) const = default;
};

/// The running applications and what can be done with one. An application that is gone by the time
/// of a call is a call without effect.
class Applications {
public:
    /// Absent on success; else why it failed, in words for the user.
    using OpenCompletion = std::function<void(std::optional<std::string> errorDescription)>;

    virtual ~Applications() = default;

    /// The paths that the settings name. Where one application could be known by two paths, it is
    /// known by the one in this list; entries outside the standard folders are recognised by it.
    virtual void prefer(std::vector<std::string> paths) = 0;

    virtual std::vector<RunningApplication> runningApplications() const = 0;
    virtual std::optional<RunningApplication> applicationWithProcessIdentifier(
        std::int32_t processIdentifier) const = 0;

    /// The owner of the active window; this program itself while one of its own windows is active.
    virtual std::optional<RunningApplication> frontmostApplication() const = 0;

    /// False for an application without windows.
    virtual bool isHidden(const RunningApplication& application) const = 0;
    virtual void hide(const RunningApplication& application) = 0;
    /// Shows the windows that `hide` took away; those that the user iconified stay so. Where none
    /// is left that `hide` took, a hidden application gets all its windows back. The keyboard stays
    /// where it is. An application that comes to the front by one of its windows gets back what
    /// `hide` took of the others.
    virtual void unhide(const RunningApplication& application) = 0;

    /// Shows the windows that an earlier run of this program hid and never showed again, because it
    /// was killed. The keyboard stays where it is. Gives how many they were.
    virtual int showLost() = 0;

    /// Unhides it and gives its most recently active window the keyboard.
    virtual void activate(const RunningApplication& application) = 0;

    /// Activates the application at `path`, launching it first when it is not running. The
    /// completion is called exactly once, from the run loop, never from within the call.
    virtual void open(const std::string& path, OpenCompletion completion) = 0;

    [[nodiscard]] virtual Subscription onActivated(
        std::function<void(const RunningApplication&)> handler) = 0;
    [[nodiscard]] virtual Subscription onDeactivated(
        std::function<void(const RunningApplication&)> handler) = 0;
};

}  // namespace quorvel
