#pragma once

#include <glib.h>

#include <deque>
#include <functional>
#include <memory>

#include "platform/RunLoop.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// The run loop on GLib's default main context, so that whatever else lives there (D-Bus, a
/// toolkit) takes its turns beside us.
class GlibRunLoop final : public RunLoop {
public:
    GlibRunLoop();
    ~GlibRunLoop() override;

    std::uint64_t uptimeNanoseconds() const override;
    void async(std::function<void()> work) override;
    void after(Duration delay, std::function<void()> work) override;
    Subscription repeating(Duration interval, Duration tolerance,
                           std::function<void()> tick) override;
    Subscription onTerminationSignal(std::function<void()> handler) override;
    void modal(const std::function<void()>& body) override;
    void run() override;
    void stop() override;

    /// Reads and hands out the connection's events from the loop until the subscription ends,
    /// during `modal` too.
    [[nodiscard]] Subscription attach(XConnection& connection);

private:
    void scheduleDrain();
    void drain();

    GMainLoop* loop;
    std::deque<std::function<void()>> queue;
    GSource* drainSource = nullptr;
    int modalDepth = 0;
    bool hasStopped = false;
    Lifetime life;
};

}  // namespace quorvel::native
