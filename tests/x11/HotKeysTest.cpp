#include <algorithm>
#include <array>
#include <functional>

#include "platform/linux/X11HotKeys.hpp"
#include "platform/linux/Xkb.hpp"
#include "platform/simulated/SimulatedLog.hpp"
#include "tests/support/x11/TestClient.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::native {
namespace {

constexpr std::uint32_t control = 0x1000;
constexpr std::uint32_t option = 0x800;
constexpr std::uint32_t shift = 0x200;
constexpr std::uint32_t command = 0x100;

constexpr std::uint32_t keyK = 40;
constexpr std::uint32_t keyT = 17;
constexpr std::uint32_t keyLeft = 123;
constexpr std::uint32_t keyGrave = 50;

constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;

class HotKeysTest : public test::ConnectedTest {
protected:
    HotKeysTest() {
        EXPECT_EQ(hotKeys->installEventHandler(
                      [](void* call, const HotKeyEvent* event, void* userData) {
                          EXPECT_EQ(call, nullptr);
                          auto* self = static_cast<HotKeysTest*>(userData);
                          self->fired.push_back(event->directObject.value().id);
                          if (self->duringEvent) self->duringEvent();
                          return std::int32_t{0};
                      },
                      this),
                  0);
    }

    HotKeyRegistration add(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) {
        return hotKeys->registerHotKey(keyCode, modifiers, {0x54455354, id});
    }

    using Ids = std::vector<std::uint32_t>;

    /// What has fired since the last call, once all events so far have been handled.
    Ids takeFired() {
        handleAllSoFar();
        return std::exchange(fired, {});
    }

    Ids firedBy(const std::vector<std::string>& modifiers, const std::string& key) {
        session.input().chord(modifiers, key);
        return takeFired();
    }

    void run(const std::vector<std::string>& arguments) {
        test::runToEnd({arguments, session.environment(), session.folder() / "tools.log", {}});
    }

    /// The way the keyboard is now, for keys that are pressed from here on.
    void useNewKeyboard() {
        handleAllSoFar();
        input.emplace(session.displayName());
    }
    Ids firedOnNewKeyboard(const std::vector<std::string>& modifiers, const std::string& key) {
        input->chord(modifiers, key);
        return takeFired();
    }

    /// Replaces `from` by `to` all over the server's keyboard description.
    void editKeyboard(const std::vector<std::pair<std::string, std::string>>& edits) {
        std::string script = "xkbcomp \"$DISPLAY\" keymap.xkb";
        for (const auto& [from, to] : edits)
            script += " && sed -i 's/" + from + "/" + to + "/' keymap.xkb";
        script += " && xkbcomp -w0 keymap.xkb \"$DISPLAY\"";
        run({"sh", "-c", "cd '" + session.folder().path().string() + "' && " + script});
    }

    bool everyVariantIsFree(xcb_keycode_t key, std::uint16_t modifiers) {
        test::TestClient other(session.displayName());
        for (const unsigned locks : {0U, 2U, 16U, 18U}) {
            if (other.grabKey(key, static_cast<std::uint16_t>(modifiers | locks)) != 0)
                return false;
        }
        return true;
    }

    xcb_keycode_t keycode(const std::string& key) { return session.input().keycode(key); }

