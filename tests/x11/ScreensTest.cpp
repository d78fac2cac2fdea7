#include <xcb/randr.h>

#include "platform/linux/DisplayIdentity.hpp"
#include "platform/linux/X11Screens.hpp"
#include "tests/support/EdidBlock.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::native {
namespace {

using test::EdidBlock;
using test::XServerKind;

class ScreensTest : public test::ConnectedTest {
protected:
    explicit ScreensTest(XServerKind server = XServerKind::virtualFramebuffer)
        : ConnectedTest({.server = server, .windowManager = std::nullopt}) {}

    std::vector<Rect> frames() const {
        std::vector<Rect> result;
        for (const Screen& screen : screens.screens()) result.push_back(screen.frameCocoa);
        return result;
    }

    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const Screen& screen : screens.screens()) result.push_back(screen.localizedName);
        return result;
    }

    std::optional<std::string> identifierOf(const std::string& name) const {
        for (const Screen& screen : screens.screens()) {
            if (screen.localizedName == name) return screen.uuid;
        }
        return std::nullopt;
    }

    bool waitForChange() {
        const int before = changes;
        return waitInLoop([&] { return changes > before; });
    }

    void setEdid(const std::string& output, const std::vector<std::uint8_t>& bytes) {
        const test::XClient client(session.displayName());
        const Reply<xcb_randr_get_screen_resources_current_reply_t> resources(
            xcb_randr_get_screen_resources_current_reply(
                client.xcb(), xcb_randr_get_screen_resources_current(client.xcb(), client.root()),
                nullptr));
        const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
        for (int i = 0; i < resources->num_outputs; ++i) {
            const Reply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
                client.xcb(), xcb_randr_get_output_info(client.xcb(), outputs[i], 0), nullptr));
            const std::string name(
                reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                info->name_len);
            if (name != output) continue;
            xcb_randr_change_output_property(
                client.xcb(), outputs[i], client.atom("EDID"), XCB_ATOM_INTEGER, 8,
                XCB_PROP_MODE_REPLACE, static_cast<std::uint32_t>(bytes.size()), bytes.data());
        }
        client.sync();
    }

    X11Screens screens{*connection, loop};
    int changes = 0;
    Subscription counting = screens.onChange([this] { ++changes; });
};

class HotPlugTest : public ScreensTest {
protected:
    HotPlugTest() : ScreensTest(XServerKind::hotPlug) {}
};

TEST_F(ScreensTest, OnlyScreenFillsTheRoot) {
    const std::vector<Screen> all = screens.screens();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].frameCocoa, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(all[0].localizedName, "screen");
    EXPECT_EQ(all[0].uuid, nameBasedUuid("connector:screen"));
    EXPECT_FALSE(all[0].isBuiltin);
    EXPECT_TRUE(all[0].number);
    EXPECT_EQ(screens.axOriginInRoot(), (Point{0, 0}));
    EXPECT_EQ(screens.primaryScreenMaxY(), 800);
}

TEST_F(ScreensTest, MonitorsSetByHandAreNoticedWithoutARandrEvent) {
    session.server().xrandr({"--setmonitor", "right", "640/170x800/211+640+0", "none"});
    session.server().xrandr({"--setmonitor", "left", "640/170x800/211+0+0", "screen"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), (std::vector<std::string>{"screen", "right"}));
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 640, 800}, {640, 0, 640, 800}}));
    session.server().xrandr({"--delmonitor", "right"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 640, 800}}));
}

TEST_F(ScreensTest, PanelIsBuiltIn) {
    session.server().xrandr({"--setmonitor", "eDP-1", "640/170x800/211+0+0", "none"});
    session.server().xrandr({"--setmonitor", "LVDS1", "320/170x800/211+640+0", "none"});
    session.server().xrandr({"--setmonitor", "HDMI-1", "320/170x800/211+960+0", "screen"});
    ASSERT_TRUE(waitForChange());
    std::map<std::string, bool> builtin;
    for (const Screen& screen : screens.screens()) {
        builtin[screen.localizedName] = screen.isBuiltin;
    }
    EXPECT_EQ(builtin,
              (std::map<std::string, bool>{{"eDP-1", true}, {"LVDS1", true}, {"screen", false}}));
}

TEST_F(ScreensTest, NumbersTellMonitorsApartAndStay) {
    session.server().xrandr({"--setmonitor", "right", "640/170x800/211+640+0", "none"});
    session.server().xrandr({"--setmonitor", "left", "640/170x800/211+0+0", "screen"});
    ASSERT_TRUE(waitForChange());
    const auto before = screens.screens();
    ASSERT_EQ(before.size(), 2U);
    EXPECT_NE(before[0].number, before[1].number);
    EXPECT_EQ(before[1].number, session.probe().connection().atom("right"));
    EXPECT_NE(before[0].uuid, before[1].uuid);
}

