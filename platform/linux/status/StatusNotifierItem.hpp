#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/RunLoop.hpp"
#include "platform/StatusBar.hpp"
#include "platform/linux/status/DBusMenu.hpp"
#include "platform/linux/status/ExportedObject.hpp"
#include "platform/linux/status/IconImage.hpp"

namespace quorvel::native {

/// What the item shows, whoever carries it.
struct StatusItemContent {
    std::vector<IconImage> icons;  ///< the smallest first
    std::string title;             ///< in the place of a picture; empty where there is one
    std::string toolTip;
    std::string accessibilityLabel;
};

/// The item as panels that speak StatusNotifierItem show it (freedesktop.org). It is offered to
/// whatever watcher runs on the bus, and again to each that comes later.
class StatusNotifierItem {
public:
    struct Handlers {
        std::function<void(StatusItemEvent::Type)> clicked;
        std::function<Menu()> menu;
        /// `isHosted` or `isSettled` may have changed.
        std::function<void()> changed;
    };

    /// What panels may ask the item for. The content outlives it.
    static ExportedObject::Description description(
        const StatusItemContent& content, std::function<void(StatusItemEvent::Type)> clicked);

    /// Whether the answer of a watcher, of type (v), says that a panel shows such items.
    static bool saysHosted(GVariant* answer);

    /// All that is named here outlives the item.
    StatusNotifierItem(GDBusConnection* connection, RunLoop& runLoop,
                       const StatusItemContent& content, Handlers handlers);
    ~StatusNotifierItem();
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    /// A panel runs that shows such items, and it knows of this one.
    bool isHosted() const { return hosted; }
    /// Whether it is known by now that one runs, or that none does.
    bool isSettled() const { return settled; }

    /// Tells the panels to look at the content again.
    void contentChanged() const;
    /// The same for the menu.
    void menuChanged() { menu.update(); }

private:
    void watcherAppeared(const char* owner);
    void watcherVanished();
    void hostsChanged();
    void registerItem();
    void registered(bool accepted);
    void askForHosts();
    void setHosted(bool isHostedNow);

    GDBusConnection* connection;
    RunLoop& runLoop;
    Handlers handlers;
    std::string busName;
    ObjectRef<GCancellable> calls;
    ExportedObject object;
    DBusMenu menu;
    std::string watcher;  ///< its unique name on the bus; empty while none runs
    guint nameOwnership = 0;
    guint watcherWatch = 0;
    guint hostSignals = 0;
    std::string askedWatcher;   ///< to take it; empty while none is asked
    bool isRegistered = false;  ///< the watcher has taken it
    bool isAsking = false;
    bool asksAgain = false;  ///< something has happened since it was asked
    bool hosted = false;
    bool settled = false;
    Lifetime life;
};

}  // namespace quorvel::native
