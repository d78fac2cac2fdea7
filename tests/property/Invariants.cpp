#include "tests/property/Invariants.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace quorvel {
namespace {

/// Long enough for the watchers to have looked, and to have slept and woken in between.
constexpr int seen = 300;
/// Longer than any dwell on a strip, and any slide.
constexpr int rested = 800;

std::string name(WindowElement window) {
    return "window " + std::to_string(window);
}

bool isAt(Point a, Point b) {
    return std::abs(a.x - b.x) < 0.5 && std::abs(a.y - b.y) < 0.5;
}

}  // namespace

void Invariants::beforeStep() {
    before = {};
    before.isUndisturbed = isUndisturbed();
    before.fires = world.witness.fireCount();
    before.arms = world.witness.armCount();
    before.calm = marksOf(calmTuckedWindows());
    for (const WindowElement window : tuckedWindows()) {
        if (!world.sim.server.find(window)) before.dead.insert(window);
        before.held.insert(window);
    }
    for (const SimulatedWindow* window : world.sim.server.all()) {
        if (world.sim.windows.isHeld(window->handle())) before.held.insert(window->element);
    }
}

void Invariants::afterStep(const Step& step) {
    everyTuckedWindowIsHeldOnce();
    nothingElseIsHeld();
    tuckedWindowsStandAtTheirEdges();
    otherWindowsAreHome();
    if (world.application.isEnding()) world.witness.object("the program runs until it is ended");

    if (step.deed == Deed::warpCursor) cursorIsWarped = true;
    if (step.deed == Deed::moveCursor || step.deed == Deed::rest || step.deed == Deed::hover) {
        cursorIsWarped = false;
    }
    const bool nothingElseHappened =
        step.deed == Deed::wait && before.isUndisturbed && isUndisturbed();
    if (!nothingElseHappened) return;
    const int waited = step.arguments[0];
    if (waited >= rested) theDeadAreForgotten();
    if (cursorIsWarped) return;
    if (waited >= rested) restedStripsReveal();
    if (waited >= rested + world.witness.dwellMs()) restedCornersFire();
    if (waited < seen) return;
    if (!world.witness.cursorIsInZone()) world.witness.cursorWasSeenOutsideOfCorners();
    const auto calm = marksOf(calmTuckedWindows());
    for (const auto& [window, mark] : before.calm) {
        const auto now = calm.find(window);
        if (now != calm.end() && now->second == mark && visitOfStrip(window) == StripVisit::no) {
            stripsReady[window] = mark;
        }
    }
}

void Invariants::atTheEnd() {
    if (!world.application.isEnding()) world.witness.object("the program ends when it is told to");
    everyTuckedWindowIsHeldOnce();
    nothingElseIsHeld();
    otherWindowsAreHome();
    for (const WindowElement window : tuckedWindows()) {
        world.witness.object("nothing is tucked at the end: " + name(window) + " is");
    }
    for (const WindowElement window : before.held) {
        if (tucking().isMoving({window})) {
            world.witness.object("nothing slides at the end: " + name(window) + " does");
        }
        const auto frameAX = world.sim.frameAX({window});
        const auto& story = world.witness.story(window);
        // One that its user moved was given up, and stands where they left it.
        if (!frameAX || !story.homeAX || story.isFaulty || displaysAX().empty()) continue;
        if (!isOnADisplay(*frameAX)) {
            world.witness.object("no window is off-screen at the end: " + name(window) + " is");
        }
    }
    for (const std::string& appPath : world.witness.hiddenHere()) {
        world.witness.object("nothing stays hidden at the end: " + appPath + " does");
    }
}

void Invariants::everyTuckedWindowIsHeldOnce() const {
    Windows known;
    for (const auto& tucked : tucking().tuckedWindows()) {
        if (!known.insert(tucked.window.element).second) {
            world.witness.object("a window is tucked once: " + name(tucked.window.element));
        }
        if (!world.sim.windows.isHeld(tucked.window)) {
            world.witness.object("a tucked window is held: " + name(tucked.window.element) +
                                 " is not");
        }
    }
}

void Invariants::nothingElseIsHeld() const {
    const Windows tucked = tuckedWindows();
    for (const SimulatedWindow* window : world.sim.server.all()) {
        const auto& story = world.witness.story(window->element);
        if (!world.sim.windows.isHeld(window->handle()) || tucked.contains(window->element) ||
            story.isFaulty) {
            continue;
        }
        if (!story.comesHome || !tucking().isMoving(window->handle())) {
            world.witness.object("what is held is tucked or comes home: " + name(window->element) +
                                 " is neither");
        }
    }
}

void Invariants::tuckedWindowsStandAtTheirEdges() const {
    if (displaysAX().empty()) return;
    for (const auto& tucked : tucking().tuckedWindows()) {
        const auto& story = world.witness.story(tucked.window.element);
        const bool isKnown = story.isWhereItWasSent && story.wasPutThere && !story.isFaulty &&
                             !tucking().isMoving(tucked.window) &&
                             world.sim.server.find(tucked.window.element) &&
                             world.witness.displaysAreSettled();
        if (isKnown && !standsAtEdge(tucked)) {
            world.witness.object(
                "a tucked window stands at its edge: " + name(tucked.window.element) + " does not");
        }
    }
}

