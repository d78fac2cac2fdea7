// The rig itself: what every other test here stands on.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <fstream>

#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {
namespace {

constexpr std::uint32_t background = 0xFF00FE;

class RigOnWindowManager : public testing::TestWithParam<WindowManagerKind> {
protected:
    XSession session{{.windowManager = GetParam()}};
    TestClient client{session.displayName()};
    const XProbe& probe = session.probe();
};

TEST_P(RigOnWindowManager, WindowIsManagedAndActivated) {
    const xcb_window_t window = session.open(client, {});
    EXPECT_EQ(probe.wmState(window), 1U);
    probe.activate(window);
    EXPECT_TRUE(waitUntil([&] { return probe.activeWindow() == window; }));
    EXPECT_TRUE(waitUntil([&] { return probe.inputFocus() == window; }));
}

TEST_P(RigOnWindowManager, VisibleFrameIsWhatIsPainted) {
    probe.paintRoot(background);
    session.input().warpTo(1200, 780);
    const xcb_window_t window = session.open(client, {.area = {300, 200, 400, 300}});
    const auto agree = [&] {
        return probe.visibleFrame(window) == probe.boundsOfAllBut(background);
    };
    EXPECT_TRUE(waitUntil(agree, 5s));
    const Rect seen = probe.visibleFrame(window).value_or(Rect{});
    const Rect painted = probe.boundsOfAllBut(background).value_or(Rect{});
    EXPECT_EQ(seen, painted) << seen.x << ',' << seen.y << ' ' << seen.width << 'x' << seen.height
                             << " but " << painted.x << ',' << painted.y << ' ' << painted.width
                             << 'x' << painted.height;
    EXPECT_GE(seen.width, 400);
    EXPECT_GE(seen.height, 300);
}

TEST_P(RigOnWindowManager, NoKeyIsHeldByTheWindowManager) {
    TestClient other(session.displayName());
    std::string held;
    for (const KeyPosition& key : keyPositions()) {
        if (key.virtualCode == 0xFFFF) continue;
        for (std::uint16_t modifiers = 0; modifiers < 16; ++modifiers) {
            const std::uint16_t mask = static_cast<std::uint16_t>(
                (modifiers & 1 ? XCB_MOD_MASK_CONTROL : 0) | (modifiers & 2 ? XCB_MOD_MASK_1 : 0) |
                (modifiers & 4 ? XCB_MOD_MASK_SHIFT : 0) | (modifiers & 8 ? XCB_MOD_MASK_4 : 0));
            if (mask == 0) continue;
            if (other.grabKey(session.input().keycode(key.name), mask) != 0) {
                held += key.name + "+" + std::to_string(mask) + " ";
            }
        }
    }
    EXPECT_EQ(held, "");
}

INSTANTIATE_TEST_SUITE_P(, RigOnWindowManager, testing::ValuesIn(allWindowManagers()),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST(RigTest, ChordReachesAnotherClientsGrab) {
    XSession session;
    TestClient other(session.displayName());
    const xcb_keycode_t key = session.input().keycode("T");
    ASSERT_EQ(other.grabKey(key, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1), 0);
    session.input().chord({"Control", "Alt"}, "T");
    unsigned presses = 0;
    EXPECT_TRUE(waitUntil([&] {
        while (xcb_generic_event_t* event = xcb_poll_for_event(other.connection().xcb())) {
            const XReply<xcb_generic_event_t> owner(event);
            if ((event->response_type & 0x7F) != XCB_KEY_PRESS) continue;
            const auto* press = reinterpret_cast<const xcb_key_press_event_t*>(event);
            EXPECT_EQ(press->detail, key);
            ++presses;
        }
        return presses > 0;
    }));
    EXPECT_EQ(presses, 1U);
}

TEST(RigTest, MotionAndWarpMoveThePointer) {
    XSession session({.windowManager = std::nullopt});
    session.input().moveTo(123, 45);
    EXPECT_EQ(session.probe().pointer(), (Point{123, 45}));
    session.input().moveBy(10, -5);
    EXPECT_EQ(session.probe().pointer(), (Point{133, 40}));
    session.input().warpTo(7, 8);
    EXPECT_EQ(session.probe().pointer(), (Point{7, 8}));
}

TEST(RigTest, OutputsAreUnpluggedAndPluggedIn) {
    XSession session({.server = XServerKind::hotPlug, .windowManager = std::nullopt});
    const auto width = [&] {
        const XReply<xcb_get_geometry_reply_t> reply(
            xcb_get_geometry_reply(session.probe().connection().xcb(),
                                   xcb_get_geometry(session.probe().connection().xcb(),
                                                    session.probe().connection().root()),
                                   nullptr));
        return reply->width;
    };
    EXPECT_EQ(width(), 1280);
    session.server().plug("DUMMY1", 1280, 0);
    EXPECT_EQ(width(), 2560);
    session.server().plug("DUMMY2", 2560, 0, "1920x1080");
    EXPECT_EQ(width(), 4480);
    session.server().unplug("DUMMY2");
    session.server().unplug("DUMMY1");
    EXPECT_EQ(width(), 1280);
}

TEST(RigTest, RealProgramIsFoundByItsWindow) {
    XSession session;
    xcb_window_t window = 0;
    const ChildProcess xterm =
        session.startAndWaitForWindow({"xterm", "-e", "sleep", "1000"}, "XTerm", window);
    EXPECT_EQ(session.probe().pid(window), static_cast<std::uint32_t>(xterm.pid()));
    session.probe().screenshot(session.folder() / "screen.png");
    EXPECT_GT(std::filesystem::file_size(session.folder() / "screen.png"), 500U);
}

TEST(RigTest, NothingSurvivesTheSession) {
    std::filesystem::path folder;
    pid_t inner = 0;
    {
        XSession session({.windowManager = WindowManagerKind::xfwm4});
        folder = session.folder().path();
        // Leaves its process group, as a program does that is launched by another.
        ChildProcess outer = session.start(
            {"sh", "-c", "setsid -f sh -c 'echo $$ > \"$HOME/pid\"; exec sleep 1000'"});
        ASSERT_TRUE(waitUntil([&] {
            return std::filesystem::exists(folder / "home/pid") &&
                   std::filesystem::file_size(folder / "home/pid") > 0;
        }));
        const FileDescriptor file(open((folder / "home/pid").c_str(), O_RDONLY));
        inner = std::stoi(readLine(file.get()).value());
        ASSERT_EQ(kill(inner, 0), 0);
    }
    // A zombie that nobody has reaped yet has no environment any more.
    EXPECT_TRUE(waitUntil([&] {
        std::ifstream file("/proc/" + std::to_string(inner) + "/environ");
        return file.peek() == std::ifstream::traits_type::eof();
    }));
    EXPECT_FALSE(std::filesystem::exists(folder));
}

}  // namespace
}  // namespace quorvel::test
