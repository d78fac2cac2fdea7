#include "platform/linux/ClientWindowReader.hpp"

#include <xcb/res.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "platform/linux/WindowTree.hpp"

namespace quorvel::native {
namespace {

constexpr std::uint32_t iconicState = 3;
constexpr std::uint32_t longestText = 1024;  // in 32-bit units, as the next
constexpr std::uint32_t longestList = 64;

template <class... Items>
bool isOneOf(xcb_atom_t atom, Items... items) {
    return ((atom == items) || ...);
}

std::vector<std::uint32_t> numbersIn(const xcb_get_property_reply_t* reply, xcb_atom_t type) {
    if (reply == nullptr || reply->format != 32 || reply->type != type) return {};
    std::vector<std::uint32_t> numbers(
        static_cast<std::size_t>(xcb_get_property_value_length(reply)) / 4);
    if (!numbers.empty()) {
        std::memcpy(numbers.data(), xcb_get_property_value(reply), numbers.size() * 4);
    }
    return numbers;
}

std::string textIn(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)),
            static_cast<std::size_t>(xcb_get_property_value_length(reply))};
}

/// Texts that end with a zero where they do, one way or the other.
std::string firstPart(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

}  // namespace

struct ClientWindowReader::Atoms {
    explicit Atoms(const XConnection& x)
        : wmState(x.atom("WM_STATE")),
          netState(x.atom("_NET_WM_STATE")),
          hidden(x.atom("_NET_WM_STATE_HIDDEN")),
          shaded(x.atom("_NET_WM_STATE_SHADED")),
          modal(x.atom("_NET_WM_STATE_MODAL")),
          type(x.atom("_NET_WM_WINDOW_TYPE")),
          normal(x.atom("_NET_WM_WINDOW_TYPE_NORMAL")),
          dialog(x.atom("_NET_WM_WINDOW_TYPE_DIALOG")),
          furniture{x.atom("_NET_WM_WINDOW_TYPE_DOCK"), x.atom("_NET_WM_WINDOW_TYPE_DESKTOP")},
          gtkApplicationId(x.atom("_GTK_APPLICATION_ID")),
          kdeDesktopFile(x.atom("_KDE_NET_WM_DESKTOP_FILE")),
          pid(x.atom("_NET_WM_PID")),
          desktop(x.atom("_NET_WM_DESKTOP")) {
        for (const char* name : {"UTILITY", "TOOLBAR", "MENU", "SPLASH", "DROPDOWN_MENU",
                                 "POPUP_MENU", "TOOLTIP", "NOTIFICATION", "COMBO", "DND"}) {
            accessories.push_back(x.atom(std::string("_NET_WM_WINDOW_TYPE_") + name));
        }
    }

    /// The first type that is known decides, as the sender orders them by preference.
    std::optional<ClientWindow::Kind> kindOf(const std::vector<xcb_atom_t>& types) const {
        for (const xcb_atom_t type : types) {
            if (type == normal) return ClientWindow::Kind::normal;
            if (type == dialog) return ClientWindow::Kind::dialog;
            if (isOneOf(type, furniture[0], furniture[1])) return ClientWindow::Kind::furniture;
            if (std::find(accessories.begin(), accessories.end(), type) != accessories.end()) {
                return ClientWindow::Kind::accessory;
            }
        }
        return std::nullopt;
    }

    xcb_atom_t wmState, netState, hidden, shaded, modal, type, normal, dialog;
    std::array<xcb_atom_t, 2> furniture;
    std::vector<xcb_atom_t> accessories;
    xcb_atom_t gtkApplicationId, kdeDesktopFile, pid, desktop;
};

struct ClientWindowReader::Questions {
    xcb_get_property_cookie_t type, transientFor, netState, wmState, classes, gtkApplicationId,
        kdeDesktopFile, pid, desktop;
    std::optional<xcb_res_query_client_ids_cookie_t> owner;
};

ClientWindowReader::ClientWindowReader(XConnection& x) : x(x), atoms(std::make_unique<Atoms>(x)) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(x.xcb(), &xcb_res_id);
    tellsPids = extension != nullptr && extension->present != 0;
}

ClientWindowReader::~ClientWindowReader() = default;

std::vector<std::pair<xcb_window_t, ClientWindow>> ClientWindowReader::read(
    const std::vector<xcb_window_t>& windows, bool tellsHidden) const {
    std::vector<Questions> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows) asked.push_back(ask(window));
    std::vector<std::pair<xcb_window_t, ClientWindow>> found;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if (auto client = take(asked[i], tellsHidden)) {
            found.emplace_back(windows[i], std::move(*client));
        }
    }
    for (auto& [window, client] : found) {
        if (tellsHidden && client.isShaded && client.isIconic) lookAtFrame(window, client);
    }
    return found;
}

