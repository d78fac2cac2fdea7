// What goes wrong between us, the windows and the window manager.

#include <signal.h>

#include "tests/x11/TinyManager.hpp"
#include "tests/x11/WindowAccessFixture.hpp"

namespace quorvel::test {
namespace {

constexpr double callLimit = 250;  // milliseconds

class WindowAccessTrouble : public WindowAccessFixture {
public:
    using WindowAccessFixture::WindowAccessFixture;

    /// A final step; what it took must stay below the limit of a call.
    std::int32_t move(AXWindow window, Point to, MoveStep step = MoveStep::final) {
        turn();
        const auto start = std::chrono::steady_clock::now();
        const std::int32_t result = access().setOrigin(window, to, step);
        EXPECT_LT(millisecondsSince(start), callLimit);
        return result;
    }

    xcb_window_t openUnlisted(TestClient& client, const TestWindow& window) {
        const xcb_window_t opened = client.open(window);
        EXPECT_TRUE(waitUntil([&] { return session.probe().isViewable(opened); }));
        return opened;
    }
};

constexpr Rect area{300, 200, 400, 300};

class TroubleOn : public testing::TestWithParam<MaybeManager>, public WindowAccessTrouble {
protected:
    TroubleOn() : WindowAccessTrouble({.windowManager = GetParam()}) {}

    xcb_window_t open(TestClient& client) {
        return GetParam() ? session.open(client, {.area = area})
                          : openUnlisted(client, {.area = area});
    }
};

TEST_P(TroubleOn, WindowThatIsGoneHasNoFrameAndTakesNoMove) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    const Rect original = frame(handle);
    EXPECT_EQ(move(handle, {50, 60}, MoveStep::intermediate), 0);
    client.destroy(window);
    // First while its end has not been handed out yet, then when it has.
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(access().setOrigin(handle, {70, 80}, MoveStep::intermediate), -1);
        EXPECT_EQ(access().setOrigin(handle, {70, 80}, MoveStep::final), -1);
        EXPECT_FALSE(access().readFrame(handle).positionAX);
        EXPECT_FALSE(access().readFrame(handle).size);
        access().raise(handle);
        access().hold(handle, original);
        access().letGo(handle, EndOfHold::putBack);
        turn();
    }
}

TEST_P(TroubleOn, WithdrawnWindowHasNoFrameUntilItIsBack) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    client.withdraw(window);
    EXPECT_TRUE(waitUntil([&] { return !access().readFrame(handle).positionAX; }));
    client.map(window);
    EXPECT_TRUE(waitUntil([&] { return access().readFrame(handle).positionAX.has_value(); }));
    EXPECT_TRUE(waitUntil([&] { return frame(handle) == seen(window); }));
}

TEST_P(TroubleOn, StoppedProgramIsMovedInTime) {
    xcb_window_t window = XCB_WINDOW_NONE;
    ChildProcess process = session.start({"xterm", "-geometry", "60x20+300+200"});
    const auto find = [&] {
        for (const xcb_window_t candidate : session.probe().stacking()) {
            if (GetParam()) break;
            const auto names = session.probe().connection().propertyText(candidate, "WM_CLASS");
            if (names.starts_with("xterm")) window = candidate;
        }
        if (GetParam()) window = session.probe().windowOfClass("xterm");
        return window != XCB_WINDOW_NONE && session.probe().isViewable(window);
    };
    ASSERT_TRUE(waitUntil(find));
    settle(window);
    process.signal(SIGSTOP);
    const AXWindow handle = this->handle(window);
    const Rect original = frame(handle);
    const Point tucked{sliver - original.width, original.y};
    access().hold(handle, original);
    EXPECT_EQ(move(handle, tucked), 0);
    EXPECT_EQ(seen(window).origin(), tucked);
    access().letGo(handle, EndOfHold::putBack);
    EXPECT_EQ(move(handle, original.origin()), 0);
    EXPECT_EQ(seen(window), original);
    process.signal(SIGCONT);
}