TEST_F(ScreensTest, EdidNamesTheDisplay) {
    const std::string unnamed = screens.screens().at(0).uuid.value();
    setEdid("screen", EdidBlock{}.bytes());
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), std::vector<std::string>{"LG ULTRAWIDE"});
    EXPECT_EQ(screens.screens().at(0).uuid, "76537028-9A4B-5366-91F2-E93B3912D328");
    auto damaged = EdidBlock{}.bytes();
    ++damaged[127];
    setEdid("screen", damaged);
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), std::vector<std::string>{"screen"});
    EXPECT_EQ(screens.screens().at(0).uuid, unnamed);
    setEdid("screen", {1, 2, 3});
    EXPECT_TRUE(neverInLoop(std::chrono::milliseconds(300), [&] { return changes > 2; }));
}

TEST_F(ScreensTest, HandlerMayEndItsSubscriptionAndTheScreens) {
    auto shortLived = std::make_unique<X11Screens>(*connection, loop);
    int calls = 0;
    Subscription subscription;
    subscription = shortLived->onChange([&] {
        ++calls;
        subscription.reset();
    });
    session.server().xrandr({"--setmonitor", "half", "640/170x800/211+0+0", "screen"});
    EXPECT_TRUE(waitInLoop([&] { return calls == 1 && changes == 1; }));
    session.server().xrandr({"--delmonitor", "half"});
    handleAllSoFar();
    shortLived.reset();  // while it waits for the arrangement to settle
    EXPECT_TRUE(waitInLoop([&] { return changes == 2; }));
    EXPECT_EQ(calls, 1);
}

TEST_F(HotPlugTest, PluggingMovingAndUnplugging) {
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}}));
    const auto first = screens.screens().at(0).uuid;

    session.server().plug("DUMMY1", 1280, 0, "1920x1080");
    ASSERT_TRUE(waitForChange());
    // Tops are flush, so the higher one reaches below the primary.
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}, {1280, -280, 1920, 1080}}));
    EXPECT_EQ(names(), (std::vector<std::string>{"DUMMY0", "DUMMY1"}));
    const auto second = screens.screens().at(1).uuid;

    session.server().move("DUMMY1", 0, 800);
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}, {0, -1080, 1920, 1080}}));

    session.server().unplug("DUMMY1");
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}}));
    EXPECT_EQ(screens.screens().at(0).uuid, first);

    session.server().plug("DUMMY1", 1280, 0);
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(screens.screens().at(1).uuid, second) << "the identifier survives re-plugging";
}

TEST_F(HotPlugTest, ChangesThatFollowEachOtherAreAnnouncedOnce) {
    session.server().xrandr({"--output", "DUMMY1", "--mode", "1280x800", "--pos", "1280x0",
                             "--output", "DUMMY2", "--mode", "1280x800", "--pos", "2560x0"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(frames().size(), 3U);
    EXPECT_TRUE(neverInLoop(std::chrono::milliseconds(400), [&] { return changes > 1; }));
}

TEST_F(HotPlugTest, ChangeIsAnnouncedOnlyOnceItHasSettled) {
    using Clock = std::chrono::steady_clock;
    Clock::time_point lastEvent;
    const Subscription seeing =
        connection->onEvent([&](const xcb_generic_event_t&) { lastEvent = Clock::now(); });
    auto shortestQuiet = Clock::duration::max();
    const Subscription hearing = screens.onChange(
        [&] { shortestQuiet = std::min(shortestQuiet, Clock::now() - lastEvent); });
    session.server().plug("DUMMY1", 1280, 0);
    handleAllSoFar();
    EXPECT_EQ(frames().size(), 2U) << "a read is never stale";
    for (std::uint32_t serial = 0; serial < 4; ++serial) {
        setEdid("DUMMY1", EdidBlock{.serial = serial}.bytes());
        neverInLoop(std::chrono::milliseconds(60), [] { return false; });
    }
    ASSERT_TRUE(waitInLoop(
        [&] { return changes > 0 && Clock::now() - lastEvent > std::chrono::milliseconds(150); }));
    EXPECT_GE(shortestQuiet, std::chrono::milliseconds(99));
}

TEST_F(HotPlugTest, WhatChangesNothingIsNotAnnounced) {
    int events = 0;
    const Subscription seeing = connection->onEvent([&](const xcb_generic_event_t&) { ++events; });
    setEdid("DUMMY0", EdidBlock{}.bytes());
    setEdid("DUMMY0", {});
    handleAllSoFar();
    EXPECT_GE(events, 2);
    EXPECT_EQ(names(), std::vector<std::string>{"DUMMY0"});
    EXPECT_TRUE(neverInLoop(std::chrono::milliseconds(400), [&] { return changes > 0; }));
}

TEST_F(HotPlugTest, PrimaryIsTheOneAtTheOriginWhereverItStandsInTheList) {
    session.server().xrandr({"--output", "DUMMY0", "--mode", "1280x800", "--pos", "1920x0",
                             "--primary", "--output", "DUMMY1", "--mode", "1920x1080", "--pos",
                             "0x0"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), (std::vector<std::string>{"DUMMY1", "DUMMY0"}));
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1920, 1080}, {1920, 280, 1280, 800}}));
    EXPECT_EQ(screens.primaryScreenMaxY(), 1080);
}

