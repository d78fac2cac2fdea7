#include "tests/contract/Contract.hpp"
#include "tests/support/x11/XInput.hpp"

namespace quorvel::test {
namespace {

constexpr std::uint32_t control = 0x1000;
constexpr std::uint32_t option = 0x800;
constexpr std::uint32_t shift = 0x200;
constexpr std::uint32_t command = 0x100;
constexpr std::uint32_t keyT = 17;
constexpr std::int32_t heldAlready = 10;

class HotKeysContract : public Contract {
protected:
    HotKeysContract() { EXPECT_EQ(desktop.hotKeys.installEventHandler(take, this), 0); }

    HotKeyRegistration add(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) {
        return desktop.hotKeys.registerHotKey(keyCode, modifiers, {signature, id});
    }
    bool arrives(std::size_t presses) {
        return rig->until([&] { return fired.size() >= presses; });
    }
    bool staysAt(std::size_t presses) {
        return rig->never([&] { return fired.size() != presses; });
    }

    static constexpr std::uint32_t signature = 0x54455354;
    std::vector<std::uint32_t> fired;

private:
    static std::int32_t take(void*, const HotKeyEvent* event, void* userData) {
        auto* const self = static_cast<HotKeysContract*>(userData);
        EXPECT_TRUE(event->directObject.has_value());
        EXPECT_EQ(event->directObject->signature, signature);
        self->fired.push_back(event->directObject->id);
        return 0;
    }
};

TEST_P(HotKeysContract, OnePressFiresOnce) {
    const HotKeyRegistration added = add(keyT, control | option, 100);
    EXPECT_EQ(added.status, 0);
    EXPECT_TRUE(added.ref.has_value());
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
    EXPECT_TRUE(staysAt(1));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{100}));
}

TEST_P(HotKeysContract, EachPressFires) {
    add(keyT, control | option, 100);
    for (int i = 0; i < 5; ++i) rig->press("T", control | option);
    EXPECT_TRUE(arrives(5));
    EXPECT_TRUE(staysAt(5));
}

TEST_P(HotKeysContract, KeysAreToldApartByTheirIdentifiers) {
    add(keyT, control | option, 100);
    add(keyT, control | shift, 101);
    add(96, command, 102);
    rig->press("F5", command);
    rig->press("T", control | shift);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(3));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{102, 101, 100}));
}

TEST_P(HotKeysContract, EachModifierAloneAndAllTogether) {
    const std::vector<std::uint32_t> masks{control, option, shift, command,
                                           control | option | shift | command};
    for (std::uint32_t i = 0; i < masks.size(); ++i) {
        EXPECT_EQ(add(keyT, masks[i], i).status, 0);
    }
    for (const std::uint32_t mask : masks) rig->press("T", mask);
    EXPECT_TRUE(arrives(masks.size()));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{0, 1, 2, 3, 4}));
}

TEST_P(HotKeysContract, EveryKeyOfTheTableFires) {
    // Not with control and option: there the X server itself takes F1 to F12, to change the
    // virtual terminal.
    std::vector<std::uint32_t> expected;
    for (const KeyPosition& key : keyPositions()) {
        if (key.virtualCode == 0xFFFF) continue;
        EXPECT_EQ(add(key.virtualCode, control | shift, 1000 + key.virtualCode).status, 0)
            << key.name;
        expected.push_back(1000 + key.virtualCode);
    }
    for (const KeyPosition& key : keyPositions()) {
        if (key.virtualCode != 0xFFFF) rig->press(key.name, control | shift);
    }
    EXPECT_TRUE(arrives(expected.size()));
    EXPECT_EQ(fired, expected);
}

TEST_P(HotKeysContract, FurtherModifierKeepsItFromFiring) {
    add(keyT, control | option, 100);
    rig->press("T", control | option | shift);
    rig->press("T", control | option | command);
    rig->press("T", control);
    rig->press("T", 0);
    EXPECT_TRUE(staysAt(0));
}