TEST_P(TroubleOn, PropertiesOfAnyContentDoNoHarm) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const XClient& other = client.connection();
    const AXWindow handle = this->handle(window);
    const Rect original = seen(window);
    const std::vector<std::vector<std::uint32_t>> contents{
        {}, {1}, {~0U, ~0U, ~0U, ~0U}, {40000, 0, 0, 0}, {500, 500, 500, 500}};
    for (const auto& content : contents) {
        for (const char* type : {"CARDINAL", "STRING", "ATOM"}) {
            other.setProperty32(window, "_GTK_FRAME_EXTENTS", type, content);
            other.setProperty32(window, "WM_NORMAL_HINTS", type, content);
            other.sync();
            const Rect now = frame(handle);
            EXPECT_GT(now.width, 0);
            EXPECT_GT(now.height, 0);
            EXPECT_GE(move(handle, {original.x, original.y}, MoveStep::intermediate), -1);
        }
    }
    other.setPropertyText(window, "_GTK_FRAME_EXTENTS", "CARDINAL", "text of 8 bits");
    other.setPropertyText(window, "_NET_WM_STATE", "ATOM", "text");
    other.sync();
    EXPECT_GT(frame(handle).width, 0);
}

// A move past the window manager is undone when the owner resizes the window, unless both agree
// on where it stands.
TEST_P(TroubleOn, WindowManagerKnowsWhereARevealedAndAReturnedWindowStand) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    const Rect original = frame(handle);
    const Point tucked{sliver - original.width, original.y};
    const Point revealed{0, original.y};
    access().hold(handle, original);
    slide(handle, original.origin(), tucked);
    slide(handle, tucked, revealed);
    client.resize(window, 420, 310);
    const auto grown = [&] { return seen(window).width == original.width + 20; };
    EXPECT_TRUE(waitUntil(grown));
    settle(window);
    EXPECT_EQ(seen(window).origin(), revealed);

    const Point tuckedAgain{sliver - original.width - 20, original.y};
    slide(handle, revealed, tuckedAgain);
    access().letGo(handle, EndOfHold::putBack);
    slide(handle, tuckedAgain, original.origin());
    client.resize(window, 400, 300);
    EXPECT_TRUE(waitUntil([&] { return seen(window).width == original.width; }));
    settle(window);
    EXPECT_EQ(seen(window), original);
}

TEST_P(TroubleOn, WindowBroughtBackToADisplayThatIsGoneComesOntoTheNearest) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    displays = {{0, 0, 640, 800}, {640, 0, 640, 800}};
    EXPECT_EQ(move(handle, {780, 200}), 0);
    settle(window);
    const Rect original = seen(window);
    access().hold(handle, original);
    EXPECT_EQ(move(handle, {1278, 200}), 0);
    displays.pop_back();
    access().letGo(handle, EndOfHold::putBack);
    EXPECT_EQ(move(handle, original.origin()), 0);
    EXPECT_EQ(seen(window), (Rect{640 - original.width, 200, original.width, original.height}));
    // Only on the way home: any other move goes where it was sent.
    EXPECT_EQ(move(handle, {1000, 100}), 0);
    EXPECT_EQ(seen(window).origin(), (Point{1000, 100}));
}

TEST_P(TroubleOn, OriginOfThePrimaryDisplayIsTheOriginOfAllPlaces) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    displays = {{640, 100, 640, 700}, {0, 0, 640, 800}};
    const Rect inRoot = seen(window);
    EXPECT_EQ(frame(handle).origin(), (Point{inRoot.x - 640, inRoot.y - 100}));
    EXPECT_EQ(move(handle, {-500, 60}), 0);
    EXPECT_EQ(seen(window).origin(), (Point{140, 160}));
    // As during hot-plug.
    displays.clear();
    EXPECT_EQ(frame(handle).origin(), (Point{-500, 60}));
}

