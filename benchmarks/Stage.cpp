#include "benchmarks/Stage.hpp"

#include <cstring>
#include <stdexcept>

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr const char* key = "T";

/// What is left over from an activation must not be counted to the next press.
constexpr auto restBetween = 25ms;
/// Between two presses that nobody took.
constexpr auto pressSpacing = 300us;

}  // namespace

Stage::Stage(test::WindowManagerKind kind)
    : desktop({.windowManager = kind}),
      events(desktop.displayName()),
      activeWindowAtom(events.connection().atom("_NET_ACTIVE_WINDOW")) {
    // Away from every edge and corner, and from the windows.
    desktop.input().moveTo(1100, 400);
    other.emplace(desktop.displayName());
    otherWindow =
        desktop.open(*other, {.title = "Other", .instance = "other", .className = "Other"});
    terminalProcess = desktop.startAndWaitForWindow(
        {"xterm", "-geometry", "60x16+300+200", "-e", "sleep", "1d"}, "XTerm", terminalWindow);
    // A key that is held until it is answered must not count as pressed twice.
    const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
    xcb_change_keyboard_control(events.connection().xcb(), XCB_KB_AUTO_REPEAT_MODE, &off);
    events.select(events.connection().root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    events.select(otherWindow, XCB_EVENT_MASK_KEY_PRESS);
    events.settle(restBetween);
}

bool Stage::isActive(const xcb_generic_event_t& event, xcb_window_t window) const {
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
    xcb_property_notify_event_t change;
    std::memcpy(&change, &event, sizeof change);
    return change.atom == activeWindowAtom && desktop.probe().activeWindow() == window;
}

void Stage::activate(xcb_window_t window) {
    if (desktop.probe().activeWindow() != window) {
        desktop.probe().activate(window);
        const auto active = [&](const xcb_generic_event_t& event, Instant) {
            return isActive(event, window);
        };
        events.waitFor(active, Clock::now() + answerLimit);
        if (desktop.probe().activeWindow() != window) {
            throw std::runtime_error("the window manager does not activate a window");
        }
    }
    events.settle(restBetween);
}

std::optional<double> Stage::answer() {
    test::XInput& input = desktop.input();
    input.press("Control");
    input.press("Alt");
    events.settle(1ms);
    const Instant pressed = Clock::now();
    input.press(key);
    const auto answered =
        events.waitFor([&](const xcb_generic_event_t& event, Instant) { return isAnswer(event); },
                       pressed + answerLimit);
    input.releaseAll();
    if (!answered) return std::nullopt;
    return milliseconds(*answered - pressed);
}

std::optional<Instant> Stage::firstAnswer() {
    test::XInput& input = desktop.input();
    const Instant deadline = Clock::now() + 2 * answerLimit;
    std::optional<Instant> answered;
    const auto isAnswer = [&](const xcb_generic_event_t& event, Instant at) {
        if (!answered && isActive(event, terminalWindow)) answered = at;
        return answered.has_value();
    };
    const auto isUntaken = [&](const xcb_generic_event_t& event, Instant at) {
        isAnswer(event, at);
        return (event.response_type & 0x7f) == XCB_KEY_PRESS;
    };
    input.press("Control");
    input.press("Alt");
    events.drain(isUntaken);
    while (!answered && Clock::now() < deadline) {
        input.press(key);
        const bool untaken = events.drain(isUntaken);
        if (untaken) {
            events.waitFor(isAnswer, Clock::now() + pressSpacing);
        } else if (!answered) {
            events.waitFor(isAnswer, Clock::now() + answerLimit);
        }
        input.release(key);
    }
    input.releaseAll();
    return answered;
}

void Stage::press(const std::string& name) {
    desktop.input().chord({"Control", "Alt"}, name);
}

}  // namespace quorvel::bench
