#include "tests/hostile/Reach.hpp"

#include <algorithm>
#include <sstream>

namespace quorvel::test {
namespace {

// Xfwm4 by itself lets 29 stand of a window whose display has gone.
constexpr double usableWidth = 28;
constexpr double usableHeight = 20;

}  // namespace

std::string Reach::classOf(xcb_window_t window) const {
    const std::string both = probe.connection().propertyText(window, "WM_CLASS");
    const std::size_t end = both.find('\0');
    if (end == std::string::npos) return {};
    return both.substr(end + 1, both.find('\0', end + 1) - end - 1);
}

void Reach::look() {
    // Identifiers come back with other windows.
    const auto isGone = [this](xcb_window_t each) { return !probe.exists(each) || !isOurs(each); };
    std::erase_if(known, isGone);
    std::erase_if(givenUp, isGone);
    for (const xcb_window_t window : probe.clientList()) {
        if (isOurs(window)) known.insert(window);
    }
}

bool Reach::isHeld(xcb_window_t window) const {
    const XClient& x = probe.connection();
    return !x.property32(window, "_QUORVEL_HELD").empty() ||
           !x.property32(window, "_QUORVEL_HIDDEN").empty();
}

bool Reach::isOnAnotherWorkspace(xcb_window_t window) const {
    constexpr std::uint32_t everywhere = 0xFFFFFFFF;
    const XClient& x = probe.connection();
    const auto current = x.property32(x.root(), "_NET_CURRENT_DESKTOP");
    const auto its = x.property32(window, "_NET_WM_DESKTOP");
    return !current.empty() && !its.empty() && its[0] != everywhere && its[0] != current[0];
}

bool Reach::isWhole(xcb_window_t window, const std::vector<Rect>& displays) const {
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    return std::any_of(displays.begin(), displays.end(), [&](const Rect& display) {
        return seen.intersection(display) == seen && !seen.isEmpty();
    });
}

std::string Reach::complaint(xcb_window_t window, const std::vector<Rect>& displays,
                             Terms terms) const {
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
    if (!probe.isViewable(window)) return "is neither shown nor iconic";
    const auto seen = probe.visibleFrame(window);
    if (!seen) return {};
    for (const Rect& display : displays) {
        const Rect part = seen->intersection(display);
        if (part.width >= std::min(usableWidth, seen->width) &&
            part.height >= std::min(usableHeight, seen->height)) {
            return {};
        }
    }
    return "is off every display";
}

std::vector<xcb_window_t> Reach::outOfReach(const std::vector<Rect>& displays, Terms terms) {
    look();
    std::vector<xcb_window_t> result;
    for (const xcb_window_t window : known) {
        if (!givenUp.contains(window) && !complaint(window, displays, terms).empty())
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
    for (const char* note : {"_QUORVEL_HELD", "_QUORVEL_HIDDEN"}) {
        const auto content = probe.connection().property32(window, note);
        if (content.empty()) continue;
        text << ", " << note;
        for (const std::uint32_t number : content) text << " " << static_cast<std::int32_t>(number);
    }
    return text.str();
}

}  // namespace quorvel::test
