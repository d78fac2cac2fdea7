#include "platform/simulated/SimulatedDesktop.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace quorvel {
namespace {

using namespace std::chrono_literals;

struct Presses {
    std::vector<HotKeyEvent> events;

    static std::int32_t handler(void* call, const HotKeyEvent* event, void* userData) {
        EXPECT_EQ(call, nullptr);
        static_cast<Presses*>(userData)->events.push_back(*event);
        return 0;
    }
};

class SimulatedHotKeysTest : public testing::Test {
protected:
    SimulatedHotKeysTest() { desktop.hotKeys.installEventHandler(Presses::handler, &presses); }

    static constexpr std::uint32_t control = 0x1000;
    static constexpr std::uint32_t option = 0x800;

    SimulatedDesktop desktop;
    Presses presses;
};

TEST_F(SimulatedHotKeysTest, APressFiresOnceFromTheLoopWithItsIdentifier) {
    ASSERT_EQ(desktop.hotKeys.registerHotKey(40, control, {7, 100}).status, 0);
    desktop.hotKeys.press(40, control);
    EXPECT_TRUE(presses.events.empty());
    desktop.settle();
    ASSERT_EQ(presses.events.size(), 1u);
    EXPECT_EQ(presses.events[0].directObject, (HotKeyID{7, 100}));
}

TEST_F(SimulatedHotKeysTest, AHeldKeyDoesNotRepeat) {
    desktop.hotKeys.registerHotKey(40, control, {7, 100});
    desktop.hotKeys.keyDown(40, control);
    desktop.hotKeys.keyDown(40, control);
    desktop.settle();
    EXPECT_EQ(presses.events.size(), 1u);
    desktop.hotKeys.keyUp(40);
    desktop.hotKeys.keyDown(40, control);
    desktop.settle();
    EXPECT_EQ(presses.events.size(), 2u);
}

TEST_F(SimulatedHotKeysTest, FurtherModifiersKeepAKeyFromFiring) {
    desktop.hotKeys.registerHotKey(40, control, {7, 100});
    desktop.hotKeys.press(40, control | option);
    desktop.hotKeys.press(41, control);
    desktop.settle();
    EXPECT_TRUE(presses.events.empty());
}

TEST_F(SimulatedHotKeysTest, WhatIsHeldElsewhereOrByUsIsRefusedAndNotRegistered) {
    desktop.hotKeys.holdElsewhere(40, control);
    const auto elsewhere = desktop.hotKeys.registerHotKey(40, control, {7, 100});
    EXPECT_EQ(elsewhere.status, 10);
    EXPECT_EQ(elsewhere.ref, std::nullopt);
    desktop.hotKeys.releaseElsewhere(40, control);
    const auto first = desktop.hotKeys.registerHotKey(40, control, {7, 100});
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(desktop.hotKeys.registerHotKey(40, control, {7, 101}).status, 10);
    desktop.hotKeys.unregisterHotKey(*first.ref);
    EXPECT_EQ(desktop.hotKeys.registerHotKey(40, control, {7, 101}).status, 0);
}

TEST_F(SimulatedHotKeysTest, UnregisteredKeysAreSilent) {
    const auto key = desktop.hotKeys.registerHotKey(40, control, {7, 100});
    desktop.hotKeys.unregisterHotKey(*key.ref);
    desktop.hotKeys.unregisterHotKey(*key.ref);
    desktop.hotKeys.press(40, control);
    desktop.settle();
    EXPECT_TRUE(presses.events.empty());
}

TEST_F(SimulatedHotKeysTest, AGrabbedKeyboardSwallowsPresses) {
    desktop.hotKeys.registerHotKey(40, control, {7, 100});
    desktop.hotKeys.keyboardIsGrabbed = true;
    desktop.hotKeys.press(40, control);
    desktop.settle();
    EXPECT_TRUE(presses.events.empty());
}

TEST_F(SimulatedHotKeysTest, PressesDuringAnAlertWait) {
    desktop.hotKeys.registerHotKey(40, control, {7, 100});
    desktop.runLoop.modal([this] {
        desktop.hotKeys.press(40, control);
        desktop.advance(1s);
        EXPECT_TRUE(presses.events.empty());
    });
    desktop.settle();
    EXPECT_EQ(presses.events.size(), 1u);
}

TEST(SimulatedScreensTest, AChangeIsReportedOnceAfterItHasSettled) {
    SimulatedDesktop desktop;
    int changes = 0;
    const auto subscription = desktop.screens.onChange([&] { ++changes; });
    desktop.screens.arrange({});
    EXPECT_TRUE(desktop.screens.screens().empty());
    EXPECT_EQ(desktop.screens.primaryScreenMaxY(), 0);
    desktop.advance(60ms);
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1920, 1080})});
    desktop.advance(99ms);
    EXPECT_EQ(changes, 0);
    desktop.advance(1ms);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(desktop.screens.primaryScreenMaxY(), 1080);
    desktop.advance(1s);
    EXPECT_EQ(changes, 1);
}

TEST(SimulatedPointerTest, TheWheelIsNoButton) {
    SimulatedDesktop desktop;
    desktop.pointer.moveTo({3, 4});
    desktop.pointer.press(1);
    desktop.pointer.press(3);
    desktop.pointer.press(4);
    EXPECT_EQ(desktop.pointer.read().pressedButtons, 5u);
    EXPECT_EQ(desktop.pointer.read().locationCocoa, (Point{3, 4}));
    desktop.pointer.release(1);
    EXPECT_EQ(desktop.pointer.read().pressedButtons, 4u);
}

