#include "platform/linux/OffscreenHider.hpp"

#include <utility>

#include "platform/linux/MoveRequests.hpp"

namespace quorvel::native {
namespace {

/// How often a window manager may put a frame back before it has its way.
constexpr int mostReturns = 50;

/// Displays never reach left of the root's corner.
Point exileFor(double width, double y) {
    return {-width - 64, y};
}

}  // namespace

FrameOverrideHider::FrameOverrideHider(XConnection& x, WindowManagerInfo& manager,
                                       FrameReader& frames)
    : x(x),
      frames(frames),
      notes(x),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })),
      managerEvents(manager.onChange([this] { abandon(); })) {}

FrameOverrideHider::~FrameOverrideHider() {
    for (const xcb_window_t window : hidden()) show(window);
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
    notes.write(window, place.home);
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
    overrideFrame(x, place.frame, place.isOverrideRedirect, place.home);
    notes.erase(window);
}

bool FrameOverrideHider::bringBack(xcb_window_t window, Point frameHome) {
    const auto reading = frames.read(window);
    if (!reading || reading->frameArea.maxX() > 0) return false;
    return overrideFrame(x, reading->frame, reading->frameIsOverrideRedirect, frameHome) == 0;
}

std::vector<xcb_window_t> FrameOverrideHider::hidden() const {
    std::vector<xcb_window_t> windows;
    for (const auto& [window, place] : places) windows.push_back(window);
    return windows;
}

void FrameOverrideHider::handle(const xcb_generic_event_t& event) {
    if (places.empty()) return;
    switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY:
            places.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            return;
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
        if (now == place.exile) return;
        place.home = now;
        if (++place.returns > mostReturns) {
            notes.erase(window);
            places.erase(window);
            return;
        }
        notes.write(window, place.home);
        place.exile = exileFor(change.width + 2.0 * change.border_width, now.y);
        overrideFrame(x, place.frame, place.isOverrideRedirect, place.exile);
        return;
    }
}

/// The frames have gone with the window manager. What it let go of stands where it was, and the
/// next one would keep it there.
void FrameOverrideHider::abandon() {
    for (const auto& [window, place] : std::exchange(places, {})) {
        const auto reading = frames.read(window);
        if (reading && reading->frameArea.maxX() <= 0) {
            overrideFrame(x, reading->frame, reading->frameIsOverrideRedirect, place.home);
        }
        notes.erase(window);
    }
}

}  // namespace quorvel::native