    SimulatedLog log;
    std::unique_ptr<X11HotKeys> hotKeys = std::make_unique<X11HotKeys>(*connection, loop, log);
    Ids fired;
    std::function<void()> duringEvent;
    std::optional<test::XInput> input;
};

TEST_F(HotKeysTest, EveryKeyFiresAtItsPosition) {
    // With Control and Alt the server keeps the function keys for itself (virtual terminals).
    for (const test::KeyPosition& key : test::keyPositions()) {
        if (key.virtualCode == 0xFFFF) continue;
        ASSERT_EQ(add(key.virtualCode, control | shift, key.virtualCode).status, 0) << key.name;
    }
    for (const test::KeyPosition& key : test::keyPositions()) {
        if (key.virtualCode == 0xFFFF) continue;
        EXPECT_EQ(firedBy({"Control", "Shift"}, key.name), Ids{key.virtualCode}) << key.name;
    }
}

TEST_F(HotKeysTest, AKeyIsKnownByItsPlaceOnAnyLayout) {
    for (const char* const layout : {"us", "de", "fr"}) {
        run({"setxkbmap", layout});
        for (const test::KeyPosition& key : test::keyPositions()) {
            const auto code = hotKeys->virtualKeyCode(session.input().keycode(key.name));
            if (key.virtualCode == 0xFFFF) {
                EXPECT_EQ(code, std::nullopt) << key.name;
            } else {
                EXPECT_EQ(code, key.virtualCode) << key.name;
            }
        }
    }
    EXPECT_EQ(hotKeys->virtualKeyCode(0), std::nullopt);
    EXPECT_EQ(hotKeys->virtualKeyCode(4711), std::nullopt);
}

TEST_F(HotKeysTest, ModifiersAreExact) {
    const std::array<std::pair<std::uint32_t, std::string>, 4> all{
        {{control, "Control"}, {option, "Alt"}, {shift, "Shift"}, {command, "Super"}}};
    const auto namesOf = [&](std::uint32_t mask) {
        std::vector<std::string> names;
        for (const auto& [bit, name] : all) {
            if ((mask & bit) != 0) names.push_back(name);
        }
        return names;
    };
    std::vector<std::uint32_t> masks;
    for (std::uint32_t i = 1; i < 16; ++i) {
        masks.push_back((i & 1 ? control : 0) | (i & 2 ? option : 0) | (i & 4 ? shift : 0) |
                        (i & 8 ? command : 0));
    }
    for (const std::uint32_t mask : masks) ASSERT_EQ(add(keyK, mask, mask).status, 0);
    for (const std::uint32_t mask : masks) {
        EXPECT_EQ(firedBy(namesOf(mask), "K"), Ids{mask});
    }
    EXPECT_EQ(firedBy({}, "K"), Ids{});

    ASSERT_EQ(add(keyT, control, 1).status, 0);
    EXPECT_EQ(firedBy({"Control", "Shift"}, "T"), Ids{});
    EXPECT_EQ(firedBy({"Shift"}, "T"), Ids{});
    EXPECT_EQ(firedBy({"Control"}, "T"), Ids{1});
}

TEST_F(HotKeysTest, LocksDoNotMatter) {
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    const auto lockedModifiers = [&] {
        const test::XClient client(session.displayName());
        const Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
            client.xcb(), xcb_query_pointer(client.xcb(), client.root()), nullptr));
        return reply->mask & 0xFF;
    };
    session.input().tap("CapsLock");
    EXPECT_EQ(lockedModifiers(), 2);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    session.input().tap("NumLock");
    EXPECT_EQ(lockedModifiers(), 18);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    session.input().tap("CapsLock");
    EXPECT_EQ(lockedModifiers(), 16);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
}

