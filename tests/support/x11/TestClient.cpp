#include "tests/support/x11/TestClient.hpp"

namespace quorvel::test {

TestClient::TestClient(const std::string& displayName) : client(displayName) {}

TestClient::TestClient(const std::string& displayName, const TestWindow& window)
    : client(displayName) {
    open(window);
}

xcb_window_t TestClient::open(const TestWindow& window) {
    xcb_connection_t* const x = client.xcb();
    last = xcb_generate_id(x);
    const std::uint32_t values[] = {
        window.colour, window.overrideRedirect ? 1U : 0U,
        XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(
        x, XCB_COPY_FROM_PARENT, last, client.root(), static_cast<std::int16_t>(window.area.x),
        static_cast<std::int16_t>(window.area.y), static_cast<std::uint16_t>(window.area.width),
        static_cast<std::uint16_t>(window.area.height), window.serverBorder,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);

    client.setPropertyText(last, "WM_NAME", "STRING", window.title);
    client.setPropertyText(last, "_NET_WM_NAME", "UTF8_STRING", window.title);
    client.setPropertyText(last, "WM_CLASS", "STRING",
                           window.instance + '\0' + window.className + '\0');
    client.setProperty32(last, "WM_PROTOCOLS", "ATOM", {client.atom("WM_DELETE_WINDOW")});

    // WM_NORMAL_HINTS: flags, position and size (obsolete, but i3 reads them), min, max, increment,
    // aspects, base, gravity.
    std::vector<std::uint32_t> hints(18, 0);
    hints[0] = 1U | 2U | 512U;  // the user's position and size; a gravity
    hints[1] = static_cast<std::uint32_t>(window.area.x);
    hints[2] = static_cast<std::uint32_t>(window.area.y);
    hints[3] = static_cast<std::uint32_t>(window.area.width);
    hints[4] = static_cast<std::uint32_t>(window.area.height);
    hints[17] = XCB_GRAVITY_NORTH_WEST;
    if (window.fixedSize) {
        hints[0] |= 16U | 32U;
        hints[5] = hints[7] = static_cast<std::uint32_t>(window.area.width);
        hints[6] = hints[8] = static_cast<std::uint32_t>(window.area.height);
    }
    client.setProperty32(last, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", hints);
    client.setProperty32(last, "WM_HINTS", "WM_HINTS",
                         {1U | 2U, window.takesKeyboard ? 1U : 0U, 1, 0, 0, 0, 0, 0, 0});
    if (window.pid != 0) client.setProperty32(last, "_NET_WM_PID", "CARDINAL", {window.pid});
    if (window.transientFor != 0) {
        client.setProperty32(last, "WM_TRANSIENT_FOR", "WINDOW", {window.transientFor});
    }
    if (!window.type.empty()) {
        client.setProperty32(last, "_NET_WM_WINDOW_TYPE", "ATOM",
                             {client.atom("_NET_WM_WINDOW_TYPE_" + window.type)});
    }
    if (!window.desktopFile.empty()) {
        client.setPropertyText(last, "_KDE_NET_WM_DESKTOP_FILE", "UTF8_STRING", window.desktopFile);
    }
    if (!window.gtkApplicationId.empty()) {
        client.setPropertyText(last, "_GTK_APPLICATION_ID", "UTF8_STRING", window.gtkApplicationId);
    }
    map(last);
    return last;
}

void TestClient::destroy(xcb_window_t window) {
    xcb_destroy_window(client.xcb(), window);
    client.sync();
}

void TestClient::withdraw(xcb_window_t window) {
    xcb_unmap_window(client.xcb(), window);
    // ICCCM 4.1.4: a synthetic event, for the case that it is iconic already.
    xcb_unmap_notify_event_t event{};
    event.response_type = XCB_UNMAP_NOTIFY;
    event.event = client.root();
    event.window = window;
    xcb_send_event(client.xcb(), 0, client.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    client.sync();
}

void TestClient::map(xcb_window_t window) {
    xcb_map_window(client.xcb(), window);
    client.sync();
}

void TestClient::move(xcb_window_t window, int x, int y) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    xcb_configure_window(client.xcb(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
    client.sync();
}

void TestClient::resize(xcb_window_t window, int width, int height) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(width),
                                    static_cast<std::uint32_t>(height)};
    xcb_configure_window(client.xcb(), window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    client.sync();
}

std::uint8_t TestClient::grabKey(xcb_keycode_t keycode, std::uint16_t modifiers) {
    const XReply<xcb_generic_error_t> error(xcb_request_check(
        client.xcb(), xcb_grab_key_checked(client.xcb(), 1, client.root(), modifiers, keycode,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    return error ? error->error_code : 0;
}

void TestClient::ungrabKey(xcb_keycode_t keycode, std::uint16_t modifiers) {
    xcb_ungrab_key(client.xcb(), keycode, client.root(), modifiers);
    client.sync();
}

}  // namespace quorvel::test
