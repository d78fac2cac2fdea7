#include "tests/support/x11/XClient.hpp"

#include <cstring>
#include <stdexcept>

namespace quorvel::test {

XClient::XClient(const std::string& displayName) {
    int number = 0;
    connection = xcb_connect(displayName.c_str(), &number);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        throw std::runtime_error("no X server at " + displayName);
    }
    screenInfo = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
}

XClient::~XClient() {
    xcb_disconnect(connection);
}

xcb_atom_t XClient::atom(std::string_view name) const {
    if (const auto known = atoms.find(name); known != atoms.end()) return known->second;
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    if (!reply) return XCB_ATOM_NONE;
    atoms.emplace(name, reply->atom);
    return reply->atom;
}

std::string XClient::atomName(xcb_atom_t atom) const {
    const XReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr));
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

void XClient::sync() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

std::vector<std::uint32_t> XClient::property32(xcb_window_t window, std::string_view name) const {
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 65536),
        nullptr));
    if (!reply || reply->format != 32) return {};
    std::vector<std::uint32_t> items(
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / 4);
    if (!items.empty()) {
        std::memcpy(items.data(), xcb_get_property_value(reply.get()), items.size() * 4);
    }
    return items;
}

std::string XClient::propertyText(xcb_window_t window, std::string_view name) const {
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 65536),
        nullptr));
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

void XClient::setProperty32(xcb_window_t window, std::string_view name, std::string_view type,
                            const std::vector<std::uint32_t>& items) const {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 32,
                        static_cast<std::uint32_t>(items.size()), items.data());
}

void XClient::setPropertyText(xcb_window_t window, std::string_view name, std::string_view type,
                              std::string_view text) const {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

void XClient::sendToRoot(xcb_window_t window, std::string_view type,
                         const std::array<std::uint32_t, 5>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::memcpy(message.data.data32, data.data(), sizeof message.data.data32);
    xcb_send_event(connection, 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    sync();
}

}  // namespace quorvel::test