TEST_F(HotKeysTest, LockOnAnyModifierDoesNotMatter) {
    // All three lock keys, two of them on unusual modifiers.
    run({"xmodmap", "-e", "remove mod2 = Num_Lock", "-e", "add mod3 = Num_Lock", "-e", "clear mod5",
         "-e", "add mod5 = Scroll_Lock"});
    ASSERT_EQ(add(keyK, control, 1).status, 0);
    const test::XClient client(session.displayName());
    Reply<xcb_xkb_use_extension_reply_t>(xcb_xkb_use_extension_reply(
        client.xcb(), xcb_xkb_use_extension(client.xcb(), 1, 0), nullptr));
    constexpr std::uint8_t mod3 = XCB_MOD_MASK_3;
    constexpr std::uint8_t mod5 = XCB_MOD_MASK_5;
    constexpr std::uint8_t lock = XCB_MOD_MASK_LOCK;
    for (int state = 0; state < 8; ++state) {
        const auto locked = static_cast<std::uint8_t>(
            (state & 1 ? mod3 : 0) | (state & 2 ? mod5 : 0) | (state & 4 ? lock : 0));
        xcb_xkb_latch_lock_state(client.xcb(), XCB_XKB_ID_USE_CORE_KBD, 0xFF, locked, 0, 0, 0, 0,
                                 0);
        client.sync();
        EXPECT_EQ(firedBy({"Control"}, "K"), Ids{1}) << unsigned{locked};
    }
    // No lock, so it counts.
    xcb_xkb_latch_lock_state(client.xcb(), XCB_XKB_ID_USE_CORE_KBD, 0xFF, XCB_MOD_MASK_2, 0, 0, 0,
                             0, 0);
    client.sync();
    EXPECT_EQ(firedBy({"Control"}, "K"), Ids{});
}

TEST_F(HotKeysTest, OtherLayoutGroupDoesNotMatter) {
    run({"setxkbmap", "-layout", "us,ru"});
    useNewKeyboard();
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    const test::XClient client(session.displayName());
    Reply<xcb_xkb_use_extension_reply_t>(xcb_xkb_use_extension_reply(
        client.xcb(), xcb_xkb_use_extension(client.xcb(), 1, 0), nullptr));
    xcb_xkb_latch_lock_state(client.xcb(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, 1, 0, 0, 0);
    client.sync();
    const Reply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        client.xcb(), xcb_xkb_get_state(client.xcb(), XCB_XKB_ID_USE_CORE_KBD), nullptr));
    EXPECT_EQ(state->group, 1);
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "K"), Ids{1});
}

TEST_F(HotKeysTest, HeldByAnotherClientIsBadAccess) {
    auto other = std::make_unique<test::TestClient>(session.displayName());
    ASSERT_EQ(other->grabKey(keycode("K"), controlAlt), 0);
    const HotKeyRegistration refused = add(keyK, control | option, 1);
    EXPECT_EQ(refused.status, 10);
    EXPECT_EQ(refused.ref, std::nullopt);
    EXPECT_EQ(add(keyK, control | shift, 2).status, 0);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{});
    other.reset();
    ASSERT_TRUE(test::waitUntil([&] { return add(keyK, control | option, 3).status == 0; }))
        << "what a client held is free when it has gone";
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{3});
}

TEST_F(HotKeysTest, HeldWithAnyModifierOrAnyKeyIsBadAccess) {
    test::TestClient other(session.displayName());
    ASSERT_EQ(other.grabKey(keycode("K"), XCB_MOD_MASK_ANY), 0);
    EXPECT_EQ(add(keyK, control | option, 1).status, 10);
    ASSERT_EQ(add(keyT, control | option, 2).status, 0);
    ASSERT_EQ(other.grabKey(XCB_GRAB_ANY, XCB_MOD_MASK_4), 0);
    EXPECT_EQ(add(keyT, command, 3).status, 10);
}

TEST_F(HotKeysTest, RefusedLockVariantReleasesTheOthers) {
    test::TestClient other(session.displayName());
    constexpr std::uint16_t numLock = XCB_MOD_MASK_2;
    ASSERT_EQ(other.grabKey(keycode("K"), controlAlt | numLock), 0);
    EXPECT_EQ(add(keyK, control | option, 1).status, 10);
    other.ungrabKey(keycode("K"), controlAlt | numLock);
    EXPECT_TRUE(everyVariantIsFree(keycode("K"), controlAlt));
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{});
}

TEST_F(HotKeysTest, CombinationThatWeHoldIsBadAccess) {
    const HotKeyRegistration first = add(keyK, control | option, 1);
    ASSERT_EQ(first.status, 0);
    EXPECT_EQ(add(keyK, option | control, 2).status, 10);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1}) << "the first is left alone";
    hotKeys->unregisterHotKey(*first.ref);
    EXPECT_EQ(add(keyK, control | option, 3).status, 0);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{3});
}