INSTANTIATE_TEST_SUITE_P(, TroubleOn, testing::ValuesIn(allManagersAndNone()),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST(WindowAccessTroubleTest, WindowManagersAreReplacedWhileAWindowIsTucked) {
    WindowAccessTrouble desktop({.windowManager = WindowManagerKind::openbox});
    TestClient client(desktop.session.displayName());
    const xcb_window_t window = desktop.session.open(client, {.area = area});
    const AXWindow handle = desktop.handle(window);
    const std::vector<WindowManagerKind> order{WindowManagerKind::openbox, WindowManagerKind::kwin,
                                               WindowManagerKind::marco, WindowManagerKind::i3,
                                               WindowManagerKind::xfwm4};
    for (const WindowManagerKind kind : order) {
        SCOPED_TRACE(nameOf(kind));
        if (kind != order.front()) {
            desktop.session.stopWindowManager();
            // In between there is none, which is a desktop too.
            EXPECT_TRUE(waitUntil([&] { return desktop.frame(handle) == desktop.seen(window); }));
            EXPECT_EQ(desktop.move(handle, {250, 150}), 0);
            EXPECT_EQ(desktop.seen(window).origin(), (Point{250, 150}));
            desktop.session.startWindowManager(kind);
            EXPECT_TRUE(waitUntil([&] { return desktop.session.probe().isManaged(window); }));
        }
        desktop.settle(window);
        // A window that changes hands counts for a while as where it was.
        EXPECT_TRUE(waitUntil([&] { return desktop.frame(handle) == desktop.seen(window); }));
        const Rect original = desktop.frame(handle);
        desktop.access().hold(handle, original);
        const Point tucked{2 - original.width, original.y};
        EXPECT_EQ(desktop.move(handle, tucked), 0);
        EXPECT_EQ(desktop.seen(window).origin(), tucked);
    }
}

TEST(WindowAccessTroubleTest, TileIsNotMovedAndTheMoveIsRefused) {
    WindowAccessTrouble desktop({.windowManager = WindowManagerKind::i3});
    TestClient client(desktop.session.displayName());
    const xcb_window_t window = desktop.session.open(client, {.area = area});
    const AXWindow handle = desktop.handle(window);
    desktop.session.start({"i3-msg", "floating disable"}).waitForExit();
    ASSERT_TRUE(waitUntil([&] { return desktop.seen(window).width > 1200; }));
    desktop.settle(window);
    const Rect original = desktop.seen(window);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(desktop.move(handle, {2 - original.width, original.y}), -1);
        EXPECT_EQ(desktop.seen(window), original);
    }
    // Floating again, it is moved.
    desktop.session.start({"i3-msg", "floating enable"}).waitForExit();
    ASSERT_TRUE(waitUntil([&] { return desktop.seen(window).width < 1200; }));
    desktop.settle(window);
    const Rect floating = desktop.seen(window);
    EXPECT_EQ(desktop.move(handle, {2 - floating.width, floating.y}), 0);
    EXPECT_EQ(desktop.seen(window).origin(), (Point{2 - floating.width, floating.y}));
}

/// A desktop under a window manager that nobody has heard of, with one window.
struct UnknownDesktop : WindowAccessTrouble {
    explicit UnknownDesktop(TinyManager::Behaviour behaviour)
        : WindowAccessTrouble({.windowManager = std::nullopt}),
          manager(session.displayName(), std::move(behaviour)),
          client(session.displayName()),
          window(openUnlisted(client, {.area = area})),
          handle(WindowAccessTrouble::handle(window)) {}

    TinyManager manager;
    TestClient client;
    xcb_window_t window;
    AXWindow handle;
};

Point keptOnScreen(const Rect& now, Point asked) {
    return {std::clamp(asked.x, 0.0, 1280 - now.width), std::clamp(asked.y, 0.0, 800 - now.height)};
}

TEST(WindowAccessTroubleTest, WindowManagerThatIgnoresEverythingRefuses) {
    for (const bool knowsTheMessage : {true, false}) {
        UnknownDesktop desktop({.onMessage = knowsTheMessage ? TinyManager::ignores : nullptr,
                                .onConfigure = TinyManager::ignores});
        for (const Point to : {Point{-398, 200}, Point{500, 100}}) {
            EXPECT_EQ(desktop.move(desktop.handle, to), -1);
            EXPECT_EQ(desktop.seen(desktop.window), area);
        }
        EXPECT_GT(desktop.manager.requests(), 0);
    }
}

