#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/support/x11/XProbe.hpp"

namespace quorvel::test {

/// Whether the user can still get at every window of some applications.
class Reach {
public:
    /// `displays` are those of the moment, for as long as this lives.
    Reach(const XProbe& probe, const std::string& displayName, std::set<std::string> classes,
          const std::vector<Rect>& displays)
        : probe(probe), ear(displayName), classes(std::move(classes)), displays(displays) {}

    /// Remembers every managed window of the applications: from then on it counts.
    void look();
    std::vector<xcb_window_t> windows() const;
    /// As long as it exists it is not told again.
    void giveUp(xcb_window_t window) { givenUp.insert(window); }

    /// Another window manager is about to run, or none.
    void managerChanges() { ++generation; }
    /// Whatever has become of it is not the program's doing. Either a window manager has had this
    /// window within reach and the program has not moved it since that one began (minimizing moves
    /// nothing; Openbox does while it shows how, and killed meanwhile leaves it there), or its
    /// display has gone from under it: it stands where it stood when it was last within reach, and
    /// the program has not tucked it since.
    bool isUntouched(xcb_window_t window) const;

    enum class Terms {
        running,  ///< what the program keeps away, and will bring back, is in reach
        ended,    ///< nothing is kept away by anybody
    };
    /// Why the user cannot get at the window; empty when all is well. In reach is what shows a
    /// usable part on a display, is iconic, or waits on another workspace or behind a window that
    /// fills the screen.
    std::string complaint(xcb_window_t window, Terms terms) const;
    std::vector<xcb_window_t> outOfReach(Terms terms);

    /// The program's notes are on it.
    bool isHeld(xcb_window_t window) const;
    /// Where a held window belongs: as the note says when the program has moved it, or where it
    /// stands.
    Rect homeOf(xcb_window_t window) const;
    /// It stands there, but for what another window manager puts around it.
    bool isAbout(xcb_window_t window, const Rect& place) const;
    /// All of it is on one display, or as much as there is room for.
    bool isWhole(xcb_window_t window) const;
    std::string describe(xcb_window_t window) const;
    std::string classOf(xcb_window_t window) const;

private:
    /// When something was last so: under which window manager.
    struct Last {
        std::optional<int> inReach;
        std::optional<int> moved;          ///< says a note of the program
        std::optional<Rect> frameInReach;  ///< if it has not been tucked since
    };

    bool isMoved(xcb_window_t window) const;
    bool isOurs(xcb_window_t window) const { return classes.contains(classOf(window)); }
    bool isOnAnotherWorkspace(xcb_window_t window) const;
    bool isBehindFullscreen(xcb_window_t window) const;
    bool isShaded(xcb_window_t window) const;
    bool showsUsablePart(const Rect& frame) const;
    void listen();

    const XProbe& probe;
    XClient ear;  ///< hears of the notes
    std::set<std::string> classes;
    const std::vector<Rect>& displays;
    int generation = 0;
    std::map<xcb_window_t, Last> known;
    std::set<xcb_window_t> givenUp;
};

}  // namespace quorvel::test
