#include <gmock/gmock.h>

#include <cstdlib>

#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/X11Trust.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::native {
namespace {

using testing::StartsWith;

constexpr const char* noWindowManager = "No window manager is running";
constexpr const char* notEwmh = "The window manager does not follow the EWMH standard";
constexpr const char* wayland = "This is a Wayland session";

/// Pretends to be a window manager, with whatever properties a test gives it.
class PretendedWindowManager {
public:
    explicit PretendedWindowManager(const std::string& displayName) : client(displayName) {
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_change_window_attributes(client.xcb(), client.root(), XCB_CW_EVENT_MASK, &mask);
        check = xcb_generate_id(client.xcb());
        xcb_create_window(client.xcb(), 0, check, client.root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        client.sync();
    }

    void setCheck(xcb_window_t holder, xcb_window_t target) const {
        client.setProperty32(holder, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {target});
        client.sync();
    }

    void setSupported(const std::vector<std::string>& hints) const {
        std::vector<std::uint32_t> atoms;
        for (const std::string& hint : hints) atoms.push_back(client.atom(hint));
        client.setProperty32(client.root(), "_NET_SUPPORTED", "ATOM", atoms);
        client.sync();
    }

    test::XClient client;
    xcb_window_t check = 0;
};

class TrustTest : public test::ConnectedTest {
protected:
    X11Trust trust{*connection, false, [this](const std::string& reason, auto closed) {
                       prompts.push_back(reason);
                       closePrompt = std::move(closed);
                   }};
    std::vector<std::string> prompts;
    std::function<void()> closePrompt;
};

class TrustOnWindowManager : public TrustTest,
                             public testing::WithParamInterface<test::WindowManagerKind> {};

TEST_P(TrustOnWindowManager, IsGivenWhileItRuns) {
    EXPECT_FALSE(trust.isTrusted());
    session.startWindowManager(GetParam());
    EXPECT_TRUE(trust.isTrusted());
    EXPECT_EQ(trust.reason(), "");
    EXPECT_TRUE(trust.isTrustedWithPrompt());
    session.windowManager()->kill();
    EXPECT_TRUE(test::waitUntil([&] { return !trust.isTrusted(); }));
    EXPECT_THAT(trust.reason(), StartsWith(noWindowManager));
    EXPECT_TRUE(prompts.empty());
}

INSTANTIATE_TEST_SUITE_P(, TrustOnWindowManager, testing::ValuesIn(test::allWindowManagers()),
                         [](const auto& tested) { return test::nameOf(tested.param); });

TEST_F(TrustTest, NoWindowManagerIsAReason) {
    EXPECT_FALSE(trust.isTrusted());
    EXPECT_THAT(trust.reason(), StartsWith(noWindowManager));
    EXPECT_FALSE(trust.openSettingsPane());
}

TEST_F(TrustTest, WindowManagerMustFollowEwmhInEveryPoint) {
    const PretendedWindowManager manager(session.displayName());
    const xcb_window_t root = manager.client.root();
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh));
    manager.setCheck(root, manager.check);
    manager.setSupported({"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"});
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh)) << "the window does not confirm";
    manager.setCheck(manager.check, root);
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh)) << "the window confirms another";
    manager.setCheck(manager.check, manager.check);
    EXPECT_EQ(trust.reason(), "");
    manager.setSupported({"_NET_CLIENT_LIST"});
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh));
    manager.setSupported({"_NET_ACTIVE_WINDOW"});
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh));
    manager.setSupported({});
    EXPECT_THAT(trust.reason(), StartsWith(notEwmh));
    manager.setSupported({"_NET_ACTIVE_WINDOW", "_NET_WM_NAME", "_NET_CLIENT_LIST"});
    EXPECT_EQ(trust.reason(), "");
}

TEST_F(TrustTest, WindowManagerThatConfirmsLateIsSeenToRun) {
    WindowManagerInfo info(*connection);
    int changes = 0;
    const Subscription subscription = info.onChange([&] { ++changes; });
    const PretendedWindowManager manager(session.displayName());
    manager.setCheck(manager.client.root(), manager.check);
    handleAllSoFar();
    EXPECT_FALSE(info.isRunning());
    manager.setCheck(manager.check, manager.check);
    handleAllSoFar();
    EXPECT_TRUE(info.isRunning());
    manager.client.setPropertyText(manager.check, "_NET_WM_NAME", "UTF8_STRING", "Pretended");
    manager.client.sync();
    handleAllSoFar();
    EXPECT_EQ(info.name(), "Pretended");
    EXPECT_EQ(changes, 2);
}

TEST_F(TrustTest, PropertiesThatAWindowManagerLeftBehindDoNotCount) {
    auto manager = std::make_unique<PretendedWindowManager>(session.displayName());
    manager->setCheck(manager->client.root(), manager->check);
    manager->setCheck(manager->check, manager->check);
    manager->setSupported({"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"});
    EXPECT_TRUE(trust.isTrusted());
    manager.reset();
    EXPECT_TRUE(test::waitUntil([&] { return !trust.isTrusted(); }));
    EXPECT_THAT(trust.reason(), StartsWith(noWindowManager));
}

