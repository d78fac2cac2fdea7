#include "platform/linux/SingleInstance.hpp"

namespace quorvel::native {

SingleInstance::SingleInstance(XConnection& x) {
    xcb_connection_t* const c = x.xcb();
    const xcb_atom_t selection = x.atom("_QUORVEL_INSTANCE");
    const xcb_window_t owner = xcb_generate_id(c);
    xcb_create_window(c, 0, owner, x.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    // Nobody else may ask in between.
    xcb_grab_server(c);
    const Reply<xcb_get_selection_owner_reply_t> before(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr));
    first = before && before->owner == XCB_NONE;
    if (first) {
        xcb_set_selection_owner(c, owner, selection, XCB_CURRENT_TIME);
    } else {
        xcb_destroy_window(c, owner);
    }
    xcb_ungrab_server(c);
    x.flush();
}

}  // namespace quorvel::native