TEST_F(HotKeysTest, UnregisteringLeavesNothing) {
    const HotKeyRegistration one = add(keyK, control | option, 1);
    ASSERT_EQ(add(keyT, control | option, 2).status, 0);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    EXPECT_FALSE(everyVariantIsFree(keycode("K"), controlAlt));
    hotKeys->unregisterHotKey(*one.ref);
    hotKeys->unregisterHotKey(*one.ref);
    hotKeys->unregisterHotKey(HotKeyRef{999});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "T"), Ids{2});
    EXPECT_TRUE(everyVariantIsFree(keycode("K"), controlAlt));
    hotKeys.reset();
    handleAllSoFar();
    EXPECT_TRUE(everyVariantIsFree(keycode("T"), controlAlt));
}

TEST_F(HotKeysTest, HeldKeyFiresOnceAndAgainAfterItsRelease) {
    run({"xset", "r", "rate", "100", "50"});
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    int presses = 0;
    const Subscription counting = connection->onEvent([&](const xcb_generic_event_t& event) {
        if (event.response_type == XCB_KEY_PRESS) ++presses;
    });
    session.input().press("Control");
    session.input().press("Alt");
    session.input().press("K");
    ASSERT_TRUE(waitInLoop([&] { return presses >= 5; })) << "the key does not repeat";
    EXPECT_EQ(takeFired(), Ids{1});
    session.input().release("K");
    session.input().press("K");
    EXPECT_EQ(takeFired(), Ids{1});
    session.input().releaseAll();
    EXPECT_EQ(takeFired(), Ids{});
}

TEST_F(HotKeysTest, SecondHotKeyFiresWhileTheFirstIsHeld) {
    ASSERT_EQ(add(keyK, control, 1).status, 0);
    ASSERT_EQ(add(keyT, control, 2).status, 0);
    session.input().press("Control");
    session.input().press("K");
    session.input().tap("T");
    session.input().tap("T");
    session.input().releaseAll();
    EXPECT_EQ(takeFired(), (Ids{1, 2, 2}));
}

TEST_F(HotKeysTest, KeyboardWorksOnAfterAHotKey) {
    session.startWindowManager(test::WindowManagerKind::openbox);
    test::TestClient typing(session.displayName());
    const xcb_window_t window = session.open(typing, {});
    session.probe().activate(window);
    ASSERT_TRUE(waitInLoop([&] { return session.probe().inputFocus() == window; }));
    const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(typing.connection().xcb(), window, XCB_CW_EVENT_MASK, &mask);
    typing.connection().sync();
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    session.input().tap("K");
    bool typed = false;
    EXPECT_TRUE(waitInLoop([&] {
        while (xcb_generic_event_t* event = xcb_poll_for_event(typing.connection().xcb())) {
            const Reply<xcb_generic_event_t> owner(event);
            const auto* press = reinterpret_cast<const xcb_key_press_event_t*>(event);
            typed = typed || (event->response_type == XCB_KEY_PRESS &&
                              press->detail == keycode("K") && press->state == 0);
        }
        return typed;
    }));
    EXPECT_EQ(takeFired(), Ids{});
}

TEST_F(HotKeysTest, LayoutChangeKeepsThePosition) {
    ASSERT_EQ(add(12, control | option, 1).status, 0);  // Q, which is A on a French keyboard
    run({"setxkbmap", "-layout", "fr"});
    useNewKeyboard();
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "Q"), Ids{1});
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "A"), Ids{});
    run({"setxkbmap", "-layout", "dvorak"});
    useNewKeyboard();
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "Q"), Ids{1});
}

