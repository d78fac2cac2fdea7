#pragma once

#include <cstddef>
#include <map>
#include <set>

#include "tests/property/World.hpp"

namespace quorvel {

/// What holds after every step, and at the end. Breaches are told to the world's witness.
class Invariants {
public:
    explicit Invariants(World& world) : world(world) {}

    void beforeStep();
    void afterStep(const Step& step);
    void atTheEnd();

private:
    using Windows = std::set<WindowElement>;

    void everyTuckedWindowIsHeldOnce() const;
    void nothingElseIsHeld() const;
    void tuckedWindowsStandAtTheirEdges() const;
    void otherWindowsAreHome() const;
    void theDeadAreForgotten() const;
    void restedCornersFire() const;
    void restedStripsReveal() const;

    Windows tuckedWindows() const;
    /// Neither moving nor revealed nor out of order.
    Windows calmTuckedWindows() const;
    /// Where displays overlap, a window may stand at an edge of either.
    enum class StripVisit { no, perhaps, yes };
    StripVisit visitOfStrip(WindowElement window) const;
    bool standsAtEdge(const TuckController::TuckedWindow& tucked) const;
    bool isOnADisplay(const Rect& frameAX) const;
    bool isUndisturbed() const;
    std::vector<Rect> displaysAX() const;
    const TuckController& tucking() const { return world.controller.tucking(); }

    World& world;

    /// What a window went through so far; where it is the same later, nothing has happened to it.
    struct Mark {
        int holds = 0;
        int reveals = 0;

        bool operator==(const Mark&) const = default;
    };
    std::map<WindowElement, Mark> marksOf(const Windows& windows) const;

    // As it was before the step that is being taken.
    struct Before {
        bool isUndisturbed = false;
        Windows dead;
        Windows held;  ///< tucked, or on their way home
        int fires = 0;
        int arms = 0;
        std::map<WindowElement, Mark> calm;
    } before;

    bool cursorIsWarped = false;
    /// Windows whose strip the cursor was seen off; the next long enough rest on it must reveal
    /// them.
    std::map<WindowElement, Mark> stripsReady;
};

}  // namespace quorvel
