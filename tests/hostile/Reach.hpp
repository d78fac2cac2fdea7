#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/support/x11/XProbe.hpp"

namespace quorvel::test {

/// Whether the user can still get at every window of some applications.
class Reach {
public:
    Reach(const XProbe& probe, std::set<std::string> classes)
        : probe(probe), classes(std::move(classes)) {}

    /// Remembers every managed window of the applications: from then on it counts.
    void look();
    const std::set<xcb_window_t>& windows() const { return known; }
    /// As long as it exists it is not told again.
    void giveUp(xcb_window_t window) { givenUp.insert(window); }

    enum class Terms {
        running,  ///< what the program keeps away, and will bring back, is in reach
        ended,    ///< nothing is kept away by anybody
    };
    /// Why the user cannot get at the window, on these displays; empty when all is well. In reach
    /// is what shows a usable part on a display, is iconic, or waits on another workspace.
    std::string complaint(xcb_window_t window, const std::vector<Rect>& displays,
                          Terms terms) const;
    std::vector<xcb_window_t> outOfReach(const std::vector<Rect>& displays, Terms terms);

    /// The program's notes are on it.
    bool isHeld(xcb_window_t window) const;
    bool isWhole(xcb_window_t window, const std::vector<Rect>& displays) const;
    std::string describe(xcb_window_t window) const;
    std::string classOf(xcb_window_t window) const;

private:
    bool isOurs(xcb_window_t window) const { return classes.contains(classOf(window)); }
    bool isOnAnotherWorkspace(xcb_window_t window) const;

    const XProbe& probe;
    std::set<std::string> classes;
    std::set<xcb_window_t> known;
    std::set<xcb_window_t> givenUp;
};

}  // namespace quorvel::test
