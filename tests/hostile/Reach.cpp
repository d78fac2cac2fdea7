#include "tests/hostile/Reach.hpp"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace quorvel::test {
namespace {

constexpr double usableWidth = 40;
constexpr double usableHeight = 20;
constexpr double widestDecoration = 40;

}  // namespace

std::string Reach::classOf(xcb_window_t window) const {
    const std::string both = probe.connection().propertyText(window, "WM_CLASS");
    const std::size_t end = both.find('\0');
    if (end == std::string::npos) return {};
    return both.substr(end + 1, both.find('\0', end + 1) - end - 1);
}

void Reach::look() {
    listen();
    // Identifiers come back with other windows.
    const auto isGone = [this](xcb_window_t each) { return !probe.exists(each) || !isOurs(each); };
    std::erase_if(known, [&](const auto& each) { return isGone(each.first); });
    std::erase_if(givenUp, isGone);
    for (const xcb_window_t window : probe.clientList()) {
        if (!isOurs(window) || !known.try_emplace(window).second) continue;
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(ear.xcb(), window, XCB_CW_EVENT_MASK, &mask);
    }
    ear.sync();
    for (auto& [window, last] : known) {
        if (isMoved(window)) {
            last.moved = generation;
        } else if (!isHeld(window) && complaint(window, Terms::ended).empty()) {
            last.inReach = generation;
            last.frameInReach = probe.visibleFrame(window);
        }
    }
}

void Reach::listen() {
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(ear.xcb())}) {
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        const auto window = known.find(change.window);
        if (window == known.end() || change.atom != ear.atom("_QUORVEL_HELD")) continue;
        window->second.moved = generation;
        window->second.frameInReach.reset();
    }
}

std::vector<xcb_window_t> Reach::windows() const {
    std::vector<xcb_window_t> result;
    for (const auto& [window, last] : known) result.push_back(window);
    return result;
}

bool Reach::isUntouched(xcb_window_t window) const {
    const auto found = known.find(window);
    if (found == known.end()) return false;
    const Last& last = found->second;
    return (last.inReach && (!last.moved || *last.moved < *last.inReach)) ||
           (last.frameInReach && isAbout(window, *last.frameInReach));
}

bool Reach::isHeld(xcb_window_t window) const {
    const XClient& x = probe.connection();
    return !x.property32(window, "_QUORVEL_HELD").empty() ||
           !x.property32(window, "_QUORVEL_HIDDEN").empty();
}

bool Reach::isMoved(xcb_window_t window) const {
    const XClient& x = probe.connection();
    const auto hidden = x.property32(window, "_QUORVEL_HIDDEN");
    return !x.property32(window, "_QUORVEL_HELD").empty() || (!hidden.empty() && hidden.at(2) != 0);
}

bool Reach::isOnAnotherWorkspace(xcb_window_t window) const {
    constexpr std::uint32_t everywhere = 0xFFFFFFFF;
    const XClient& x = probe.connection();
    const auto current = x.property32(x.root(), "_NET_CURRENT_DESKTOP");
    const auto its = x.property32(window, "_NET_WM_DESKTOP");
    return !current.empty() && !its.empty() && its[0] != everywhere && its[0] != current[0];
}

bool Reach::isBehindFullscreen(xcb_window_t window) const {
    const auto clients = probe.clientList();
    return std::any_of(clients.begin(), clients.end(), [&](xcb_window_t other) {
        const auto states = probe.netWmState(other);
        return other != window && probe.isViewable(other) &&
               std::find(states.begin(), states.end(), "_NET_WM_STATE_FULLSCREEN") != states.end();
    });
}

Rect Reach::homeOf(xcb_window_t window) const {
    const XClient& x = probe.connection();
    // After its version and the user's identifier.
    const auto numberOf = [](const std::vector<std::uint32_t>& note, std::size_t index) {
        return double(static_cast<std::int32_t>(note.at(2 + index)));
    };
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    if (const auto note = x.property32(window, "_QUORVEL_HELD"); !note.empty()) {
        return {numberOf(note, 0), numberOf(note, 1), numberOf(note, 2), numberOf(note, 3)};
    }
    const auto note = x.property32(window, "_QUORVEL_HIDDEN");
    if (note.empty() || note.at(2) == 0) return seen;
    return {numberOf(note, 1), numberOf(note, 2), seen.width, seen.height};
}

