// Reading and moving windows of other programs, under real window managers and under none.

#include "tests/x11/WindowAccessFixture.hpp"

#include <algorithm>
#include <iostream>

namespace quorvel::test {
namespace {

struct Place {
    const char* name;
    Point (*origin)(const Rect& window, const Rect& display);
};

// Where a window stands of which only a sliver is to be seen.
constexpr Place places[]{
    {"left",
     [](const Rect& w, const Rect& d) {
         return Point{d.minX() - w.width + 2, w.y};
     }},
    {"right",
     [](const Rect& w, const Rect& d) {
         return Point{d.maxX() - 2, w.y};
     }},
    {"top left",
     [](const Rect& w, const Rect& d) {
         return Point{d.minX() - w.width + 2, d.minY()};
     }},
    {"bottom left",
     [](const Rect& w, const Rect& d) {
         return Point{d.minX() - w.width + 2, d.maxY() - w.height};
     }},
    {"top right",
     [](const Rect&, const Rect& d) {
         return Point{d.maxX() - 2, d.minY()};
     }},
    {"bottom right",
     [](const Rect& w, const Rect& d) {
         return Point{d.maxX() - 2, d.maxY() - w.height};
     }},
};

class WindowAccessOn : public testing::TestWithParam<MaybeManager>, public WindowAccessFixture {
protected:
    WindowAccessOn() : WindowAccessFixture({.windowManager = GetParam()}) {}

    /// Without a window manager nobody lists windows.
    xcb_window_t open(TestClient& client,
                      const TestWindow& window = {.area = {300, 200, 400, 300}}) {
        if (GetParam()) return session.open(client, window);
        const xcb_window_t opened = client.open(window);
        EXPECT_TRUE(waitUntil([&] { return session.probe().isViewable(opened); }));
        return opened;
    }

    /// A window of another process.
    ChildProcess start(std::vector<std::string> arguments, const std::string& windowClass,
                       xcb_window_t& window) {
        if (GetParam()) return session.startAndWaitForWindow(arguments, windowClass, window);
        ChildProcess process = session.start(arguments);
        const auto find = [&] {
            for (const xcb_window_t candidate : session.probe().stacking()) {
                if (!session.probe().isViewable(candidate)) continue;
                const std::string names =
                    session.probe().connection().propertyText(candidate, "WM_CLASS");
                if (names.find(windowClass) == std::string::npos) continue;
                window = candidate;
                return true;
            }
            return false;
        };
        EXPECT_TRUE(waitUntil(find));
        return process;
    }