TEST(SimulatedFilesTest, ADanglingLinkDoesNotExist) {
    SimulatedDesktop desktop;
    desktop.files.addLink("/opt/app.desktop", "/usr/app.desktop");
    EXPECT_FALSE(desktop.files.exists("/opt/app.desktop"));
    desktop.files.add("/usr/app.desktop");
    EXPECT_TRUE(desktop.files.exists("/opt/app.desktop"));
    desktop.files.addLink("/a", "/b");
    desktop.files.addLink("/b", "/a");
    EXPECT_FALSE(desktop.files.exists("/a"));
}

TEST(SimulatedDefaultsTest, AFailedSaveChangesNothingAndIsLogged) {
    SimulatedDesktop desktop;
    ASSERT_TRUE(desktop.defaults.setObject("A", 1));
    desktop.defaults.failsToSave = true;
    EXPECT_FALSE(desktop.defaults.setObject("A", 2));
    EXPECT_FALSE(desktop.defaults.removeObject("A"));
    EXPECT_EQ(desktop.defaults.object("A"), Value(1));
    EXPECT_EQ(desktop.log.lines.size(), 2u);
}

TEST(SimulatedDefaultsTest, OneKeyThatCannotBeSavedKeepsAllChangesOut) {
    SimulatedDesktop desktop;
    desktop.defaults.values = {{"A", 1}, {"B", 2}};
    desktop.defaults.keysThatFailToSave = {"C"};
    EXPECT_FALSE(desktop.defaults.apply({{"A", Value(3)}, {"B", std::nullopt}, {"C", Value(4)}}));
    EXPECT_EQ(desktop.defaults.values, (Value::Dictionary{{"A", 1}, {"B", 2}}));
    EXPECT_EQ(desktop.log.lines.size(), 1u);
    EXPECT_TRUE(desktop.defaults.apply({{"A", Value(3)}, {"B", std::nullopt}}));
    EXPECT_EQ(desktop.defaults.values, (Value::Dictionary{{"A", 3}}));
    EXPECT_EQ(desktop.defaults.writeCount, 1);
}

TEST(SimulatedDefaultsTest, RemovingAnAbsentKeyIsNoWrite) {
    SimulatedDesktop desktop;
    desktop.defaults.failsToSave = true;
    EXPECT_TRUE(desktop.defaults.removeObject("A"));
    EXPECT_EQ(desktop.defaults.writeCount, 0);
}

TEST(SimulatedDefaultsTest, DomainsAreReadByName) {
    SimulatedDesktop desktop;
    desktop.defaults.otherDomains["org.example.other"] = {{"K", "v"}};
    desktop.defaults.setObject("Mine", true);
    EXPECT_EQ(desktop.defaults.persistentDomain("org.example.other").at("K"), Value("v"));
    EXPECT_EQ(desktop.defaults.persistentDomain(desktop.defaults.domainName).at("Mine"),
              Value(true));
    EXPECT_TRUE(desktop.defaults.persistentDomain("../other").empty());
    desktop.defaults.otherDomains["a b"] = {{"K", "v"}};
    EXPECT_TRUE(desktop.defaults.persistentDomain("a b").empty());
    EXPECT_TRUE(desktop.defaults.persistentDomain("").empty());
    EXPECT_EQ(desktop.defaults.preset("K"), std::nullopt);
}

TEST(SimulatedLogTest, AMessageStaysOneLine) {
    SimulatedDesktop desktop;
    desktop.log.line("Quorvel: a\nb\x1b[0m é\u0085\u2028\u2014");
    EXPECT_EQ(desktop.log.taken(),
              (std::vector<std::string>{"Quorvel: a\\nb\\x1b[0m é\\x85\\u2028—"}));
    EXPECT_TRUE(desktop.log.lines.empty());
}

TEST(SimulatedCatalogTest, NamesComeFromTheEntryElseFromThePath) {
    SimulatedDesktop desktop;
    desktop.install("/usr/share/applications/org.z.desktop", "Zeta");
    desktop.install("/usr/share/applications/org.a.desktop", "alpha");
    desktop.catalog.add({"/usr/share/applications/hidden.desktop", "Hidden", {}}, false);
    const auto installed = desktop.catalog.installed();
    ASSERT_EQ(installed.size(), 2u);
    EXPECT_EQ(installed[0].name, "alpha");
    EXPECT_EQ(desktop.catalog.nameOf("/usr/share/applications/hidden.desktop"), "Hidden");
    EXPECT_EQ(desktop.catalog.nameOf("/opt/some tool.AppImage"), "some tool");
    EXPECT_TRUE(desktop.files.exists("/usr/share/applications/org.z.desktop"));
}

TEST(SimulatedLoginItemTest, RegistrationMayStillNeedApproval) {
    SimulatedDesktop desktop;
    desktop.loginItem.needsApproval = true;
    EXPECT_EQ(desktop.loginItem.registerItem(), std::nullopt);
    EXPECT_EQ(desktop.loginItem.status(), LoginItemStatus::requiresApproval);
    desktop.loginItem.unregistrationError = "Read-only file system";
    EXPECT_EQ(desktop.loginItem.unregisterItem(), "Read-only file system");
    EXPECT_EQ(desktop.loginItem.status(), LoginItemStatus::requiresApproval);
}

}  // namespace
}  // namespace quorvel
