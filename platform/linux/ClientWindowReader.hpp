#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Stands for all workspaces at once.
inline constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

/// What a top-level window says of itself and its window manager of it.
struct ClientWindow {
    enum class Kind {
        normal,
        dialog,
        furniture,  ///< a dock or the desktop: part of the desktop itself
        accessory,  ///< a tool box, splash screen, menu and the like
    };

    Kind kind = Kind::normal;
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    bool isModal = false;
    bool isIconic = false;
    bool isShaded = false;  ///< rolled up to its title bar; perhaps iconic as well
    /// Whose coming and going tells whether it is iconic; XCB_WINDOW_NONE where the properties do.
    xcb_window_t tellingFrame = XCB_WINDOW_NONE;
    std::optional<std::uint32_t> desktop;  ///< a workspace, or `allDesktops`
    std::int32_t pid = 0;                  ///< 0 when unknown
    std::string instanceName;              ///< WM_CLASS, as the next one
    std::string className;
    std::string gtkApplicationId;
    std::string kdeDesktopFile;

    bool operator==(const ClientWindow&) const = default;
};

/// Asks the server about top-level windows. What it finds there anybody may have written: lengths
/// are bounded, and what has the wrong form counts as absent.
class ClientWindowReader {
public:
    explicit ClientWindowReader(XConnection& x);
    ~ClientWindowReader();

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
    struct Atoms;
    struct Questions;

    Questions ask(xcb_window_t window) const;
    void lookAtFrame(xcb_window_t window, ClientWindow& client) const;
    std::optional<ClientWindow> take(const Questions& questions, bool tellsHidden) const;

    XConnection& x;
    std::unique_ptr<const Atoms> atoms;
    bool tellsPids = false;
};

}  // namespace quorvel::native
