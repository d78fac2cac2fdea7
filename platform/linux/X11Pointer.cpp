#include "platform/linux/X11Pointer.hpp"

namespace quorvel::native {

PointerState X11Pointer::read() const {
    return observed ? *observed : ask();
}

const PointerState& X11Pointer::observe() {
    return observed.emplace(ask());
}

PointerState X11Pointer::ask() const {
    constexpr Point elsewhere{-65536, -65536};
    const Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(x.xcb(), xcb_query_pointer(x.xcb(), x.root()), nullptr));
    if (!reply || reply->same_screen == 0) return {elsewhere, 0};
    const Point origin = screens.axOriginInRoot();
    constexpr unsigned buttons =
        XCB_KEY_BUT_MASK_BUTTON_1 | XCB_KEY_BUT_MASK_BUTTON_2 | XCB_KEY_BUT_MASK_BUTTON_3;
    return {{reply->root_x - origin.x, screens.primaryScreenMaxY() - (reply->root_y - origin.y)},
            (reply->mask & buttons) >> 8};
}

}  // namespace quorvel::native
