#pragma once

#include <string>

#include "tests/support/x11/XClient.hpp"

namespace quorvel::test {

struct TestWindow {
    std::string title = "Test window";
    std::string instance = "testclient";
    std::string className = "TestClient";
    Rect area{100, 100, 400, 300};  ///< asked for as the user's own wish
    std::uint32_t colour = 0x3366CC;
    std::uint32_t pid = 0;  ///< _NET_WM_PID; 0 leaves it out
    bool overrideRedirect = false;
    bool fixedSize = false;
    bool takesKeyboard = true;       ///< the input field of WM_HINTS
    xcb_window_t transientFor = 0;   ///< 0 for none
    std::string type{};              ///< "DIALOG", "DOCK", …; empty for none
    std::string desktopFile{};       ///< _KDE_NET_WM_DESKTOP_FILE; empty for none
    std::string gtkApplicationId{};  ///< _GTK_APPLICATION_ID; empty for none
    std::uint16_t serverBorder = 0;  ///< border_width asked for
};

/// An X client inside the test process, with a connection of its own. Painted by the server, so it
/// needs no loop of its own. Its windows belong to the test process; for windows of another
/// process see TestApplication.
class TestClient {
public:
    explicit TestClient(const std::string& displayName);
    TestClient(const std::string& displayName, const TestWindow& window);

    const XClient& connection() const { return client; }

    /// Creates and maps it; the result is the client window. Managed a little later.
    xcb_window_t open(const TestWindow& window);
    /// The one opened last.
    xcb_window_t window() const { return last; }

    void destroy(xcb_window_t window);
    void withdraw(xcb_window_t window);
    void map(xcb_window_t window);
    void move(xcb_window_t window, int x, int y);
    void resize(xcb_window_t window, int width, int height);

    /// Takes a key as another program's hot key: 0, or the X error.
    std::uint8_t grabKey(xcb_keycode_t keycode, std::uint16_t modifiers);
    void ungrabKey(xcb_keycode_t keycode, std::uint16_t modifiers);

private:
    XClient client;
    xcb_window_t last = XCB_WINDOW_NONE;
};

}  // namespace quorvel::test