void Invariants::otherWindowsAreHome() const {
    const auto displays = displaysAX();
    if (displays.empty() || !world.witness.displaysAreSettled()) return;
    for (const SimulatedWindow* window : world.sim.server.all()) {
        const auto& story = world.witness.story(window->element);
        if (!story.wasPutThere || story.isFaulty || tucking().isMoving(window->handle()) ||
            world.sim.windows.isHeld(window->handle())) {
            continue;
        }
        if (!isOnADisplay(window->frameAX)) {
            world.witness.object("no window is lost: " + name(window->element) + " is off-screen");
        }
        if (!story.homeAX) continue;
        const Rect home{story.homeAX->x, story.homeAX->y, window->frameAX.width,
                        window->frameAX.height};
        if (story.isWhereItWasSent && isOnADisplay(home) &&
            !isAt(window->frameAX.origin(), *story.homeAX)) {
            world.witness.object("a window comes home: " + name(window->element) +
                                 " stands elsewhere");
        }
    }
}

void Invariants::theDeadAreForgotten() const {
    const Windows tucked = tuckedWindows();
    for (const WindowElement window : before.dead) {
        if (tucked.contains(window)) {
            world.witness.object("what is closed leaves no record: " + name(window) + " did");
        }
        if (tucking().isMoving({window})) {
            world.witness.object("what is closed does not slide: " + name(window) + " does");
        }
    }
}

void Invariants::restedCornersFire() const {
    const Witness& witness = world.witness;
    const bool mustFire = witness.cornersAreReady() && witness.cursorIsInZone() &&
                          world.sim.pointer.state().pressedButtons == 0 &&
                          witness.armCount() == before.arms;
    if (mustFire && witness.fireCount() == before.fires) {
        world.witness.object("a rest in a corner fires: it did not");
    }
}

void Invariants::restedStripsReveal() const {
    if (world.sim.pointer.state().pressedButtons != 0) return;
    for (const auto& [window, mark] : marksOf(calmTuckedWindows())) {
        const auto earlier = before.calm.find(window);
        const auto ready = stripsReady.find(window);
        const bool isUntouched = earlier != before.calm.end() && earlier->second == mark;
        const bool isReady = ready != stripsReady.end() && ready->second == mark;
        if (isUntouched && isReady && visitOfStrip(window) == StripVisit::yes) {
            world.witness.object("a rest on a strip reveals: " + name(window) + " stays");
        }
    }
}

Invariants::Windows Invariants::tuckedWindows() const {
    Windows result;
    for (const auto& tucked : tucking().tuckedWindows()) result.insert(tucked.window.element);
    return result;
}

Invariants::Windows Invariants::calmTuckedWindows() const {
    Windows result;
    for (const auto& [appPath, window, edge] : tucking().tuckedWindows()) {
        const auto& story = world.witness.story(window.element);
        const bool isCalm = world.sim.server.find(window.element) && story.isWhereItWasSent &&
                            story.wasPutThere && !story.isFaulty && !tucking().isMoving(window) &&
                            !tucking().isRevealed(window);
        if (isCalm) result.insert(window.element);
    }
    return result;
}

std::map<WindowElement, Invariants::Mark> Invariants::marksOf(const Windows& windows) const {
    std::map<WindowElement, Mark> result;
    for (const WindowElement window : windows) {
        const auto& story = world.witness.story(window);
        result[window] = {story.holds, story.reveals};
    }
    return result;
}

Invariants::StripVisit Invariants::visitOfStrip(WindowElement window) const {
    const double maxY = world.sim.screens.primaryScreenMaxY();
    const Point cursorCocoa = world.sim.pointer.state().locationCocoa;
    int strips = 0;
    int visited = 0;
    for (const auto& tucked : tucking().tuckedWindows()) {
        if (tucked.window.element != window) continue;
        const Rect frameAX = world.sim.frameAX(tucked.window).value_or(Rect{});
        for (const Rect& displayAX : displaysAX()) {
            if (!isAt(tucked.edge.tuckedOrigin(frameAX, displayAX), frameAX.origin())) continue;
            const Rect stripCocoa =
                tucked.edge.revealStripCocoa(flipped(frameAX, maxY), flipped(displayAX, maxY));
            ++strips;
            if (stripCocoa.containsInclusive(cursorCocoa)) ++visited;
        }
    }
    if (visited == 0) return StripVisit::no;
    return visited == strips ? StripVisit::yes : StripVisit::perhaps;
}

bool Invariants::standsAtEdge(const TuckController::TuckedWindow& tucked) const {
    const auto frameAX = world.sim.frameAX(tucked.window);
    const auto displays = displaysAX();
    return std::any_of(displays.begin(), displays.end(), [&](const Rect& displayAX) {
        const Point origin = tucking().isRevealed(tucked.window)
                                 ? tucked.edge.revealedOrigin(*frameAX, displayAX)
                                 : tucked.edge.tuckedOrigin(*frameAX, displayAX);
        return isAt(origin, frameAX->origin());
    });
}

bool Invariants::isOnADisplay(const Rect& frameAX) const {
    const auto displays = displaysAX();
    return std::any_of(displays.begin(), displays.end(),
                       [&](const Rect& displayAX) { return displayAX.intersects(frameAX); });
}

bool Invariants::isUndisturbed() const {
    return !world.sim.screens.screens().empty() && world.witness.displaysAreSettled() &&
           world.witness.timeIsSteady();
}

std::vector<Rect> Invariants::displaysAX() const {
    std::vector<Rect> result;
    const double maxY = world.sim.screens.primaryScreenMaxY();
    for (const Screen& screen : world.sim.screens.screens()) {
        result.push_back(flipped(screen.frameCocoa, maxY));
    }
    return result;
}

}  // namespace quorvel
