#include "platform/linux/OffscreenHider.hpp"

#include <algorithm>
#include <utility>

#include "platform/linux/MoveRequests.hpp"

namespace quorvel::native {
namespace {

/// How often a window manager may put a frame back before it has its way.
constexpr int mostReturns = 50;

constexpr double widestBorder = 32;
constexpr std::chrono::milliseconds patience{100};

/// Displays never reach left of the root's corner.
Point exileFor(double width, double y) {
    return {-width - 64, y};
}

}  // namespace

FrameOverrideHider::FrameOverrideHider(XConnection& x, WindowManagerInfo& manager,
                                       FrameReader& frames)
    : x(x),
      manager(manager),
      frames(frames),
      notes(x),
      returning(x, manager, [this](xcb_window_t window) { notes.erase(window); }),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })),
      managerEvents(manager.onChange([this] { abandon(); })) {}

FrameOverrideHider::~FrameOverrideHider() {
    for (const xcb_window_t window : hidden()) show(window);
    returning.clear();
    x.flush();
}

bool FrameOverrideHider::hide(xcb_window_t window) {
    if (isHidden(window)) return true;
    const auto reading = frames.read(window);
    if (!reading) return false;
    x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    Place place;
    place.frame = reading->frame;
    place.isOverrideRedirect = reading->frameIsOverrideRedirect;
    place.home = reading->frameArea.origin();
    place.exile = exileFor(reading->frameArea.width, place.home.y);
    notes.write(window, HiddenNotes::MovedFrame{place.frame, place.home});
    returning.remove(window);
    if (overrideFrame(x, place.frame, place.isOverrideRedirect, place.exile) != 0) return false;
    const auto moved = frames.read(window);
    if (!moved || moved->frameArea.origin() != place.exile) return false;
    places.emplace(window, place);
    return true;
}

void FrameOverrideHider::show(xcb_window_t window) {
    const auto found = places.find(window);
    if (found == places.end()) return;
    const Place place = found->second;
    places.erase(found);
    bringBack(window, {place.frame, place.home});
    notes.erase(window);
}

bool FrameOverrideHider::bringBack(xcb_window_t window, const HiddenNotes::MovedFrame& moved) {
    // Some window managers let a part of it stand on the screen.
    const auto isBack = [&](const WindowReading& reading) {
        return reading.frameArea.x >= std::min(0.0, moved.home.x) - widestBorder;
    };
    auto reading = frames.read(window);
    if (!reading || isBack(*reading)) return false;
    // The window manager that put this frame around it knows no other place than home. One that
    // took the window over since knows only where it found it, and would put it there again.
    const bool isKnownAtHome = reading->frame == moved.frame && reading->frame != window;
    if (manager.isRunning() && !isKnownAtHome) {
        frames.watch(*reading);
        sendConfigure(x, window, moved.home);
        reading = frames.awaitAnswer(window, isBack, Clock::now() + patience);
        if (!reading) return false;
        if (isBack(*reading)) return true;
    }
    return overrideFrame(x, reading->frame, reading->frameIsOverrideRedirect, moved.home) == 0;
}

std::vector<xcb_window_t> FrameOverrideHider::hidden() const {
    std::vector<xcb_window_t> windows;
    for (const auto& [window, place] : places) windows.push_back(window);
    return windows;
}

void FrameOverrideHider::handle(const xcb_generic_event_t& event) {
    if (places.empty()) return;
    switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY: {
            const auto& end = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
            places.erase(end.window);
            return;
        }
        case XCB_CONFIGURE_NOTIFY:
            frameMoved(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            return;
        default:
            return;
    }
}

void FrameOverrideHider::frameMoved(const xcb_configure_notify_event_t& change) {
    for (auto& [window, place] : places) {
        // What was sent is the window manager's word to the client, not a move.
        if (change.window != place.frame || (change.response_type & 0x80) != 0) continue;
        const Point now{static_cast<double>(change.x), static_cast<double>(change.y)};
        // The echo of a move of ours, and not always of the last one: no window manager puts a
        // window there.
        if (now.x + change.width <= 0) return;
        place.home = now;
        if (++place.returns > mostReturns) {
            notes.erase(window);
            places.erase(window);
            return;
        }
        notes.write(window, HiddenNotes::MovedFrame{place.frame, place.home});
        place.exile = exileFor(change.width + 2.0 * change.border_width, now.y);
        overrideFrame(x, place.frame, place.isOverrideRedirect, place.exile);
        return;
    }
}

/// The frames have gone with the window manager. What it let go of stands where it was, and the
/// next one would keep it there.
void FrameOverrideHider::abandon() {
    for (const auto& [window, place] : std::exchange(places, {})) {
        const HiddenNotes::MovedFrame moved{place.frame, place.home};
        returning.add(window, [this, moved](xcb_window_t each) { return bringBack(each, moved); });
    }
}

}  // namespace quorvel::native