TEST(WindowAccessTroubleTest, UnknownWindowManagerThatKeepsWindowsOnScreenIsPassedBy) {
    UnknownDesktop desktop({.onMessage = keptOnScreen, .onConfigure = keptOnScreen});
    desktop.access().hold(desktop.handle, area);
    EXPECT_EQ(desktop.move(desktop.handle, {-398, 200}), 0);
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{-398, 200}));
    // It is asked no more for what it does not do.
    desktop.access().letGo(desktop.handle, EndOfHold::putBack);
    EXPECT_EQ(desktop.move(desktop.handle, area.origin()), 0);
    EXPECT_EQ(desktop.seen(desktop.window), area);
    const int requests = desktop.manager.requests();
    desktop.slide(desktop.handle, area.origin(), {1278, 200});
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{1278, 200}));
    // Nor for going where it believes the window to be all the time.
    desktop.slide(desktop.handle, {1278, 200}, area.origin());
    EXPECT_EQ(desktop.seen(desktop.window), area);
    EXPECT_EQ(desktop.manager.requests(), requests);
}

TEST(WindowAccessTroubleTest, WindowThatStandsAtTheBorderIsNotTakenForATile) {
    UnknownDesktop desktop({.onMessage = keptOnScreen, .onConfigure = keptOnScreen});
    EXPECT_EQ(desktop.move(desktop.handle, {0, 0}), 0);
    EXPECT_EQ(desktop.move(desktop.handle, {-398, 0}), 0);
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{-398, 0}));
}

TEST(WindowAccessTroubleTest, FirstSlideUnderAnUnknownWindowManagerLeavesTheScreen) {
    UnknownDesktop desktop({.onMessage = keptOnScreen, .onConfigure = keptOnScreen});
    int framesOffScreen = 0;
    for (int i = 1; i <= 10; ++i) {
        const Point to{300.0 - 70 * i, 200};
        EXPECT_EQ(desktop.move(desktop.handle, to, MoveStep::intermediate), 0);
        if (desktop.seen(desktop.window).x < 0) ++framesOffScreen;
    }
    EXPECT_EQ(framesOffScreen, 6);
}

TEST(WindowAccessTroubleTest, MessageThatIsAnnouncedAndIgnoredIsReplacedByARequest) {
    UnknownDesktop desktop({.onMessage = TinyManager::ignores, .onConfigure = TinyManager::obeys});
    for (const Point to : {Point{-398, 200}, Point{500, 100}}) {
        EXPECT_EQ(desktop.move(desktop.handle, to), 0);
        EXPECT_EQ(desktop.seen(desktop.window).origin(), to);
    }
    const int requests = desktop.manager.requests();
    EXPECT_EQ(desktop.move(desktop.handle, {100, 100}), 0);
    EXPECT_EQ(desktop.manager.requests(), requests + 1) << "what works is remembered";
}

TEST(WindowAccessTroubleTest, WindowManagerThatPutsWindowsBesideThePlaceIsCorrectedOnce) {
    const auto beside = [](const Rect&, Point asked) { return Point{asked.x - 3, asked.y + 17}; };
    UnknownDesktop desktop({.onMessage = beside, .onConfigure = beside});
    EXPECT_EQ(desktop.move(desktop.handle, {-398, 200}), 0);
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{-398, 200}));
    EXPECT_EQ(desktop.manager.requests(), 2);
    EXPECT_EQ(desktop.move(desktop.handle, {100, 100}), 0);
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{100, 100}));
    EXPECT_EQ(desktop.manager.requests(), 3) << "the correction is remembered";
}

// Else it is taken for where the one before was tucked to, and put back there.
TEST(WindowAccessTroubleTest, AWindowWithTheIdentifierOfOneThatWasHeldStandsWhereItIsSeen) {
    WindowAccessTrouble desktop({.windowManager = WindowManagerKind::openbox});
    std::optional<TestClient> client(std::in_place, desktop.session.displayName());
    const xcb_window_t first = desktop.session.open(*client, {.area = area});
    const AXWindow held = desktop.handle(first);
    const Rect home = desktop.frame(held);
    desktop.access().hold(held, home);
    ASSERT_EQ(desktop.move(held, {2 - home.width, home.y}), 0);
    ASSERT_EQ(desktop.frame(held).x, 2 - home.width);

    client.reset();
    client.emplace(desktop.session.displayName());
    const xcb_window_t second = desktop.session.open(*client, {.area = area});
    ASSERT_EQ(second, first) << "the server has given it another identifier";
    const AXWindow anew = desktop.handle(second);
    ASSERT_NE(anew, held);
    EXPECT_EQ(desktop.frame(anew), desktop.seen(second));
}

