#pragma once

#include <gio/gio.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"
#include "platform/linux/GlibTypes.hpp"

namespace quorvel::native {

/// A connection of our own to the user's session bus. When the bus goes away the program goes on
/// without it, and looks for it again, less and less often. Nothing blocks; no bus is ever started.
class SessionBus {
public:
    SessionBus(RunLoop& runLoop, Log& log);
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Where the session's bus is to be found; nothing where the session has none.
    static std::optional<std::string> address();

    void connect();

    /// Null while there is none.
    GDBusConnection* connection() const { return bus.get(); }

    /// Whether it is known by now that there is a bus, or that there is none.
    bool isSettled() const { return settled; }

    /// Turns the loop until it is; gives whether there is one.
    bool waitUntilSettled();

    /// The connection has come, has gone, or will not come for now.
    [[nodiscard]] Subscription onChange(std::function<void()> handler);

private:
    void connected(GDBusConnection* connection);
    void settle();
    void lost();
    void retry();

    RunLoop& runLoop;
    Log& log;
    ObjectRef<GDBusConnection> bus;
    ObjectRef<GCancellable> pending;
    gulong closedHandler = 0;
    bool settled = false;
    int attempts = 0;
    std::chrono::seconds patience;
    Subscribers<> handlers;
    Lifetime life;
};

}  // namespace quorvel::native
