#include "tests/property/Witness.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

/// Two polls and more: what lasts for as long has been seen by one.
constexpr Witness::Moment surelySeen = 200ms;
/// A display event is held back for a moment, and a slide may be on its way meanwhile.
constexpr Witness::Moment settlingTime = 1s;
/// After time was lost, ticks come closer to each other for a while.
constexpr Witness::Moment catchingUp = 1s;
/// A little less than the time between two steps of a slide.
constexpr Witness::Moment slideInterval = 16ms;

std::optional<std::string> rest(std::string_view line, std::string_view beginning) {
    if (!line.starts_with(beginning)) return std::nullopt;
    return std::string(line.substr(beginning.size()));
}

}  // namespace

void Witness::cursorMoved() {
    noteWhetherCursorIsInZone();
    for (auto& [window, story] : stories) story.wasRevealedHere = false;
}

void Witness::windowWasDragged(WindowElement window) {
    Story& told = story(window);
    told.wasPutThere = false;
    told.isWhereItWasSent = false;
    told.wasRevealedHere = false;
}

void Witness::windowWasResized(WindowElement window) {
    Story& told = story(window);
    told.isWhereItWasSent = false;
    told.wasResizedSince = true;
    told.wasResizedWhileHeld = true;
    if (!sim.windows.isHeld({window})) told.wasPutThere = false;
    told.wasRevealedHere = false;
}

void Witness::heldWindowsBecameFaulty() {
    for (auto& [window, story] : stories) {
        if (sim.windows.isHeld({window})) story.isFaulty = true;
    }
}

void Witness::displaysWereArranged() {
    lastArrangement = sim.runLoop.uptime();
    for (auto& [window, story] : stories) {
        story.isWhereItWasSent = false;
        story.wasRevealedHere = false;
        // Where others leave a window whose display is gone is not for the program to decide.
        if (!sim.windows.isHeld({window})) story.wasPutThere = false;
    }
}

void Witness::lookAtHiddenApplications() {
    hidden.merge(perhapsHidden);
    perhapsHidden.clear();
    std::erase_if(hidden, [this](const std::string& appPath) { return !isHidden(appPath); });
}

bool Witness::cursorIsInZone() const {
    const Point cursorCocoa = sim.pointer.state().locationCocoa;
    for (const Rect& zone : zones) {
        if (zone.containsInclusive(cursorCocoa)) return true;
    }
    return false;
}

bool Witness::displaysAreSettled() const {
    if (!lastArrangement) return true;
    // Lost time is none in which anybody could be told.
    const Moment since = std::max(*lastArrangement, lastTimeLost.value_or(Moment()));
    return sim.runLoop.uptime() - since >= settlingTime;
}

bool Witness::timeIsSteady() const {
    return !lastTimeLost || sim.runLoop.uptime() - *lastTimeLost >= catchingUp;
}

// The log ----------------------------------------------------------------------------------------

void Witness::line(std::string_view message) {
    if (narrate) narrate(message);
    if (const auto list = rest(message, "Quorvel: hot corner zones: ")) hearOfZones(*list);
    if (message == "Quorvel: no hot corners placed.") hearOfZones("none");
    if (const auto text = rest(message, "Quorvel: hot corner armed (")) hearOfArming(*text);
    if (message.starts_with("Quorvel: hot corner fired at (")) hearOfFiring();
    for (const char* beginning : {"Quorvel: hid ", "Quorvel: auto-hid ", "Quorvel: hiding "}) {
        if (const auto text = rest(message, beginning)) hearOfHiding(*text);
    }
}

void Witness::hearOfZones(const std::string& list) {
    zones.clear();
    std::string_view left = list;
    while (!left.empty() && left.front() == '(') {
        int x = 0;
        int y = 0;
        if (std::sscanf(std::string(left).c_str(), "(%d,%d 6x6)", &x, &y) != 2) break;
        zones.push_back({static_cast<double>(x), static_cast<double>(y), 6, 6});
        const auto end = left.find(") (");
        left = end == std::string_view::npos ? std::string_view() : left.substr(end + 2);
    }
    noteWhetherCursorIsInZone();
}

void Witness::hearOfArming(const std::string& text) {
    ++arms;
    ready = true;
    firesOfThisVisit = 0;
    visitBegan = sim.runLoop.uptime();
    const auto at = text.find("dwell ");
    if (at != std::string::npos) dwell = std::stoi(text.substr(at + 6));
}