TEST_F(HotKeysTest, GrabFollowsTheKeyToAnotherKeycode) {
    ASSERT_EQ(add(keyLeft, control | option, 1).status, 0);
    const xcb_keycode_t before = keycode("LEFT");
    EXPECT_EQ(firedBy({"Control", "Alt"}, "LEFT"), Ids{1});
    run({"setxkbmap", "-keycodes", "xfree86"});
    useNewKeyboard();
    const xcb_keycode_t after = input->keycode("LEFT");
    ASSERT_NE(before, after);
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "LEFT"), Ids{1});
    EXPECT_TRUE(everyVariantIsFree(before, controlAlt)) << "the old keycode is still held";
    EXPECT_FALSE(everyVariantIsFree(after, controlAlt));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(HotKeysTest, GrabsFollowKeysThatChangePlaces) {
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    ASSERT_EQ(add(keyT, control | option, 2).status, 0);
    const xcb_keycode_t k = keycode("K");
    const xcb_keycode_t t = keycode("T");
    editKeyboard({{"<AC08> = " + std::to_string(k), "<AC08> = " + std::to_string(t)},
                  {"<AD05> = " + std::to_string(t), "<AD05> = " + std::to_string(k)}});
    useNewKeyboard();
    ASSERT_EQ(input->keycode("K"), t);
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "K"), Ids{1});
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "T"), Ids{2});
}

TEST_F(HotKeysTest, GrabFollowsTheModifier) {
    ASSERT_EQ(add(keyK, command, 1).status, 0);
    ASSERT_EQ(add(keyK, option, 2).status, 0);
    // Nothing but the modifier map changes: Super to Mod3, Alt to Mod5.
    run({"xmodmap", "-e", "clear mod4", "-e", "clear mod1", "-e", "clear mod5", "-e",
         "add mod3 = Super_L", "-e", "add mod5 = Alt_L"});
    handleAllSoFar();
    EXPECT_EQ(firedBy({"Super"}, "K"), Ids{1});
    EXPECT_EQ(firedBy({"Alt"}, "K"), Ids{2});
    EXPECT_TRUE(everyVariantIsFree(keycode("K"), XCB_MOD_MASK_4));
}

TEST_F(HotKeysTest, MissingAltAndSuperLeaveTheUsualModifiers) {
    run({"xmodmap", "-e", "clear mod1", "-e", "clear mod4"});
    ASSERT_EQ(add(keyK, option, 1).status, 0);
    ASSERT_EQ(add(keyT, command, 2).status, 0);
    EXPECT_FALSE(everyVariantIsFree(keycode("K"), XCB_MOD_MASK_1));
    EXPECT_FALSE(everyVariantIsFree(keycode("T"), XCB_MOD_MASK_4));
}

TEST_F(HotKeysTest, KeyThatIsHeldAtItsNewPlaceIsLoggedAndTriedAgain) {
    ASSERT_EQ(add(keyLeft, control | option, 7).status, 0);
    test::TestClient other(session.displayName());
    constexpr xcb_keycode_t leftOfXfree86 = 100;
    ASSERT_EQ(other.grabKey(leftOfXfree86, controlAlt), 0);
    run({"setxkbmap", "-keycodes", "xfree86"});
    ASSERT_TRUE(waitInLoop([&] { return !log.lines.empty(); }));
    EXPECT_EQ(log.lines.front(),
              "Quorvel: global hotkey 7 lost by a change of the keyboard (error 10)");
    other.ungrabKey(leftOfXfree86, controlAlt);
    run({"setxkbmap", "-keycodes", "evdev"});
    useNewKeyboard();
    EXPECT_EQ(firedOnNewKeyboard({"Control", "Alt"}, "LEFT"), Ids{7});
    EXPECT_TRUE(everyVariantIsFree(leftOfXfree86, controlAlt));
}

