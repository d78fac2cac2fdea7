#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/Applications.hpp"
#include "platform/linux/ClientWindows.hpp"
#include "platform/linux/DesktopEntries.hpp"

namespace quorvel::native {

/// Which application each window belongs to. Found out once for each window, and again when what
/// tells it has changed.
class WindowOwners {
public:
    WindowOwners(ClientWindows& clients, DesktopEntries& entries);

    /// Nothing when neither an entry nor a program is known, or the window is gone.
    std::optional<std::string> pathOf(xcb_window_t window);

    /// The managed windows of an application, the most recently active first. Without a path those
    /// of the process that have none either.
    std::vector<xcb_window_t> windowsOf(const std::optional<std::string>& path, std::int32_t pid);

    /// The application of a window, as it is now. Nothing when the window is gone.
    std::optional<RunningApplication> applicationOf(xcb_window_t window);

    /// All of them, the most recently active first.
    std::vector<RunningApplication> running();

    /// A window belongs to another application now.
    [[nodiscard]] Subscription onChange(std::function<void()> handler);

private:
    void forget(xcb_window_t window);
    bool isTransientFor(xcb_window_t window, xcb_window_t ancestor);
    std::optional<std::string> find(xcb_window_t window, int depth);
    std::optional<std::string> match(xcb_window_t window, int depth);

    ClientWindows& clients;
    DesktopEntries& entries;
    std::unordered_map<xcb_window_t, std::optional<std::string>> paths;
    Subscribers<> changeHandlers;
    Subscription windowEvents;
    Subscription listEvents;
    Subscription entryEvents;
};

}  // namespace quorvel::native
