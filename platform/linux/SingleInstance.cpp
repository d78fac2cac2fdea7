#include "platform/linux/SingleInstance.hpp"

#include <unistd.h>

#include <string>
#include <utility>

namespace quorvel::native {
namespace {

constexpr const char* callType = "_QUORVEL_SHOW_SETTINGS";

}  // namespace

SingleInstance::SingleInstance(XConnection& x) : x(x) {
    xcb_connection_t* const c = x.xcb();
    const xcb_atom_t selection = x.atom("_QUORVEL_INSTANCE_" + std::to_string(getuid()));
    const xcb_window_t own = xcb_generate_id(c);
    xcb_create_window(c, 0, own, x.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    // Nobody else may ask in between.
    xcb_grab_server(c);
    const Reply<xcb_get_selection_owner_reply_t> before(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr));
    first = before && before->owner == XCB_NONE;
    if (first) {
        xcb_set_selection_owner(c, own, selection, XCB_CURRENT_TIME);
    } else {
        xcb_destroy_window(c, own);
    }
    owner = first ? own : before ? before->owner : xcb_window_t{XCB_WINDOW_NONE};
    xcb_ungrab_server(c);
    x.flush();
}

void SingleInstance::callFirst() {
    if (first || owner == XCB_WINDOW_NONE) return;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner;
    message.type = x.atom(callType);
    // To the one that made the window. That it has just gone is no news.
    x.check(xcb_send_event_checked(x.xcb(), 0, owner, XCB_EVENT_MASK_NO_EVENT,
                                   reinterpret_cast<const char*>(&message)));
}

Subscription SingleInstance::onCall(std::function<void()> handler) {
    return x.onEvent([this, type = x.atom(callType),
                      handler = std::move(handler)](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE) return;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (first && message.window == owner && message.type == type) handler();
    });
}

}  // namespace quorvel::native
