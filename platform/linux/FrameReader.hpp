#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Widths of the four sides of something around a window.
struct Extents {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;

    bool operator==(const Extents&) const = default;
    bool any() const { return left > 0 || right > 0 || top > 0 || bottom > 0; }
};

/// Of the items of a property of four widths; none where they cannot be meant.
Extents extentsIn(const std::vector<std::uint32_t>& values);

/// The states in which the window manager decides where a window stands.
struct FillingStates {
    bool fullscreen = false;
    bool maximizedVertically = false;
    bool maximizedHorizontally = false;

    bool operator==(const FillingStates&) const = default;
    bool any() const { return fullscreen || maximizedVertically || maximizedHorizontally; }
};

/// One window at one moment. All rectangles in root coordinates.
struct WindowReading {
    xcb_window_t client = XCB_WINDOW_NONE;
    xcb_window_t frame = XCB_WINDOW_NONE;  ///< the ancestor right under the root; may be the client
    Rect seen;                             ///< with decorations, without invisible borders
    Rect clientArea;                       ///< without its X border
    double clientBorder = 0;               ///< the width of that
    Rect frameArea;                        ///< with its X border
    bool drawsOwnShadow = false;           ///< its decorations, and a shadow around, are its own
    bool frameIsOverrideRedirect = false;
    FillingStates states;
};

/// What is seen of a window of these areas. `shadow` is what the client says that it draws around
/// itself, `decoration` what the window manager says that it has put around the client; either is
/// believed only where the areas bear it out.
Rect seenArea(const Rect& clientWithBorder, const Rect& frame, const Extents& shadow,
              const Extents& decoration);

/// Reads where windows really stand, from the server and not from what anybody believes. The frame
/// that a window manager put around a window is remembered and confirmed with every reading, so one
/// reading costs one round trip.
class FrameReader {
public:
    using Clock = std::chrono::steady_clock;
    /// From the window itself up to the one right under the root.
    using Lineage = std::vector<xcb_window_t>;

    explicit FrameReader(XConnection& x);

    /// Nothing when the window is gone or its owner has withdrawn it. Iconic and shaded windows,
    /// and those on other workspaces, have a frame.
    std::optional<WindowReading> read(xcb_window_t client);

    /// Also of one that its owner has withdrawn. One round trip.
    bool exists(xcb_window_t client) const;

    /// One window's reading under way; made by `ask`.
    struct Question;
    /// The same for many windows in one round trip: asks now, to be answered later, each once.
    std::vector<Question> ask(const std::vector<xcb_window_t>& clients);
    std::optional<WindowReading> answer(const Question& question);

    /// Makes the server tell of every change, so that `await` misses none: to be called before the
    /// change is asked for.
    void watch(const WindowReading& window, bool statesToo = false) const;

    /// Reads until a reading is `done` or `latest` has passed. Gives the last reading, done or not.
    std::optional<WindowReading> await(xcb_window_t client,
                                       const std::function<bool(const WindowReading&)>& done,
                                       Clock::time_point latest);

    /// The same, but no longer than until nothing has happened to the window for a while after
    /// something did: for what may well end otherwise.
    std::optional<WindowReading> awaitAnswer(xcb_window_t client,
                                             const std::function<bool(const WindowReading&)>& done,
                                             Clock::time_point latest);

private:
    Question ask(xcb_window_t client, const Lineage& lineage) const;
    /// Nothing also when the frame is no longer the one that was asked about.
    std::optional<WindowReading> answer(const Question& question, bool& isOfThisLineage) const;
    std::optional<WindowReading> await(xcb_window_t client,
                                       const std::function<bool(const WindowReading&)>& done,
                                       Clock::time_point latest, bool endsWhenQuiet);
    bool trace(xcb_window_t client, Lineage& lineage) const;

    XConnection& x;
    std::unordered_map<xcb_window_t, Lineage> lineages;
    Subscription events;
};

struct FrameReader::Question {
    xcb_window_t client = XCB_WINDOW_NONE;
    Lineage lineage;  ///< empty when it must be traced first
    std::vector<xcb_query_tree_cookie_t> parents;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_geometry_cookie_t frameGeometry;
    xcb_translate_coordinates_cookie_t place;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_window_attributes_cookie_t frameAttributes;
    xcb_get_property_cookie_t shadow;
    xcb_get_property_cookie_t decoration;
    xcb_get_property_cookie_t states;
    xcb_get_property_cookie_t management;
};

}  // namespace quorvel::native