TEST(WindowAccessTroubleTest, WhatWasLearntEndsWithTheWindowManager) {
    const auto beside = [](const Rect&, Point asked) { return Point{asked.x - 3, asked.y + 17}; };
    WindowAccessTrouble desktop({.windowManager = std::nullopt});
    TestClient client(desktop.session.displayName());
    auto manager = std::make_unique<TinyManager>(
        desktop.session.displayName(),
        TinyManager::Behaviour{.onMessage = beside, .onConfigure = beside});
    const xcb_window_t window = desktop.openUnlisted(client, {.area = area});
    const AXWindow handle = desktop.handle(window);
    EXPECT_EQ(desktop.move(handle, {100, 100}), 0);
    EXPECT_EQ(manager->requests(), 2);

    // The next one may well be given the identifiers of the one before.
    manager.reset();
    manager = std::make_unique<TinyManager>(
        desktop.session.displayName(),
        TinyManager::Behaviour{.onMessage = TinyManager::obeys, .onConfigure = TinyManager::obeys});
    EXPECT_EQ(desktop.move(handle, {500, 100}), 0);
    EXPECT_EQ(desktop.seen(window).origin(), (Point{500, 100}));
    EXPECT_EQ(manager->requests(), 1);
}

TEST(WindowAccessTroubleTest, CompositedDesktopThatPaintsFramesElsewhereKeepsTheClamp) {
    UnknownDesktop desktop(
        {.onMessage = keptOnScreen, .onConfigure = keptOnScreen, .name = "Mutter"});
    EXPECT_EQ(desktop.move(desktop.handle, {-398, 200}), 0);
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{0, 200}));
    EXPECT_EQ(desktop.frame(desktop.handle).origin(), (Point{0, 200}));
}

TEST(WindowAccessTroubleTest, WindowThatCannotLeaveItsStateIsMovedWithIt) {
    UnknownDesktop desktop(
        {.onMessage = TinyManager::ignores, .onConfigure = TinyManager::ignores});
    const XClient& client = desktop.client.connection();
    client.setProperty32(desktop.window, "_NET_WM_STATE", "ATOM",
                         {client.atom("_NET_WM_STATE_FULLSCREEN")});
    client.sync();
    desktop.access().hold(desktop.handle, area);
    desktop.slide(desktop.handle, area.origin(), {-398, 200});
    EXPECT_EQ(desktop.seen(desktop.window).origin(), (Point{-398, 200}));
    // Nothing is waited for a second time.
    const auto start = std::chrono::steady_clock::now();
    desktop.access().letGo(desktop.handle, EndOfHold::putBack);
    EXPECT_EQ(desktop.move(desktop.handle, area.origin()), 0);
    EXPECT_LT(WindowAccessFixture::millisecondsSince(start), 90);
    EXPECT_EQ(desktop.seen(desktop.window), area);
}

TEST(WindowAccessTroubleTest, StoppedWindowManagerCostsNoMoreThanTheLimit) {
    for (const WindowManagerKind kind : {WindowManagerKind::openbox, WindowManagerKind::kwin}) {
        SCOPED_TRACE(nameOf(kind));
        WindowAccessTrouble desktop({.windowManager = kind});
        TestClient client(desktop.session.displayName());
        const xcb_window_t window = desktop.session.open(client, {.area = area});
        const AXWindow handle = desktop.handle(window);
        const Rect original = desktop.frame(handle);
        desktop.session.windowManager()->signal(SIGSTOP);
        const bool canBePassed = kind == WindowManagerKind::openbox;
        const Point tucked{2 - original.width, original.y};
        EXPECT_EQ(desktop.move(handle, tucked), canBePassed ? 0 : -1);
        EXPECT_EQ(desktop.seen(window).origin(), canBePassed ? tucked : original.origin());
        desktop.session.windowManager()->signal(SIGCONT);
    }
}

}  // namespace
}  // namespace quorvel::test
