#include "platform/linux/WindowOwners.hpp"

#include <algorithm>
#include <unordered_set>

#include "platform/linux/ApplicationMatching.hpp"
#include "platform/linux/ProcessFacts.hpp"

namespace quorvel::native {
namespace {

/// Windows can be transient for one another in a circle.
constexpr int longestChain = 8;

}  // namespace

WindowOwners::WindowOwners(ClientWindows& clients, DesktopEntries& entries)
    : clients(clients),
      entries(entries),
      windowEvents(
          clients.onWindowChange([this](xcb_window_t window, ClientWindows::Change change) {
              if (change != ClientWindows::Change::identity) return;
              forget(window);
              changeHandlers.notify();
          })),
      listEvents(clients.onListChange([this] {
          // An identifier that is used again is another window.
          std::erase_if(paths,
                        [this](const auto& known) { return !this->clients.find(known.first); });
      })),
      entryEvents(entries.onChange([this] {
          paths.clear();
          changeHandlers.notify();
      })) {}

std::optional<std::string> WindowOwners::pathOf(xcb_window_t window) {
    return find(window, 0);
}

std::vector<xcb_window_t> WindowOwners::windowsOf(const std::optional<std::string>& path,
                                                  std::int32_t pid) {
    std::vector<xcb_window_t> result = clients.all();
    std::erase_if(result, [&](xcb_window_t window) {
        if (pathOf(window) != path) return true;
        const ClientWindow* client = clients.find(window);
        return client == nullptr || (!path && client->pid != pid);
    });
    return result;
}

std::optional<RunningApplication> WindowOwners::applicationOf(xcb_window_t window) {
    const ClientWindow* client = clients.find(window);
    if (client == nullptr) return std::nullopt;
    RunningApplication application{std::nullopt, client->pid};
    application.bundlePath = pathOf(window);
    const auto windows = windowsOf(application.bundlePath, application.processIdentifier);
    if (windows.empty()) return application;
    if (const ClientWindow* last = clients.find(windows.front())) {
        application.processIdentifier = last->pid;
    }
    return application;
}

std::vector<RunningApplication> WindowOwners::running() {
    std::vector<RunningApplication> result;
    for (const xcb_window_t window : clients.all()) {
        const auto path = pathOf(window);
        const ClientWindow* client = clients.find(window);
        if (client == nullptr) continue;
        const bool isKnown =
            std::any_of(result.begin(), result.end(), [&](const RunningApplication& other) {
                return other.bundlePath == path && (path || other.processIdentifier == client->pid);
            });
        if (!isKnown) result.push_back({path, client->pid});
    }
    return result;
}

Subscription WindowOwners::onChange(std::function<void()> handler) {
    return changeHandlers.add(std::move(handler));
}

/// The window, and those that were given its application.
void WindowOwners::forget(xcb_window_t window) {
    std::erase_if(paths, [&](const auto& known) {
        return known.first == window || isTransientFor(known.first, window);
    });
}

bool WindowOwners::isTransientFor(xcb_window_t window, xcb_window_t ancestor) {
    for (int depth = 0; depth < longestChain; ++depth) {
        const ClientWindow* client = clients.find(window);
        if (client == nullptr || client->transientFor == XCB_WINDOW_NONE) return false;
        window = client->transientFor;
        if (window == ancestor) return true;
    }
    return false;
}

std::optional<std::string> WindowOwners::find(xcb_window_t window, int depth) {
    if (const auto known = paths.find(window); known != paths.end()) return known->second;
    const auto path = match(window, depth);
    if (depth == 0) paths.insert_or_assign(window, path);
    return path;
}

std::optional<std::string> WindowOwners::match(xcb_window_t window, int depth) {
    const ClientWindow* client = clients.find(window);
    if (client == nullptr) return std::nullopt;
    WindowEvidence evidence;
    evidence.gtkApplicationId = client->gtkApplicationId;
    evidence.kdeDesktopFile = client->kdeDesktopFile;
    evidence.instanceName = client->instanceName;
    evidence.className = client->className;
    const std::int32_t pid = client->pid;
    const xcb_window_t parent = client->transientFor;
    if (parent != window && depth < longestChain && clients.isManaged(parent)) {
        evidence.parentApplication = find(parent, depth + 1);
        if (evidence.parentApplication) return evidence.parentApplication;
    }
    evidence.process = readProcessFacts(pid);
    // A program may be faster than the news of its installation.
    if (entryOf(evidence, entries) == nullptr) entries.invalidateIfFoldersChanged();
    return applicationPathOf(evidence, entries);
}

}  // namespace quorvel::native
