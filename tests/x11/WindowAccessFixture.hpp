#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/linux/X11WindowAccess.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// With this manager, or with none.
using MaybeManager = std::optional<WindowManagerKind>;

inline std::vector<MaybeManager> allManagersAndNone() {
    std::vector<MaybeManager> all{std::nullopt};
    for (const WindowManagerKind kind : allWindowManagers()) all.emplace_back(kind);
    return all;
}

inline std::string nameOf(const MaybeManager& manager) {
    return manager ? nameOf(*manager) : "none";
}

/// The code under test on a session of its own, and an independent eye on the result.
class WindowAccessFixture {
public:
    static constexpr double sliver = 2;
    static constexpr Rect display{0, 0, 1280, 800};

    explicit WindowAccessFixture(XSessionOptions options) : session(options) {
        if (options.server == XServerKind::virtualFramebuffer) {
            displays = {{0, 0, double(options.width), double(options.height)}};
        } else {
            displays = {display};
        }
    }

    struct NoFocus final : native::FocusedWindowSource {
        FocusedWindowReading focusedWindow(std::int32_t, const std::string&) override { return {}; }
    };

    /// What the composition root does.
    struct Subject {
        explicit Subject(const std::string& displayName, const std::vector<Rect>& displays)
            : x(native::XConnection::open(displayName, error)),
              elements(*x),
              manager(*x),
              access(*x, elements, manager, focus, [&displays] { return displays; }) {}

        std::string error;
        std::unique_ptr<native::XConnection> x;
        native::WindowElements elements;
        native::WindowManagerInfo manager;
        NoFocus focus;
        native::X11WindowAccess access;
    };

    /// As on the first use: made once the window manager runs.
    Subject& subject() {
        if (!made) made = std::make_unique<Subject>(session.displayName(), displays);
        return *made;
    }
    native::X11WindowAccess& access() { return subject().access; }

    AXWindow handle(xcb_window_t window) {
        subject().x->select(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        return {subject().elements.elementOf(window)};
    }

    /// Hands out what has arrived, as the run loop does between two calls.
    void turn() {
        if (subject().x->readPending()) subject().x->dispatch();
    }

    Rect frame(AXWindow window) {
        const FrameReading reading = access().readFrame(window);
        if (!reading.positionAX || !reading.size) return {};
        return {reading.positionAX->x, reading.positionAX->y, reading.size->width,
                reading.size->height};
    }

    /// What another pair of eyes sees.
    Rect seen(xcb_window_t window) const {
        return session.probe().visibleFrame(window).value_or(Rect{});
    }

    /// Until it has had the same frame for a while: programs resize themselves as they start.
    void settle(xcb_window_t window) const {
        Rect last = seen(window);
        while (!neverWithin(200ms, [&] { return seen(window) != last; })) last = seen(window);
    }

    /// The time of one slide, in as many frames; the last one is the final step. Gives what each
    /// frame took, in milliseconds.
    std::vector<double> slide(AXWindow window, Point from, Point to, int frames = 10) {
        std::vector<double> durations;
        const auto start = std::chrono::steady_clock::now();
        for (int i = 1; i <= frames; ++i) {
            const auto due = start + std::chrono::milliseconds(160) * i / (frames + 1);
            waitUntil([&] { return std::chrono::steady_clock::now() >= due; });
            turn();
            const double part = double(i) / (frames + 1);
            const Point origin{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
            const auto before = std::chrono::steady_clock::now();
            EXPECT_EQ(access().setOrigin(window, origin, MoveStep::intermediate), 0);
            durations.push_back(millisecondsSince(before));
        }
        turn();
        EXPECT_EQ(access().setOrigin(window, to, MoveStep::final), 0);
        return durations;
    }

    static double millisecondsSince(std::chrono::steady_clock::time_point start) {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
            .count();
    }

    XSession session;
    std::vector<Rect> displays;

private:
    std::unique_ptr<Subject> made;
};

}  // namespace quorvel::test