TEST_F(HotPlugTest, WithoutOneAtTheOriginThePrimaryOfRandrCounts) {
    // An L without its corner.
    session.server().xrandr({"--output", "DUMMY0", "--mode", "1280x800", "--pos", "0x1080",
                             "--output", "DUMMY1", "--mode", "1920x1080", "--pos", "1280x0",
                             "--primary"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), (std::vector<std::string>{"DUMMY1", "DUMMY0"}));
    EXPECT_EQ(screens.axOriginInRoot(), (Point{1280, 0}));
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1920, 1080}, {-1280, -800, 1280, 800}}));
    const std::vector<Rect> inRoot{{1280, 0, 1920, 1080}, {0, 1080, 1280, 800}};
    EXPECT_EQ(screens.framesInRoot(), inRoot);

    session.server().xrandr({"--output", "DUMMY0", "--primary"});
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(names(), (std::vector<std::string>{"DUMMY0", "DUMMY1"}));
    EXPECT_EQ(screens.axOriginInRoot(), (Point{0, 1080}));

    session.server().xrandr({"--noprimary"});
    EXPECT_TRUE(waitInLoop([&] { return !names().empty() && names()[0] == "DUMMY0"; }));
    EXPECT_EQ(frames().at(0), (Rect{0, 0, 1280, 800})) << "the first, when none is primary";
}

TEST_F(HotPlugTest, MirroredDisplaysCountOnce) {
    session.server().plug("DUMMY1", 0, 0);
    EXPECT_TRUE(neverInLoop(std::chrono::milliseconds(400), [&] { return changes > 0; }));
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}}));
}

TEST_F(HotPlugTest, NoDisplayAtAllAndBack) {
    session.server().unplug("DUMMY0");
    ASSERT_TRUE(waitForChange());
    EXPECT_TRUE(screens.screens().empty());
    EXPECT_EQ(screens.primaryScreenMaxY(), 800) << "conversions stay as they were";
    session.server().plug("DUMMY0", 0, 0);
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1280, 800}}));
}

TEST_F(HotPlugTest, TwinsTakeTheirConnectorIn) {
    session.server().plug("DUMMY1", 1280, 0);
    ASSERT_TRUE(waitForChange());
    setEdid("DUMMY0", EdidBlock{.name = "Twin"}.bytes());
    ASSERT_TRUE(waitForChange());
    const auto alone = identifierOf("Twin");
    setEdid("DUMMY1", EdidBlock{.name = "Twin"}.bytes());
    ASSERT_TRUE(waitForChange());
    const auto both = screens.screens();
    ASSERT_EQ(both.size(), 2U);
    EXPECT_NE(both[0].uuid, both[1].uuid);
    EXPECT_NE(both[0].uuid, alone);
    EXPECT_NE(both[1].uuid, alone);
    session.server().unplug("DUMMY1");
    ASSERT_TRUE(waitForChange());
    EXPECT_EQ(identifierOf("Twin"), alone);
}

TEST(ScreensWithoutRandrTest, RootWindowIsTheOnlyScreen) {
    const test::ScratchFolder scratch;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const test::FileDescriptor reading(ends[0]);
    test::FileDescriptor writing(ends[1]);
    const test::ChildProcess server({{"Xvfb", "-displayfd", "9", "-screen", "0", "1024x600x24",
                                      "-extension", "RANDR", "-ac", "-noreset", "-nolisten", "tcp"},
                                     {{"PATH", "/usr/bin:/bin"}},
                                     scratch / "server.log",
                                     {{writing.get(), 9}}},
                                    SIGTERM);
    writing = test::FileDescriptor();
    const auto number = test::readLine(reading.get());
    ASSERT_TRUE(number);
    std::string error;
    const auto connection = XConnection::open(":" + *number, error);
    ASSERT_TRUE(connection) << error;
    GlibRunLoop loop;
    X11Screens screens(*connection, loop);
    ASSERT_EQ(screens.screens().size(), 1U);
    EXPECT_EQ(screens.screens()[0].frameCocoa, (Rect{0, 0, 1024, 600}));
    EXPECT_TRUE(screens.screens()[0].number);
    EXPECT_TRUE(screens.screens()[0].uuid);
}

}  // namespace
}  // namespace quorvel::native