bool Reach::isAbout(xcb_window_t window, const Rect& place) const {
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    return std::abs(seen.x - place.x) <= widestDecoration &&
           std::abs(seen.y - place.y) <= widestDecoration;
}

bool Reach::isWhole(xcb_window_t window) const {
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    return std::any_of(displays.begin(), displays.end(), [&](const Rect& display) {
        const Rect part = seen.intersection(display);
        return !seen.isEmpty() && part.width >= std::min(seen.width, display.width) &&
               part.height >= std::min(seen.height, display.height);
    });
}

bool Reach::isShaded(xcb_window_t window) const {
    const auto states = probe.netWmState(window);
    return std::find(states.begin(), states.end(), "_NET_WM_STATE_SHADED") != states.end() &&
           probe.isViewable(probe.frameOf(window));
}

bool Reach::showsUsablePart(const Rect& frame) const {
    return std::any_of(displays.begin(), displays.end(), [&](const Rect& display) {
        const Rect part = frame.intersection(display);
        return part.width >= std::min(usableWidth, frame.width) &&
               part.height >= std::min(usableHeight, frame.height);
    });
}

std::string Reach::complaint(xcb_window_t window, Terms terms) const {
    if (!probe.exists(window) || !isOurs(window)) return {};
    if (terms == Terms::running && isHeld(window)) return {};
    if (terms == Terms::ended && !probe.connection().property32(window, "_QUORVEL_HELD").empty()) {
        return "is still held";
    }
    const auto state = probe.wmState(window);
    const bool isManaged = probe.isManaged(window);
    // Taken off the screen by its own application.
    if (!isManaged && state.value_or(0) == 0 && !probe.isViewable(window)) return {};
    if (!isManaged) return "is not managed";
    if (state == 3U || isOnAnotherWorkspace(window)) return {};
    const auto seen = probe.visibleFrame(window);
    if (!probe.isViewable(window)) {
        // Of a shaded one there is the title bar.
        if (isShaded(window) && seen && showsUsablePart(*seen)) return {};
        return isBehindFullscreen(window) ? "" : "is neither shown nor iconic";
    }
    return !seen || showsUsablePart(*seen) ? "" : "is off every display";
}

std::vector<xcb_window_t> Reach::outOfReach(Terms terms) {
    look();
    std::vector<xcb_window_t> result;
    for (const auto& [window, last] : known) {
        if (!givenUp.contains(window) && !complaint(window, terms).empty())
            result.push_back(window);
    }
    return result;
}

std::string Reach::describe(xcb_window_t window) const {
    std::ostringstream text;
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    text << std::hex << "0x" << window << std::dec << " of " << classOf(window) << " at (" << seen.x
         << "," << seen.y << " " << seen.width << "x" << seen.height << ")"
         << (probe.isManaged(window) ? "" : ", not managed")
         << (probe.isViewable(window) ? "" : ", not shown") << ", WM_STATE ";
    if (const auto state = probe.wmState(window)) {
        text << *state;
    } else {
        text << "none";
    }
    for (const std::string& state : probe.netWmState(window)) text << " " << state;
    if (const auto found = known.find(window); found != known.end() && found->second.frameInReach) {
        const Rect& last = *found->second.frameInReach;
        text << ", last in reach at (" << last.x << "," << last.y << ")";
    }
    for (const char* note : {"_QUORVEL_HELD", "_QUORVEL_HIDDEN"}) {
        const auto content = probe.connection().property32(window, note);
        if (content.empty()) continue;
        text << ", " << note;
        for (const std::uint32_t number : content) text << " " << static_cast<std::int32_t>(number);
    }
    return text.str();
}

}  // namespace quorvel::test
