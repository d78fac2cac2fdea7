#include "benchmarks/HeldWindows.hpp"

#include <stdexcept>
#include <utility>

#include "benchmarks/Observer.hpp"
#include "tests/support/x11/Waiting.hpp"

namespace quorvel::bench {
namespace {

/// So short that the next poll is due as soon as the loop runs again.
constexpr RunLoop::Duration interval = std::chrono::milliseconds(2);

std::unique_ptr<native::XConnection> connect(const std::string& displayName) {
    std::string error;
    auto connection = native::XConnection::open(displayName, error);
    if (!connection) throw std::runtime_error(error);
    return connection;
}

}  // namespace

const std::vector<xcb_window_t>& FramedWindows::open(std::size_t count) {
    xcb_connection_t* const x = client.xcb();
    const auto make = [&](xcb_window_t parent, int across, int down) {
        const xcb_window_t window = xcb_generate_id(x);
        const std::uint32_t isLeftAlone = parent == client.root() ? 1 : 0;
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, parent,
                          static_cast<std::int16_t>(across), static_cast<std::int16_t>(down), 100,
                          1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT, &isLeftAlone);
        xcb_map_window(x, window);
        return window;
    };
    while (windows.size() < count) {
        const auto index = static_cast<int>(windows.size());
        // None above another: the server would spend its time on what is seen of them.
        frames.push_back(make(client.root(), place, index));
        windows.push_back(make(frames.back(), 0, 0));
        constexpr std::uint32_t normal = 1;
        client.setProperty32(windows.back(), "WM_STATE", "WM_STATE", {normal, XCB_WINDOW_NONE});
    }
    client.sync();
    return windows;
}

void FramedWindows::moveAll() {
    place = place == home ? home + 1 : home;
    const auto across = static_cast<std::uint32_t>(place);
    for (const xcb_window_t frame : frames) {
        xcb_configure_window(client.xcb(), frame, XCB_CONFIG_WINDOW_X, &across);
    }
    client.sync();
}

class Lookout::TimedLoop final : public RunLoop {
public:
    [[nodiscard]] Subscription attach(native::XConnection& connection) {
        return loop.attach(connection);
    }
    double lastTick() const { return took; }

    std::uint64_t uptimeNanoseconds() const override { return loop.uptimeNanoseconds(); }
    void async(std::function<void()> work) override { loop.async(std::move(work)); }
    void after(Duration delay, std::function<void()> work) override {
        loop.after(delay, std::move(work));
    }
    Subscription repeating(Duration every, Duration tolerance,
                           std::function<void()> tick) override {
        return loop.repeating(every, tolerance, [this, tick = std::move(tick)] {
            const Instant start = Clock::now();
            tick();
            took = milliseconds(Clock::now() - start);
            stop();
        });
    }
    Subscription onTerminationSignal(std::function<void()> handler) override {
        return loop.onTerminationSignal(std::move(handler));
    }
    void modal(const std::function<void()>& body) override { loop.modal(body); }
    void run() override { loop.run(); }
    void stop() override { loop.stop(); }

private:
    native::GlibRunLoop loop;
    double took = 0;
};

Lookout::Lookout(const std::string& displayName)
    : x(connect(displayName)),
      loop(std::make_unique<TimedLoop>()),
      events(loop->attach(*x)),
      elements(*x),
      manager(*x),
      screens(*x, *loop),
      pointer(*x, screens),
      access(*x, elements, manager, focus, [this] { return screens.framesInRoot(); }),
      timers(*x, *loop, pointer, screens, access),
      polling(timers.polling(interval, {}, [this] { return look(); })) {}

Lookout::~Lookout() = default;

void Lookout::hold(const std::vector<xcb_window_t>& windows) {
    while (held.size() < windows.size()) {
        const xcb_window_t window = windows[held.size()];
        held.push_back({elements.elementOf(window)});
        access.hold(held.back(), {0, 0, 100, 1});
    }
}

void Lookout::hearOfMoves() {
    std::size_t left = held.size();
    const auto isLast = [&](const xcb_generic_event_t& event) {
        return (event.response_type & 0x7f) == XCB_CONFIGURE_NOTIFY && --left == 0;
    };
    if (!x->waitFor(isLast, Clock::now() + test::patience)) {
        throw std::runtime_error("the server does not tell of every move");
    }
}

PollAgain Lookout::look() {
    seen = 0;
    static_cast<void>(pointer.read());
    for (const AXWindow window : held) {
        if (access.readFrame(window).positionAX) ++seen;
    }
    return PollAgain::afterInterval;
}

double Lookout::poll() {
    loop->run();
    if (seen != held.size()) throw std::runtime_error("a poll does not see every held window");
    return loop->lastTick();
}

}  // namespace quorvel::bench