    void tuckEverywhereAndBack(xcb_window_t window) {
        settle(window);
        const AXWindow handle = this->handle(window);
        const Rect original = frame(handle);
        EXPECT_EQ(original, seen(window));
        for (const Place& place : places) {
            SCOPED_TRACE(place.name);
            const Point to = place.origin(original, display);
            access().hold(handle, original);
            EXPECT_EQ(access().setOrigin(handle, to, MoveStep::final), 0);
            const Rect tucked{to.x, to.y, original.width, original.height};
            EXPECT_EQ(frame(handle), tucked);
            EXPECT_EQ(seen(window), tucked);
            turn();
            access().letGo(handle, EndOfHold::putBack);
            EXPECT_EQ(access().setOrigin(handle, original.origin(), MoveStep::final), 0);
            EXPECT_EQ(frame(handle), original);
            EXPECT_EQ(seen(window), original);
            turn();
        }
        // Nor does it wander off afterwards.
        EXPECT_TRUE(neverWithin(200ms, [&] { return seen(window) != original; }))
            << testing::PrintToString(seen(window));
    }
};

TEST_P(WindowAccessOn, PlainWindowIsTuckedToThePixelAndPutBack) {
    TestClient client(session.displayName());
    tuckEverywhereAndBack(open(client));
}

TEST_P(WindowAccessOn, TerminalIsTuckedToThePixelAndPutBack) {
    xcb_window_t window = XCB_WINDOW_NONE;
    const ChildProcess process = start({"xterm", "-geometry", "60x20+300+200"}, "xterm", window);
    tuckEverywhereAndBack(window);
}

TEST_P(WindowAccessOn, WindowWithItsOwnDecorationsIsTuckedToThePixelAndPutBack) {
    xcb_window_t window = XCB_WINDOW_NONE;
    const ChildProcess process = start({"gedit", "--standalone"}, "gedit", window);
    tuckEverywhereAndBack(window);
}

TEST_P(WindowAccessOn, ShadowThatAWindowDrawsItselfDoesNotCount) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    client.withdraw(window);
    const XProbe& probe = session.probe();
    ASSERT_TRUE(waitUntil([&] { return !GetParam() || !probe.isManaged(window); }));
    client.connection().setProperty32(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {26, 27, 23, 29});
    // No decorations from outside, as programs ask that draw their own (Motif's hints).
    client.connection().setProperty32(window, "_MOTIF_WM_HINTS", "_MOTIF_WM_HINTS",
                                      {2, 0, 0, 0, 0});
    client.map(window);
    ASSERT_TRUE(waitUntil([&] { return probe.isViewable(window); }));
    settle(window);
    EXPECT_EQ(frame(handle(window)).size(), (Size{400 - 53, 300 - 52}));
    tuckEverywhereAndBack(window);
    EXPECT_EQ(probe.clientArea(window).value_or(Rect{}).size(), (Size{400, 300}));
}

TEST_P(WindowAccessOn, FirstFrameOfTheFirstSlideIsNotBesideItsPlace) {
    TestClient client(session.displayName());
    const xcb_window_t plain = open(client);
    xcb_window_t terminal = XCB_WINDOW_NONE;
    const ChildProcess process = start({"xterm", "-geometry", "60x20+300+200"}, "xterm", terminal);
    for (const xcb_window_t window : {plain, terminal}) {
        settle(window);
        EXPECT_EQ(access().setOrigin(handle(window), {500, 300}, MoveStep::intermediate), 0);
        EXPECT_TRUE(waitUntil(
            [&] {
                return seen(window).origin() == Point{500, 300};
            },
            1s))
            << testing::PrintToString(seen(window));
    }
}

TEST_P(WindowAccessOn, SlideEndsWhereItWasSentAndComesBack) {
    TestClient client(session.displayName());
    const xcb_window_t window = open(client);
    const AXWindow handle = this->handle(window);
    const Rect original = frame(handle);
    std::vector<double> durations;
    for (int round = 0; round < 3; ++round) {
        const Point tucked{display.minX() - original.width + 2, original.y};
        const Point revealed{display.minX(), original.y};
        access().hold(handle, original);
        const auto collect = [&](Point from, Point to) {
            const auto some = slide(handle, from, to);
            durations.insert(durations.end(), some.begin(), some.end());
            EXPECT_EQ(seen(window), (Rect{to.x, to.y, original.width, original.height}));
        };
        collect(original.origin(), tucked);
        collect(tucked, revealed);
        collect(revealed, tucked);
        access().letGo(handle, EndOfHold::putBack);
        collect(tucked, original.origin());
    }
    std::sort(durations.begin(), durations.end());
    const double median = durations[durations.size() / 2];
    RecordProperty("medianMillisecondsPerFrame", std::to_string(median));
    std::cout << nameOf(GetParam()) << ": a frame of a slide takes " << median << " ms (median), "
              << durations.back() << " ms (most)\n";
    EXPECT_LT(median, 8) << "half of what a frame has";
}

TEST_P(WindowAccessOn, RaisedTuckedWindowStaysWhereItIs) {
    TestClient client(session.displayName());
    const xcb_window_t lower = open(client);
    const xcb_window_t upper = open(client, {.area = {350, 250, 400, 300}, .colour = 0x884400});
    ASSERT_TRUE(waitUntil([&] { return session.probe().isAbove(upper, lower); }));
    const AXWindow handle = this->handle(lower);
    const Rect original = frame(handle);
    EXPECT_EQ(access().setOrigin(handle, {2 - original.width, original.y}, MoveStep::final), 0);
    const xcb_window_t focus = session.probe().inputFocus();
    access().raise(handle);
    EXPECT_TRUE(waitUntil([&] { return session.probe().isAbove(lower, upper); }));
    const auto changed = [&] {
        return seen(lower).origin() != Point{2 - original.width, original.y} ||
               session.probe().inputFocus() != focus;
    };
    EXPECT_TRUE(neverWithin(200ms, changed)) << testing::PrintToString(seen(lower));
}

INSTANTIATE_TEST_SUITE_P(, WindowAccessOn, testing::ValuesIn(allManagersAndNone()),
                         [](const auto& tested) { return nameOf(tested.param); });

}  // namespace
}  // namespace quorvel::test
