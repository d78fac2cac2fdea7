#include "platform/linux/ApplicationLauncher.hpp"

#include <fcntl.h>
#include <gio/gdesktopappinfo.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <utility>

#include "platform/Text.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/LaunchContext.hpp"
#include "platform/linux/LaunchDiagnosis.hpp"

namespace quorvel::native {
namespace {

/// Runs in the child, where only what is safe in a signal handler is allowed.
void prepareChild(gpointer) {
    setsid();
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal) sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// /dev/null, open for both directions; −1 when even that is not there.
class NullDevice {
public:
    NullDevice() : descriptor(open("/dev/null", O_RDWR | O_CLOEXEC)) {}
    ~NullDevice() {
        if (descriptor >= 0) close(descriptor);
    }
    NullDevice(const NullDevice&) = delete;
    NullDevice& operator=(const NullDevice&) = delete;

    int get() const { return descriptor; }

private:
    int descriptor;
};

std::string wordsOf(GError* error) {
    const OwnedError owner(error);
    if (error == nullptr) return "The reason is unknown.";
    g_dbus_error_strip_remote_error(error);
    return error->message;
}

ObjectRef<GDesktopAppInfo> load(const std::string& path) {
    return ObjectRef<GDesktopAppInfo>(g_desktop_app_info_new_from_filename(path.c_str()));
}

}  // namespace

ApplicationLauncher::ApplicationLauncher(XConnection& x, RunLoop& runLoop)
    : x(x), runLoop(runLoop) {}

void ApplicationLauncher::launch(const std::string& path, Completion completion) {
    Outcome outcome;
    outcome.error = whyNotUsable(path);
    if (!outcome.error) {
        if (isDesktopEntryPath(path)) {
            if (activateOverBus(path, completion)) return;
            outcome = launchEntry(path);
        } else {
            outcome = run(path);
        }
    }
    if (outcome.pid > 0) watch(outcome.pid);
    runLoop.async([completion = std::move(completion), outcome] { completion(outcome); });
}

Subscription ApplicationLauncher::onExit(std::function<void(std::int32_t, int)> handler) {
    return exitHandlers.add(std::move(handler));
}

bool ApplicationLauncher::activateOverBus(const std::string& path, const Completion& completion) {
    const auto info = load(path);
    if (!info || g_desktop_app_info_get_boolean(info.get(), "DBusActivatable") == FALSE) {
        return false;
    }
    const std::string name = nameWithoutExtension(path);
    if (g_dbus_is_name(name.c_str()) == FALSE || name.starts_with(':')) return false;
    const ObjectRef<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    if (!bus) return false;
    // Or the library ends this process when the bus goes away.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);

    struct Call {
        std::weak_ptr<const void> life;
        RunLoop& runLoop;
        Completion completion;
    };
    const auto context = makeLaunchContext(x);
    auto call = std::make_unique<Call>(Call{life.watch(), runLoop, completion});
    g_app_info_launch_uris_async(
        G_APP_INFO(info.get()), nullptr, context.get(), nullptr,
        [](GObject* source, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<Call> owner(static_cast<Call*>(data));
            Outcome outcome;
            GError* error = nullptr;
            if (g_app_info_launch_uris_finish(G_APP_INFO(source), result, &error) == FALSE) {
                outcome.error = wordsOf(error);
            }
            if (owner->life.expired()) return;
            owner->runLoop.async(
                [completion = owner->completion, outcome] { completion(outcome); });
        },
        call.release());
    return true;
}

ApplicationLauncher::Outcome ApplicationLauncher::launchEntry(const std::string& path) {
    const auto info = load(path);
    if (!info || g_app_info_get_executable(G_APP_INFO(info.get())) == nullptr) {
        return {whyNotLaunchable(path).value_or("“" + path + "” cannot be launched."), 0};
    }
    const auto context = makeLaunchContext(x);
    const NullDevice null;
    Outcome outcome;
    GError* error = nullptr;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
    const gboolean isLaunched = g_desktop_app_info_launch_uris_as_manager_with_fds(
        info.get(), nullptr, context.get(), flags, prepareChild, nullptr,
        [](GDesktopAppInfo*, GPid pid, gpointer data) { *static_cast<std::int32_t*>(data) = pid; },
        &outcome.pid, null.get(), null.get(), null.get(), &error);
    if (isLaunched == FALSE) outcome.error = wordsOf(error);
    return outcome;
}

ApplicationLauncher::Outcome ApplicationLauncher::run(const std::string& path) {
    const auto environment = environmentForChildren();
    std::string program = path;
    std::array<gchar*, 2> arguments{program.data(), nullptr};
    const NullDevice null;
    Outcome outcome;
    GError* error = nullptr;
    const gboolean isStarted = g_spawn_async_with_fds(
        nullptr, arguments.data(), environment.get(), G_SPAWN_DO_NOT_REAP_CHILD, prepareChild,
        nullptr, &outcome.pid, null.get(), null.get(), null.get(), &error);
    if (isStarted == FALSE) outcome.error = wordsOf(error);
    return outcome;
}

void ApplicationLauncher::watch(std::int32_t pid) {
    struct Watch {
        std::weak_ptr<const void> life;
        ApplicationLauncher& launcher;
    };
    g_child_watch_add_full(
        G_PRIORITY_DEFAULT, pid,
        [](GPid ended, gint status, gpointer data) {
            const auto* watch = static_cast<Watch*>(data);
            if (!watch->life.expired()) watch->launcher.exitHandlers.notify(ended, status);
        },
        new Watch{life.watch(), *this}, [](gpointer data) { delete static_cast<Watch*>(data); });
}

}  // namespace quorvel::native
