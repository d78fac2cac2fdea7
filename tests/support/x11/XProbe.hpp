#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/Printers.hpp"  // for every test here, or two kinds of text mix
#include "tests/support/x11/XClient.hpp"

namespace quorvel::test {

/// Looks at the desktop from outside: what the window manager says and what is really on screen.
/// Rectangles are in root coordinates.
class XProbe {
public:
    explicit XProbe(const std::string& displayName);

    const XClient& connection() const { return client; }

    // What the window manager says.
    bool windowManagerIsReady() const;
    xcb_window_t activeWindow() const;
    std::vector<xcb_window_t> clientList() const;
    bool isManaged(xcb_window_t window) const;
    /// 0 withdrawn, 1 normal, 3 iconic; nothing when the property is missing.
    std::optional<std::uint32_t> wmState(xcb_window_t window) const;
    bool isIconic(xcb_window_t window) const { return wmState(window) == 3U; }
    /// Names of the atoms in _NET_WM_STATE.
    std::vector<std::string> netWmState(xcb_window_t window) const;
    /// First of the client list with this class or instance; 0 when there is none.
    xcb_window_t windowOfClass(const std::string& name) const;
    std::optional<std::uint32_t> pid(xcb_window_t window) const;

    // What the server says.
    bool exists(xcb_window_t window) const;
    bool isViewable(xcb_window_t window) const;
    xcb_window_t inputFocus() const;
    /// The ancestor directly under the root.
    xcb_window_t frameOf(xcb_window_t window) const;
    /// The client area itself, without decorations.
    std::optional<Rect> clientArea(xcb_window_t window) const;
    /// What is seen of it: with decorations, without borders that nothing is painted on.
    std::optional<Rect> visibleFrame(xcb_window_t window) const;
    /// Children of the root, the lowest first.
    std::vector<xcb_window_t> stacking() const;
    bool isAbove(xcb_window_t upper, xcb_window_t lower) const;
    Point pointer() const;

    // What is painted.
    /// Fills the root window, so that whatever else is on screen stands out.
    void paintRoot(std::uint32_t colour) const;
    std::uint32_t pixel(int x, int y) const;
    /// The smallest rectangle around all pixels of another colour; nothing when there are none.
    std::optional<Rect> boundsOfAllBut(std::uint32_t colour) const;
    /// Around all pixels of this colour.
    std::optional<Rect> boundsOf(std::uint32_t colour) const;
    /// Around all pixels inside `area` whose red, green and blue differ by `tolerance` at most.
    std::optional<Rect> boundsOfColoursNear(std::uint32_t colour, int tolerance,
                                            const Rect& area) const;
    /// A picture of the whole screen (PNG); throws when it cannot be made.
    void screenshot(const std::filesystem::path& file) const;

    // As a pager or a user asks the window manager for something.
    void activate(xcb_window_t window) const;
    void iconify(xcb_window_t window) const;
    /// Asks it to close the window in the way of its owner.
    void close(xcb_window_t window) const;
    /// Asks to move the seen frame there.
    void requestMove(xcb_window_t window, int x, int y) const;

private:
    xcb_timestamp_t serverTime() const;
    template <class Predicate>
    std::optional<Rect> boundsWhere(Predicate&& counts, const Rect& area = everything) const;
    static constexpr Rect everything{0, 0, 1e6, 1e6};

    std::string displayName;
    XClient client;
};

}  // namespace quorvel::test