/// Some window managers mark windows hidden, and iconic in WM_STATE, for being shaded alone.
void ClientWindowReader::lookAtFrame(xcb_window_t window, ClientWindow& client) const {
    client.tellingFrame = frameOf(x, window);
    if (client.tellingFrame == XCB_WINDOW_NONE) return;
    x.select(client.tellingFrame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const Reply<xcb_get_window_attributes_reply_t> frame(xcb_get_window_attributes_reply(
        x.xcb(), xcb_get_window_attributes(x.xcb(), client.tellingFrame), nullptr));
    client.isIconic = !frame || frame->map_state != XCB_MAP_STATE_VIEWABLE;
}

ClientWindowReader::Concern ClientWindowReader::concernOf(xcb_atom_t property) const {
    if (isOneOf(property, atoms->wmState, atoms->netState, atoms->desktop)) return Concern::state;
    const bool isIdentity =
        isOneOf(property, atoms->type, atoms->gtkApplicationId, atoms->kdeDesktopFile, atoms->pid,
                xcb_atom_t{XCB_ATOM_WM_CLASS}, xcb_atom_t{XCB_ATOM_WM_TRANSIENT_FOR});
    return isIdentity ? Concern::identity : Concern::none;
}

ClientWindowReader::Questions ClientWindowReader::ask(xcb_window_t window) const {
    const auto property = [&](xcb_atom_t name, std::uint32_t length) {
        return xcb_get_property(x.xcb(), 0, window, name, XCB_ATOM_ANY, 0, length);
    };
    Questions questions{property(atoms->type, longestList),
                        property(XCB_ATOM_WM_TRANSIENT_FOR, 1),
                        property(atoms->netState, longestList),
                        property(atoms->wmState, 1),
                        property(XCB_ATOM_WM_CLASS, longestText),
                        property(atoms->gtkApplicationId, longestText),
                        property(atoms->kdeDesktopFile, longestText),
                        property(atoms->pid, 1),
                        property(atoms->desktop, 1),
                        std::nullopt};
    if (tellsPids) {
        const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        questions.owner = xcb_res_query_client_ids(x.xcb(), 1, &wanted);
    }
    return questions;
}

std::optional<ClientWindow> ClientWindowReader::take(const Questions& questions,
                                                     bool tellsHidden) const {
    using Property = Reply<xcb_get_property_reply_t>;
    const auto reply = [this](xcb_get_property_cookie_t cookie) {
        return Property(xcb_get_property_reply(x.xcb(), cookie, nullptr));
    };
    const Property type = reply(questions.type);
    const Property transientFor = reply(questions.transientFor);
    const Property netState = reply(questions.netState);
    const Property wmState = reply(questions.wmState);
    const Property classes = reply(questions.classes);
    const Property gtkApplicationId = reply(questions.gtkApplicationId);
    const Property kdeDesktopFile = reply(questions.kdeDesktopFile);
    const Property pid = reply(questions.pid);
    const Property desktop = reply(questions.desktop);
    Reply<xcb_res_query_client_ids_reply_t> owner;
    if (questions.owner) {
        owner.reset(xcb_res_query_client_ids_reply(x.xcb(), *questions.owner, nullptr));
    }
    if (!type || !desktop) return std::nullopt;

    ClientWindow client;
    const auto parents = numbersIn(transientFor.get(), XCB_ATOM_WINDOW);
    if (!parents.empty() && parents.front() != x.root()) client.transientFor = parents.front();
    const auto kind = atoms->kindOf(numbersIn(type.get(), XCB_ATOM_ATOM));
    client.kind =
        kind.value_or(client.transientFor == XCB_WINDOW_NONE ? ClientWindow::Kind::normal
                                                             : ClientWindow::Kind::dialog);
    const auto states = numbersIn(netState.get(), XCB_ATOM_ATOM);
    const auto has = [&](xcb_atom_t state) {
        return std::find(states.begin(), states.end(), state) != states.end();
    };
    client.isModal = has(atoms->modal);
    const auto state = numbersIn(wmState.get(), atoms->wmState);
    client.isShaded = has(atoms->shaded);
    client.isIconic =
        tellsHidden ? has(atoms->hidden) : !state.empty() && state.front() == iconicState;
    const auto desktops = numbersIn(desktop.get(), XCB_ATOM_CARDINAL);
    if (!desktops.empty()) client.desktop = desktops.front();

    const std::string both = textIn(classes.get());
    client.instanceName = firstPart(both);
    if (client.instanceName.size() < both.size()) {
        client.className = firstPart(both.substr(client.instanceName.size() + 1));
    }
    client.gtkApplicationId = firstPart(textIn(gtkApplicationId.get()));
    client.kdeDesktopFile = firstPart(textIn(kdeDesktopFile.get()));

    // The server's own knowledge first: what a client says of itself is wrong in a pid namespace.
    if (owner) {
        for (auto ids = xcb_res_query_client_ids_ids_iterator(owner.get()); ids.rem > 0;
             xcb_res_client_id_value_next(&ids)) {
            if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) == 0) continue;
            if (xcb_res_client_id_value_value_length(ids.data) < 1) continue;
            client.pid = static_cast<std::int32_t>(*xcb_res_client_id_value_value(ids.data));
        }
    }
    const auto claimed = numbersIn(pid.get(), XCB_ATOM_CARDINAL);
    if (client.pid <= 0 && !claimed.empty())
        client.pid = static_cast<std::int32_t>(claimed.front());
    if (client.pid < 0) client.pid = 0;
    return client;
}

}  // namespace quorvel::native