TEST_F(TrustTest, GarbageInThePropertiesIsNoTrust) {
    const PretendedWindowManager manager(session.displayName());
    const test::XClient& client = manager.client;
    const xcb_window_t root = client.root();
    manager.setCheck(manager.check, manager.check);
    manager.setSupported({"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"});
    for (const std::vector<std::uint32_t>& items :
         {std::vector<std::uint32_t>{},
          {0},
          {0xFFFFFFFF},
          {root},
          {1, 2, 3},
          std::vector<std::uint32_t>(100'000, manager.check)}) {
        client.setProperty32(root, "_NET_SUPPORTING_WM_CHECK", "WINDOW", items);
        client.sync();
        EXPECT_FALSE(trust.isTrusted());
    }
    for (const char* text : {"", "a", "abcd", "abcdefgh"}) {
        client.setPropertyText(root, "_NET_SUPPORTING_WM_CHECK", "WINDOW", text);
        client.setPropertyText(root, "_NET_SUPPORTED", "ATOM", text);
        client.sync();
        EXPECT_FALSE(trust.isTrusted());
    }
    manager.setCheck(root, manager.check);
    manager.setSupported({"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"});
    EXPECT_TRUE(trust.isTrusted());
}

TEST_F(TrustTest, PromptNamesTheReasonOneAtATime) {
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_EQ(prompts, std::vector<std::string>{trust.reason()});
    closePrompt();
    EXPECT_EQ(prompts.size(), 1U);
    EXPECT_FALSE(trust.isTrustedWithPrompt());
    EXPECT_EQ(prompts.size(), 2U);
    session.startWindowManager(test::WindowManagerKind::openbox);
    closePrompt();
    EXPECT_TRUE(trust.isTrustedWithPrompt());
    EXPECT_EQ(prompts.size(), 2U);
}

TEST_F(TrustTest, PromptMayCloseAtOnceOrOutliveTheTrust) {
    int shown = 0;
    X11Trust hasty(*connection, false, [&](const std::string&, auto closed) {
        ++shown;
        closed();
    });
    EXPECT_FALSE(hasty.isTrustedWithPrompt());
    EXPECT_FALSE(hasty.isTrustedWithPrompt());
    EXPECT_EQ(shown, 2);

    std::function<void()> late;
    {
        X11Trust shortLived(*connection, false,
                            [&](const std::string&, auto closed) { late = std::move(closed); });
        EXPECT_FALSE(shortLived.isTrustedWithPrompt());
    }
    late();
    X11Trust silent(*connection, false, nullptr);
    EXPECT_FALSE(silent.isTrustedWithPrompt());
}

TEST_F(TrustTest, XwaylandIsNotTrustedWhateverItsWindowManagerSays) {
    session.startWindowManager(test::WindowManagerKind::openbox);
    session.server().xrandr({"--setmonitor", "XWAYLAND0", "auto", "screen"});
    const X11Trust underWayland(*connection, true, nullptr);
    EXPECT_FALSE(underWayland.isTrusted());
    EXPECT_THAT(underWayland.reason(), StartsWith(wayland));
    EXPECT_TRUE(trust.isTrusted()) << "without a Wayland session the name means nothing";
}

TEST_F(TrustTest, ServerOfItsOwnInsideAWaylandSessionIsTrusted) {
    session.startWindowManager(test::WindowManagerKind::openbox);
    const X11Trust nested(*connection, true, nullptr);
    EXPECT_TRUE(nested.isTrusted());
}

TEST_F(TrustTest, LostServerIsNotTrusted) {
    session.startWindowManager(test::WindowManagerKind::openbox);
    EXPECT_TRUE(trust.isTrusted());
    session.server().kill();
    EXPECT_TRUE(test::waitUntil([&] { return !trust.isTrusted(); }));
}

TEST(WaylandSessionTest, EnvironmentTells) {
    unsetenv("XDG_SESSION_TYPE");
    unsetenv("WAYLAND_DISPLAY");
    EXPECT_FALSE(X11Trust::isWaylandSession());
    setenv("XDG_SESSION_TYPE", "x11", 1);
    setenv("WAYLAND_DISPLAY", "", 1);
    EXPECT_FALSE(X11Trust::isWaylandSession());
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_TRUE(X11Trust::isWaylandSession());
    unsetenv("WAYLAND_DISPLAY");
    setenv("XDG_SESSION_TYPE", "wayland", 1);
    EXPECT_TRUE(X11Trust::isWaylandSession());
    unsetenv("XDG_SESSION_TYPE");
}

}  // namespace
}  // namespace quorvel::native
