#include "platform/linux/ClientWindow.hpp"

#include <algorithm>

#include "platform/linux/PropertyReply.hpp"

namespace quorvel::native {
namespace {

constexpr std::uint32_t iconicState = 3;

/// Texts that end with a zero where they do, one way or the other.
std::string firstPart(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

/// The first type that is known decides, as the sender orders them by preference.
std::optional<ClientWindow::Kind> kindOf(const ClientWindowAtoms& atoms,
                                         const std::vector<xcb_atom_t>& types) {
    const auto isIn = [](xcb_atom_t type, const auto& list) {
        return std::find(list.begin(), list.end(), type) != list.end();
    };
    for (const xcb_atom_t type : types) {
        if (type == atoms.normal) return ClientWindow::Kind::normal;
        if (type == atoms.dialog) return ClientWindow::Kind::dialog;
        if (isIn(type, atoms.furniture)) return ClientWindow::Kind::furniture;
        if (isIn(type, atoms.accessories)) return ClientWindow::Kind::accessory;
    }
    return std::nullopt;
}

}  // namespace

ClientWindowAtoms::ClientWindowAtoms(const Intern& atom)
    : wmState(atom("WM_STATE")),
      netState(atom("_NET_WM_STATE")),
      hidden(atom("_NET_WM_STATE_HIDDEN")),
      shaded(atom("_NET_WM_STATE_SHADED")),
      modal(atom("_NET_WM_STATE_MODAL")),
      type(atom("_NET_WM_WINDOW_TYPE")),
      normal(atom("_NET_WM_WINDOW_TYPE_NORMAL")),
      dialog(atom("_NET_WM_WINDOW_TYPE_DIALOG")),
      furniture{atom("_NET_WM_WINDOW_TYPE_DOCK"), atom("_NET_WM_WINDOW_TYPE_DESKTOP")},
      gtkApplicationId(atom("_GTK_APPLICATION_ID")),
      kdeDesktopFile(atom("_KDE_NET_WM_DESKTOP_FILE")),
      pid(atom("_NET_WM_PID")),
      desktop(atom("_NET_WM_DESKTOP")) {
    for (const char* name : {"UTILITY", "TOOLBAR", "MENU", "SPLASH", "DROPDOWN_MENU", "POPUP_MENU",
                             "TOOLTIP", "NOTIFICATION", "COMBO", "DND"}) {
        accessories.push_back(atom(std::string("_NET_WM_WINDOW_TYPE_") + name));
    }
}

std::optional<ClientWindow> clientWindowOf(const ClientWindowAnswers& answers,
                                           const ClientWindowAtoms& atoms, xcb_window_t root,
                                           bool tellsHidden) {
    if (!answers.type || !answers.desktop) return std::nullopt;

    ClientWindow client;
    const auto parents = numbersIn(answers.transientFor.get(), XCB_ATOM_WINDOW);
    if (!parents.empty() && parents.front() != root) client.transientFor = parents.front();
    const auto kind = kindOf(atoms, numbersIn(answers.type.get(), XCB_ATOM_ATOM));
    client.kind =
        kind.value_or(client.transientFor == XCB_WINDOW_NONE ? ClientWindow::Kind::normal
                                                             : ClientWindow::Kind::dialog);
    const auto states = numbersIn(answers.netState.get(), XCB_ATOM_ATOM);
    const auto has = [&](xcb_atom_t state) {
        return std::find(states.begin(), states.end(), state) != states.end();
    };
    client.isModal = has(atoms.modal);
    const auto state = numbersIn(answers.wmState.get(), atoms.wmState);
    client.isShaded = has(atoms.shaded);
    client.isIconic =
        tellsHidden ? has(atoms.hidden) : !state.empty() && state.front() == iconicState;
    const auto desktops = numbersIn(answers.desktop.get(), XCB_ATOM_CARDINAL);
    if (!desktops.empty()) client.desktop = desktops.front();

    const std::string both = textIn(answers.classes.get());
    client.instanceName = firstPart(both);
    if (client.instanceName.size() < both.size()) {
        client.className = firstPart(both.substr(client.instanceName.size() + 1));
    }
    client.gtkApplicationId = firstPart(textIn(answers.gtkApplicationId.get()));
    client.kdeDesktopFile = firstPart(textIn(answers.kdeDesktopFile.get()));

    // The server's own knowledge first: what a client says of itself is wrong in a pid namespace.
    if (answers.owner) {
        for (auto ids = xcb_res_query_client_ids_ids_iterator(answers.owner.get()); ids.rem > 0;
             xcb_res_client_id_value_next(&ids)) {
            if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0) continue;
            if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
            client.pid = static_cast<std::int32_t>(*xcb_res_client_id_value_value(ids.data));
        }
    }
    const auto claimed = numbersIn(answers.pid.get(), XCB_ATOM_CARDINAL);
    if (client.pid <= 0 && !claimed.empty())
        client.pid = static_cast<std::int32_t>(claimed.front());
    if (client.pid < 0) client.pid = 0;
    return client;
}

}  // namespace quorvel::native
