#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/ClientWindow.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Asks the server about top-level windows.
class ClientWindowReader {
public:
    explicit ClientWindowReader(XConnection& x);

    /// Those that exist, in their order, in one round trip, and a few more for shaded ones; selects
    /// the events of a `tellingFrame`. `tellsHidden` where the window manager
    /// marks iconic windows (EWMH); elsewhere WM_STATE has to do, which in many places is iconic
    /// for windows on other workspaces too.
    std::vector<std::pair<xcb_window_t, ClientWindow>> read(
        const std::vector<xcb_window_t>& windows, bool tellsHidden) const;

    enum class Concern { identity, state, none };
    /// What a change of this property means.
    Concern concernOf(xcb_atom_t property) const;

private:
    struct Questions;

    Questions ask(xcb_window_t window) const;
    void lookAtFrame(xcb_window_t window, ClientWindow& client) const;
    ClientWindowAnswers take(const Questions& questions) const;

    XConnection& x;
    ClientWindowAtoms atoms;
    bool tellsPids = false;
};

}  // namespace quorvel::native
