#pragma once

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
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

/// The names that tell something of a top-level window.
struct ClientWindowAtoms {
    using Intern = std::function<xcb_atom_t(const std::string& name)>;

    explicit ClientWindowAtoms(const Intern& atom);

    xcb_atom_t wmState, netState, hidden, shaded, modal, type, normal, dialog;
    std::array<xcb_atom_t, 2> furniture;
    std::vector<xcb_atom_t> accessories;
    xcb_atom_t gtkApplicationId, kdeDesktopFile, pid, desktop;
};

/// What the server answered about one window; null where it gave no answer.
struct ClientWindowAnswers {
    using Property = Reply<xcb_get_property_reply_t>;

    Property type, transientFor, netState, wmState, classes, gtkApplicationId, kdeDesktopFile, pid,
        desktop;
    Reply<xcb_res_query_client_ids_reply_t> owner;
};

/// What has the wrong form counts as absent: anybody may have written it. Nothing where the window
/// is gone. `tellsHidden` where the window manager marks iconic windows (EWMH).
std::optional<ClientWindow> clientWindowOf(const ClientWindowAnswers& answers,
                                           const ClientWindowAtoms& atoms, xcb_window_t root,
                                           bool tellsHidden);

}  // namespace quorvel::native
