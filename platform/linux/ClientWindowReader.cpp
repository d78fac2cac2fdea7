#include "platform/linux/ClientWindowReader.hpp"

#include <xcb/res.h>

#include "platform/linux/WindowTree.hpp"

namespace quorvel::native {
namespace {

constexpr std::uint32_t longestText = 1024;  // in 32-bit units, as the next
constexpr std::uint32_t longestList = 64;

template <class... Items>
bool isOneOf(xcb_atom_t atom, Items... items) {
    return ((atom == items) || ...);
}

}  // namespace

struct ClientWindowReader::Questions {
    xcb_get_property_cookie_t type, transientFor, netState, wmState, classes, gtkApplicationId,
        kdeDesktopFile, pid, desktop;
    std::optional<xcb_res_query_client_ids_cookie_t> owner;
};

ClientWindowReader::ClientWindowReader(XConnection& x)
    : x(x), atoms([&x](const std::string& name) { return x.atom(name); }) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(x.xcb(), &xcb_res_id);
    tellsPids = extension != nullptr && extension->present != 0;
}

std::vector<std::pair<xcb_window_t, ClientWindow>> ClientWindowReader::read(
    const std::vector<xcb_window_t>& windows, bool tellsHidden) const {
    std::vector<Questions> asked;
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows) asked.push_back(ask(window));
    std::vector<std::pair<xcb_window_t, ClientWindow>> found;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if (auto client = clientWindowOf(take(asked[i]), atoms, x.root(), tellsHidden)) {
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
    if (isOneOf(property, atoms.wmState, atoms.netState, atoms.desktop)) return Concern::state;
    const bool isIdentity =
        isOneOf(property, atoms.type, atoms.gtkApplicationId, atoms.kdeDesktopFile, atoms.pid,
                xcb_atom_t{XCB_ATOM_WM_CLASS}, xcb_atom_t{XCB_ATOM_WM_TRANSIENT_FOR});
    return isIdentity ? Concern::identity : Concern::none;
}

ClientWindowReader::Questions ClientWindowReader::ask(xcb_window_t window) const {
    const auto property = [&](xcb_atom_t name, std::uint32_t length) {
        return xcb_get_property(x.xcb(), 0, window, name, XCB_ATOM_ANY, 0, length);
    };
    Questions questions{property(atoms.type, longestList),
                        property(XCB_ATOM_WM_TRANSIENT_FOR, 1),
                        property(atoms.netState, longestList),
                        property(atoms.wmState, 1),
                        property(XCB_ATOM_WM_CLASS, longestText),
                        property(atoms.gtkApplicationId, longestText),
                        property(atoms.kdeDesktopFile, longestText),
                        property(atoms.pid, 1),
                        property(atoms.desktop, 1),
                        std::nullopt};
    if (tellsPids) {
        const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        questions.owner = xcb_res_query_client_ids(x.xcb(), 1, &wanted);
    }
    return questions;
}

ClientWindowAnswers ClientWindowReader::take(const Questions& questions) const {
    const auto reply = [this](xcb_get_property_cookie_t cookie) {
        return ClientWindowAnswers::Property(xcb_get_property_reply(x.xcb(), cookie, nullptr));
    };
    ClientWindowAnswers answers{reply(questions.type),           reply(questions.transientFor),
                                reply(questions.netState),       reply(questions.wmState),
                                reply(questions.classes),        reply(questions.gtkApplicationId),
                                reply(questions.kdeDesktopFile), reply(questions.pid),
                                reply(questions.desktop),        nullptr};
    if (questions.owner) {
        answers.owner.reset(xcb_res_query_client_ids_reply(x.xcb(), *questions.owner, nullptr));
    }
    return answers;
}

}  // namespace quorvel::native