void Witness::hearOfFiring() {
    ++fires;
    ready = false;
    if (++firesOfThisVisit > 1) object("a corner fires once a visit: it fired again");
    if (!cursorIsInZone()) object("a corner fires under the cursor: the cursor is elsewhere");
    if (sim.pointer.state().pressedButtons != 0) {
        object("a corner never fires while a button is pressed: it fired");
    }
    if (sim.runLoop.uptime() - visitBegan < std::chrono::milliseconds(dwell)) {
        object("a corner fires after its dwell: it fired too early");
    }
}

void Witness::hearOfHiding(const std::string& text) {
    perhapsHidden.insert(text.substr(0, text.find(' ')));
}

/// A visit that ends and begins anew between two polls is one, and while time was lost there were
/// none.
void Witness::noteWhetherCursorIsInZone() {
    const bool isInZone = cursorIsInZone();
    const Moment now = sim.runLoop.uptime();
    if (wasInZone && !isInZone) {
        leftZone = now;
        firesOfThisVisit = 0;
    }
    const bool outingWasSeen =
        now - leftZone >= surelySeen && (!lastTimeLost || *lastTimeLost < leftZone);
    if (!wasInZone && isInZone && outingWasSeen) visitBegan = now;
    wasInZone = isInZone;
}

bool Witness::isHidden(const std::string& appPath) const {
    return sim.applications.isHidden({appPath, 0});
}

std::string Witness::name(AXWindow window) const {
    return "window " + std::to_string(window.element);
}

template <class Call>
auto Witness::timed(Call call) {
    const Moment before = sim.runLoop.uptime();
    auto result = call();
    if (sim.runLoop.uptime() != before) timeWasLost();
    return result;
}

// The windows ------------------------------------------------------------------------------------

FocusedWindowReading Witness::focusedWindow(std::int32_t processIdentifier,
                                            const std::string& bundlePath) {
    return timed([&] { return sim.windows.focusedWindow(processIdentifier, bundlePath); });
}

FrameReading Witness::readFrame(AXWindow window) {
    return timed([&] { return sim.windows.readFrame(window); });
}

std::int32_t Witness::setOrigin(AXWindow window, Point originAX, MoveStep step) {
    Story& told = story(window.element);
    const Moment now = sim.runLoop.uptime();
    if (step == MoveStep::intermediate) {
        if (told.lastSlideWrite && now - *told.lastSlideWrite < slideInterval && timeIsSteady()) {
            object("at most one slide a window: " + name(window) + " is moved by two");
        }
        told.lastSlideWrite = now;
    }
    const std::int32_t error = timed([&] { return sim.windows.setOrigin(window, originAX, step); });
    if (step == MoveStep::final && error == 0) {
        told.comesHome = false;
        told.wasPutThere = true;
        told.isWhereItWasSent = displaysAreSettled() && !told.wasResizedSince;
        told.wasResizedSince = false;
        told.lastSlideWrite.reset();
    }
    return error;
}

void Witness::raise(AXWindow window) {
    Story& told = story(window.element);
    if (tucking && tucking->isRevealed(window)) {
        if (sim.pointer.state().pressedButtons != 0) {
            object("nothing is revealed while a button is pressed: " + name(window) + " was");
        }
        // One that refuses to move is never under the cursor that brought it out.
        if (told.wasRevealedHere && !told.isFaulty && !told.wasResizedWhileHeld) {
            object("a window is revealed once a visit: " + name(window) + " was again");
        }
        told.wasRevealedHere = true;
        ++told.reveals;
    }
    sim.windows.raise(window);
}

void Witness::hold(AXWindow window, const Rect& originalFrameAX) {
    Story& told = story(window.element);
    const Point home = originalFrameAX.origin();
    if (told.comesHome) {
        if (!told.isFaulty && home != told.homeAX) {
            object("a window's home stays: " + name(window) + " was tucked on its way there");
        }
    } else if (sim.windows.isHeld(window) && !told.isFaulty) {
        object("a window is tucked once: " + name(window) + " was held already");
    }
    ++told.holds;
    told.homeAX = home;
    told.comesHome = false;
    told.wasRevealedHere = false;
    told.wasResizedWhileHeld = false;
    sim.windows.hold(window, originalFrameAX);
}

void Witness::letGo(AXWindow window, EndOfHold how) {
    Story& told = story(window.element);
    told.comesHome = how == EndOfHold::putBack;
    if (how == EndOfHold::forgotten) {
        const bool isThere = sim.server.find(window.element) != nullptr;
        if (isThere && told.wasPutThere && !told.isFaulty) {
            object("only what was moved or closed is given up: " + name(window) + " was");
        }
        told.homeAX.reset();
    }
    sim.windows.letGo(window, how);
}

}  // namespace quorvel