TEST_F(HotKeysTest, UnknownKeyOrModifierIsBadValue) {
    EXPECT_EQ(add(10, control, 1).status, 2);
    EXPECT_EQ(add(0xFFFFFFFF, control, 1).status, 2);
    EXPECT_EQ(add(keyK, control | 0x400, 1).status, 2);
    EXPECT_EQ(add(keyK, control | 0x400, 1).ref, std::nullopt);
}

TEST_F(HotKeysTest, KeyThatTheKeyboardLacksIsBadValue) {
    editKeyboard({{"<TLDE>", "<I900>"}});
    EXPECT_EQ(add(keyGrave, control, 1).status, 2);
    EXPECT_EQ(add(keyK, control, 2).status, 0);
}

TEST_F(HotKeysTest, AliasOfAKeyNameIsHonoured) {
    const xcb_keycode_t grave = keycode("GRAVE");
    editKeyboard({{"<TLDE>", "<I900>"}, {"alias <HZTG>", "alias <TLDE>"}});
    test::TestClient other(session.displayName());
    ASSERT_EQ(add(keyGrave, control, 1).status, 0) << "no alias in the map";
    EXPECT_NE(other.grabKey(grave, XCB_MOD_MASK_CONTROL), 0);
}

TEST_F(HotKeysTest, KeyThatVanishesFiresAgainWhenItIsBack) {
    ASSERT_EQ(add(keyGrave, control, 4).status, 0);
    editKeyboard({{"<TLDE>", "<I900>"}});
    ASSERT_TRUE(waitInLoop([&] { return !log.lines.empty(); }));
    EXPECT_EQ(log.lines,
              std::vector<std::string>{
                  "Quorvel: global hotkey 4 lost by a change of the keyboard (error 2)"});
    editKeyboard({{"<I900>", "<TLDE>"}});
    useNewKeyboard();
    EXPECT_EQ(firedOnNewKeyboard({"Control"}, "GRAVE"), Ids{4});
}

TEST_F(HotKeysTest, HandlerMayUnregisterAndRegisterDuringTheEvent) {
    HotKeyRegistration registration = add(keyK, control | option, 1);
    duringEvent = [&] {
        hotKeys->unregisterHotKey(*registration.ref);
        registration = add(keyK, control | option, registration.status == 0 ? 2 : 99);
    };
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{2});
    duringEvent = [&] { hotKeys->unregisterHotKey(*registration.ref); };
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{2});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{});
}

TEST_F(HotKeysTest, RegistrationDuringAHeldPressDoesNotFireAgain) {
    run({"xset", "r", "rate", "100", "50"});
    HotKeyRegistration registration = add(keyK, control | option, 1);
    int presses = 0;
    const Subscription counting = connection->onEvent([&](const xcb_generic_event_t& event) {
        if (event.response_type == XCB_KEY_PRESS) ++presses;
    });
    duringEvent = [&] {
        hotKeys->unregisterHotKey(*registration.ref);
        registration = add(keyK, control | option, 2);
    };
    session.input().press("Control");
    session.input().press("Alt");
    session.input().press("K");
    ASSERT_TRUE(waitInLoop([&] { return presses >= 5; }));
    session.input().releaseAll();
    EXPECT_EQ(takeFired(), Ids{1});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{2});
}

TEST_F(HotKeysTest, HandlerMayEndTheHotKeys) {
    ASSERT_EQ(add(keyK, control | option, 1).status, 0);
    duringEvent = [&] { hotKeys.reset(); };
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{1});
    EXPECT_EQ(firedBy({"Control", "Alt"}, "K"), Ids{});
}

TEST_F(HotKeysTest, LostServerIsAStatus) {
    ASSERT_EQ(add(keyK, control, 1).status, 0);
    session.server().kill();
    ASSERT_TRUE(test::waitUntil([&] { return add(keyT, control, 2).status == 255; }));
    EXPECT_EQ(add(keyT, control, 2).ref, std::nullopt);
}

}  // namespace
}  // namespace quorvel::native
