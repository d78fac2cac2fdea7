#include "platform/linux/status/SessionBus.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

namespace quorvel::native {
namespace {

using std::chrono::seconds;

constexpr seconds firstPatience{1};
constexpr seconds longestPatience{30};
/// A bus that accepts a connection and then says nothing counts as none.
constexpr seconds answerWithin{3};

}  // namespace

SessionBus::SessionBus(RunLoop& runLoop, Log& log)
    : runLoop(runLoop), log(log), patience(firstPatience) {}

SessionBus::~SessionBus() {
    if (pending) g_cancellable_cancel(pending.get());
    if (!bus) return;
    g_signal_handler_disconnect(bus.get(), closedHandler);
    // The worker thread sends what is still to be sent before it lets go.
    g_dbus_connection_close(bus.get(), nullptr, nullptr, nullptr);
}

/// As the reference library does it, but for its last resort, which starts a bus.
std::optional<std::string> SessionBus::address() {
    const char* const told = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (told != nullptr && *told != '\0') {
        // That would start one.
        if (std::string_view(told).starts_with("autolaunch:")) return std::nullopt;
        return told;
    }
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    if (folder == nullptr || *folder != '/') return std::nullopt;
    const std::string socket = std::string(folder) + "/bus";
    struct stat info {};
    if (::stat(socket.c_str(), &info) != 0 || !S_ISSOCK(info.st_mode)) return std::nullopt;
    return "unix:path=" + takeText(g_dbus_address_escape_value(socket.c_str()));
}

void SessionBus::connect() {
    if (bus || pending) return;
    const auto where = address();
    if (!where) {
        settle();
        return retry();
    }
    struct Attempt {
        SessionBus* bus;
        std::weak_ptr<const void> life;
    };
    pending.reset(g_cancellable_new());
    g_dbus_connection_new_for_address(
        where->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, pending.get(),
        [](GObject*, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<Attempt> attempt(static_cast<Attempt*>(data));
            GError* error = nullptr;
            GDBusConnection* const connection =
                g_dbus_connection_new_for_address_finish(result, &error);
            const OwnedError owner(error);
            if (attempt->life.expired()) {
                if (connection != nullptr) g_object_unref(connection);
            } else {
                attempt->bus->connected(connection);
            }
        },
        new Attempt{this, life.watch()});
    runLoop.after(answerWithin, [this, alive = life.watch(), attempt = ++attempts] {
        if (!alive.expired() && attempt == attempts && pending) g_cancellable_cancel(pending.get());
    });
}

bool SessionBus::waitUntilSettled() {
    while (!settled) g_main_context_iteration(nullptr, TRUE);
    return bus != nullptr;
}

Subscription SessionBus::onChange(std::function<void()> handler) {
    return handlers.add(std::move(handler));
}

void SessionBus::connected(GDBusConnection* connection) {
    pending.reset();
    if (connection == nullptr) {
        settle();
        retry();
    } else {
        settled = true;
        patience = firstPatience;
        bus.reset(connection);
        closedHandler =
            g_signal_connect(connection, "closed",
                             G_CALLBACK(+[](GDBusConnection*, gboolean, GError*, gpointer data) {
                                 static_cast<SessionBus*>(data)->lost();
                             }),
                             this);
        handlers.notify();
    }
}

/// There is none for now; only the first time is that news.
void SessionBus::settle() {
    if (!std::exchange(settled, true)) handlers.notify();
}

void SessionBus::lost() {
    log.line("Quorvel: the session bus has gone");
    g_signal_handler_disconnect(bus.get(), closedHandler);
    // Those who use it take leave of it first.
    const ObjectRef<GDBusConnection> gone = std::move(bus);
    handlers.notify();
    retry();
}

void SessionBus::retry() {
    runLoop.after(patience, [this, alive = life.watch()] {
        if (!alive.expired()) connect();
    });
    patience = std::min(patience * 2, longestPatience);
}

}  // namespace quorvel::native
