// Windows that fill the screen: out of that state while they are tucked, and back into it.

#include "tests/x11/WindowAccessFixture.hpp"

namespace quorvel::test {
namespace {

enum class Filling { maximized, fullscreen };

struct Case {
    WindowManagerKind manager;
    Filling filling;
};

std::vector<Case> cases() {
    std::vector<Case> all;
    for (const WindowManagerKind manager : allWindowManagers()) {
        // A tiling window manager knows no maximised windows.
        if (manager != WindowManagerKind::i3) all.push_back({manager, Filling::maximized});
        all.push_back({manager, Filling::fullscreen});
    }
    return all;
}

class FillingWindowOn : public testing::TestWithParam<Case>, public WindowAccessFixture {
protected:
    FillingWindowOn() : WindowAccessFixture({.windowManager = GetParam().manager}) {}

    void ask(xcb_window_t window, std::uint32_t action) {
        const XClient& client = session.probe().connection();
        if (GetParam().filling == Filling::fullscreen) {
            client.sendToRoot(window, "_NET_WM_STATE",
                              {action, client.atom("_NET_WM_STATE_FULLSCREEN"), 0, 2, 0});
        } else {
            client.sendToRoot(window, "_NET_WM_STATE",
                              {action, client.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                               client.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
        }
    }

    bool fills(xcb_window_t window) {
        const auto states = session.probe().netWmState(window);
        const auto has = [&](const char* name) {
            return std::find(states.begin(), states.end(), name) != states.end();
        };
        return GetParam().filling == Filling::fullscreen
                   ? has("_NET_WM_STATE_FULLSCREEN")
                   : has("_NET_WM_STATE_MAXIMIZED_VERT") && has("_NET_WM_STATE_MAXIMIZED_HORZ");
    }

    /// Has the window fill the screen; gives where it stood before.
    Rect fill(xcb_window_t window) {
        settle(window);
        const Rect normal = seen(window);
        ask(window, 1);
        EXPECT_TRUE(waitUntil([&] { return fills(window) && seen(window).width > 1200; }));
        settle(window);
        return normal;
    }

    Rect area(xcb_window_t window) { return session.probe().clientArea(window).value_or(Rect{}); }

    void tuckAndPutBack(xcb_window_t window, bool hasAnySize) {
        const Rect normal = fill(window);
        const Rect original = seen(window);
        const Rect originalArea = area(window);
        const AXWindow handle = this->handle(window);
        EXPECT_EQ(frame(handle), original);

        access().hold(handle, original);
        const Point tucked{sliver - original.width, original.y};
        slide(handle, original.origin(), tucked);
        settle(window);
        EXPECT_EQ(seen(window).origin(), tucked);
        if (hasAnySize) {
            EXPECT_EQ(seen(window).size(), original.size());
        } else {
            EXPECT_GE(seen(window).width, original.width);
            EXPECT_LT(seen(window).width, original.width + 20);
        }

        access().letGo(handle, EndOfHold::putBack);
        slide(handle, tucked, original.origin());
        EXPECT_TRUE(fills(window)) << "when the last step has returned";
        settle(window);
        EXPECT_EQ(seen(window), original);
        EXPECT_EQ(area(window), originalArea);

        // The size beneath is still known to the window manager.
        ask(window, 0);
        EXPECT_TRUE(waitUntil([&] { return seen(window) == normal; }))
            << testing::PrintToString(seen(window)) << " instead of "
            << testing::PrintToString(normal);
    }
};

TEST_P(FillingWindowOn, KeepsItsSizeWhileTuckedAndFillsAgainWhenBack) {
    TestClient client(session.displayName());
    tuckAndPutBack(session.open(client, {.area = {300, 200, 400, 300}}), true);
}

TEST_P(FillingWindowOn, TerminalThatGrowsByCharactersLeavesASliverToo) {
    xcb_window_t window = XCB_WINDOW_NONE;
    const ChildProcess process =
        session.startAndWaitForWindow({"xterm", "-geometry", "60x20+300+200"}, "xterm", window);
    tuckAndPutBack(window, false);
}

TEST_P(FillingWindowOn, ProgramWithItsOwnDecorationsReturnsToTheVeryState) {
    xcb_window_t window = XCB_WINDOW_NONE;
    const ChildProcess process =
        session.startAndWaitForWindow({"gedit", "--standalone"}, "gedit", window);
    tuckAndPutBack(window, true);
}

TEST_P(FillingWindowOn, ForgottenWindowStaysWithoutTheState) {
    TestClient client(session.displayName());
    const xcb_window_t window = session.open(client, {.area = {300, 200, 400, 300}});
    fill(window);
    const AXWindow handle = this->handle(window);
    access().hold(handle, frame(handle));
    EXPECT_TRUE(waitUntil([&] { return !fills(window); }));
    access().letGo(handle, EndOfHold::forgotten);
    EXPECT_EQ(access().setOrigin(handle, {0, 0}, MoveStep::final), 0);
    EXPECT_TRUE(neverWithin(200ms, [&] { return fills(window); }));
}

INSTANTIATE_TEST_SUITE_P(, FillingWindowOn, testing::ValuesIn(cases()), [](const auto& tested) {
    return nameOf(tested.param.manager) +
           (tested.param.filling == Filling::fullscreen ? "Fullscreen" : "Maximized");
});

}  // namespace
}  // namespace quorvel::test