TEST_P(HotKeysContract, CapsLockAndNumLockDoNotMatter) {
    add(keyT, control | option, 100);
    rig->toggleLock(Rig::Lock::capsLock);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
    rig->toggleLock(Rig::Lock::numLock);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(2));
    rig->toggleLock(Rig::Lock::capsLock);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(3));
}

TEST_P(HotKeysContract, HeldKeyDoesNotRepeat) {
    add(keyT, control | option, 100);
    rig->keyDown("T", control | option);
    EXPECT_TRUE(arrives(1));
    // The first repetition of a keyboard comes after 0.25 to 0.7 s.
    EXPECT_TRUE(rig->never([&] { return fired.size() > 1; }, 1s));
    rig->keyUp("T", control | option);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(2));
    EXPECT_TRUE(staysAt(2));
}

TEST_P(HotKeysContract, CombinationOfAnotherProgramIsRefused) {
    rig->holdElsewhere("T", control | option);
    const HotKeyRegistration refused = add(keyT, control | option, 100);
    EXPECT_EQ(refused.status, heldAlready);
    EXPECT_FALSE(refused.ref.has_value());
    rig->press("T", control | option);
    EXPECT_TRUE(staysAt(0));
    // Nothing of it stays registered, so it can be had once the other program lets go.
    rig->releaseElsewhere("T", control | option);
    rig->press("T", control | option);
    EXPECT_TRUE(staysAt(0));
    EXPECT_EQ(add(keyT, control | option, 101).status, 0);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
}

TEST_P(HotKeysContract, OtherModifiersOfARefusedKeyAreFree) {
    rig->holdElsewhere("T", control | option);
    EXPECT_EQ(add(keyT, control | option, 100).status, heldAlready);
    EXPECT_EQ(add(keyT, control | shift, 101).status, 0);
}

TEST_P(HotKeysContract, CombinationThatWeHoldIsRefused) {
    EXPECT_EQ(add(keyT, control | option, 100).status, 0);
    const HotKeyRegistration again = add(keyT, control | option, 101);
    EXPECT_EQ(again.status, heldAlready);
    EXPECT_FALSE(again.ref.has_value());
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
    EXPECT_TRUE(staysAt(1));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{100}));
}

TEST_P(HotKeysContract, NothingFiresAfterUnregistering) {
    const HotKeyRegistration added = add(keyT, control | option, 100);
    ASSERT_TRUE(added.ref.has_value());
    desktop.hotKeys.unregisterHotKey(*added.ref);
    rig->press("T", control | option);
    EXPECT_TRUE(staysAt(0));
}

TEST_P(HotKeysContract, UnregisteredCombinationIsFreeForAll) {
    const HotKeyRegistration added = add(keyT, control | option, 100);
    ASSERT_TRUE(added.ref.has_value());
    desktop.hotKeys.unregisterHotKey(*added.ref);
    EXPECT_EQ(add(keyT, control | option, 101).status, 0);
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{101}));
}

TEST_P(HotKeysContract, UnregisteringLeavesTheOtherKeys) {
    const HotKeyRegistration first = add(keyT, control | option, 100);
    add(keyT, control | shift, 101);
    desktop.hotKeys.unregisterHotKey(first.ref.value());
    rig->press("T", control | option);
    rig->press("T", control | shift);
    EXPECT_TRUE(arrives(1));
    EXPECT_TRUE(staysAt(1));
    EXPECT_EQ(fired, (std::vector<std::uint32_t>{101}));
}

TEST_P(HotKeysContract, UnknownReferenceIsIgnored) {
    add(keyT, control | option, 100);
    desktop.hotKeys.unregisterHotKey(HotKeyRef{987654});
    rig->press("T", control | option);
    EXPECT_TRUE(arrives(1));
}

INSTANTIATE_TEST_SUITE_P(, HotKeysContract,
                         testing::Values(simulatedRig(), bareRig(), hotPlugRig()), rigName);

}  // namespace
}  // namespace quorvel::test
