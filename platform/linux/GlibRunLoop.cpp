#include "platform/linux/GlibRunLoop.hpp"

#include <glib-unix.h>

#include <algorithm>
#include <csignal>
#include <utility>
#include <vector>

namespace quorvel::native {
namespace {

/// A GSource that calls back; GLib owns the memory, so what C++ owns hangs on a pointer.
struct CallbackSource {
    GSource base;
    std::function<void()>* callback;
};

gboolean dispatchCallback(GSource* source, GSourceFunc, gpointer) {
    // Called through a copy: the callback may destroy its own source.
    const std::function<void()> callback = *reinterpret_cast<CallbackSource*>(source)->callback;
    callback();
    return G_SOURCE_CONTINUE;
}

void finalizeCallback(GSource* source) {
    delete reinterpret_cast<CallbackSource*>(source)->callback;
}

GSourceFuncs callbackFunctions{nullptr,          nullptr, dispatchCallback,
                               finalizeCallback, nullptr, nullptr};

GSource* makeCallbackSource(std::function<void()> callback, gint64 readyTime) {
    GSource* source = g_source_new(&callbackFunctions, sizeof(CallbackSource));
    reinterpret_cast<CallbackSource*>(source)->callback =
        new std::function<void()>(std::move(callback));
    g_source_set_ready_time(source, readyTime);
    g_source_attach(source, nullptr);
    return source;
}

void destroySource(GSource* source) {
    g_source_destroy(source);
    g_source_unref(source);
}

struct ConnectionSource {
    GSource base;
    XConnection* connection;
    gpointer tag;
};

gboolean prepareConnection(GSource* source, gint* timeout) {
    *timeout = -1;
    auto* self = reinterpret_cast<ConnectionSource*>(source);
    self->connection->flush();
    // A reply that somebody waited for may have brought events along that no poll would announce.
    return self->connection->readPending() ? TRUE : FALSE;
}

gboolean checkConnection(GSource* source) {
    return reinterpret_cast<ConnectionSource*>(source)->connection->readPending() ? TRUE : FALSE;
}

gboolean dispatchConnection(GSource* source, GSourceFunc, gpointer) {
    reinterpret_cast<ConnectionSource*>(source)->connection->dispatch();
    return G_SOURCE_CONTINUE;
}

GSourceFuncs connectionFunctions{prepareConnection, checkConnection, dispatchConnection,
                                 nullptr,           nullptr,         nullptr};

bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

gint64 microseconds(RunLoop::Duration duration) {
    return std::chrono::ceil<std::chrono::microseconds>(duration).count();
}

}  // namespace

GlibRunLoop::GlibRunLoop() : loop(g_main_loop_new(nullptr, FALSE)) {}

GlibRunLoop::~GlibRunLoop() {
    if (drainSource != nullptr) destroySource(drainSource);
    g_main_loop_unref(loop);
}

std::uint64_t GlibRunLoop::uptimeNanoseconds() const {
    return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch() /
                                      std::chrono::nanoseconds(1));
}

void GlibRunLoop::async(std::function<void()> work) {
    queue.push_back(std::move(work));
    scheduleDrain();
}

void GlibRunLoop::scheduleDrain() {
    if (modalDepth > 0 || queue.empty()) return;
    if (drainSource == nullptr) {
        drainSource = makeCallbackSource([this] { drain(); }, -1);
    }
    g_source_set_ready_time(drainSource, 0);
}

void GlibRunLoop::drain() {
    g_source_set_ready_time(drainSource, -1);
    // What is queued by this work waits for the next turn, or a chain of work starves the events.
    for (std::size_t left = queue.size();
         left > 0 && !queue.empty() && modalDepth == 0 && !hasStopped; --left) {
        const std::function<void()> work = std::move(queue.front());
        queue.pop_front();
        work();
    }
    scheduleDrain();
}

void GlibRunLoop::after(Duration delay, std::function<void()> work) {
    struct Pending {
        GSource* source = nullptr;
    };
    auto pending = std::make_shared<Pending>();
    pending->source = makeCallbackSource(
        [this, alive = life.watch(), pending, work = std::move(work)] {
            destroySource(pending->source);
            if (!alive.expired()) async(work);
        },
        g_get_monotonic_time() + microseconds(delay));
}

Subscription GlibRunLoop::repeating(Duration interval, Duration, std::function<void()> tick) {
    struct Timer {
        GSource* source = nullptr;
        gint64 due = 0;
    };
    auto timer = std::make_shared<Timer>();
    const gint64 step = std::max<gint64>(1, microseconds(interval));
    timer->due = g_get_monotonic_time() + step;
    timer->source = makeCallbackSource(
        [this, weak = std::weak_ptr(timer), step, tick = std::move(tick)] {
            const auto self = weak.lock();
            if (!self) return;
            const gint64 now = g_get_monotonic_time();
            // On the grid of the start, so ticks do not drift; a missed one is not made up for.
            self->due += step * std::max<gint64>(1, (now - self->due) / step + 1);
            g_source_set_ready_time(self->source, self->due);
            if (modalDepth == 0) tick();
        },
        timer->due);
    return Subscription([timer] { destroySource(timer->source); });
}

Subscription GlibRunLoop::onTerminationSignal(std::function<void()> handler) {
    const auto shared = std::make_shared<std::function<void()>>(std::move(handler));
    std::vector<guint> sources;
    // The end of the terminal that it was started from, and Ctrl+C there, must not strand windows
    // off the screen either. Whoever had them ignored (nohup, a background job) wants that.
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        if (signal != SIGTERM && isIgnored(signal)) continue;
        sources.push_back(g_unix_signal_add_full(
            G_PRIORITY_DEFAULT, signal,
            [](gpointer data) -> gboolean {
                const auto held = *static_cast<std::shared_ptr<std::function<void()>>*>(data);
                (*held)();
                return G_SOURCE_CONTINUE;
            },
            new std::shared_ptr<std::function<void()>>(shared),
            [](gpointer data) {
                delete static_cast<std::shared_ptr<std::function<void()>>*>(data);
            }));
    }
    return Subscription([sources] {
        for (const guint source : sources) g_source_remove(source);
    });
}

void GlibRunLoop::modal(const std::function<void()>& body) {
    ++modalDepth;
    body();
    --modalDepth;
    scheduleDrain();
}

void GlibRunLoop::run() {
    hasStopped = false;
    g_main_loop_run(loop);
    queue.clear();
}

void GlibRunLoop::stop() {
    hasStopped = true;
    g_main_loop_quit(loop);
}

Subscription GlibRunLoop::attach(XConnection& connection) {
    GSource* source = g_source_new(&connectionFunctions, sizeof(ConnectionSource));
    auto* self = reinterpret_cast<ConnectionSource*>(source);
    self->connection = &connection;
    // An alert is run from within an event's dispatch, and events must go on arriving then.
    g_source_set_can_recurse(source, TRUE);
    self->tag = g_source_add_unix_fd(source, connection.fileDescriptor(),
                                     static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR));
    g_source_attach(source, nullptr);
    return Subscription([source] { destroySource(source); });
}

}  // namespace quorvel::native
