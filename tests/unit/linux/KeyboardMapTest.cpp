#include "platform/linux/KeyboardMap.hpp"

#include <gtest/gtest.h>

#include <set>

#include "main/shortcuts/HotKeySpec.hpp"

namespace quorvel::native {
namespace {

TEST(KeyboardMapTest, EveryKeyThatAShortcutCanNameHasAPlaceOfItsOwn) {
    std::set<KeyName> names;
    for (const auto& [name, code] : virtualKeyCodes()) {
        const auto place = keyNameOf(code);
        ASSERT_TRUE(place) << name;
        EXPECT_TRUE(names.insert(*place).second) << name;
    }
    EXPECT_EQ(names.size(), 73U);
    EXPECT_EQ(keyNameOf(10), std::nullopt);
    EXPECT_EQ(keyNameOf(0xFFFFFFFF), std::nullopt);
}

TEST(KeyboardMapTest, KeycodeIsThatOfTheName) {
    KeyboardMap map;
    EXPECT_EQ(map.keycodeOf(51), std::nullopt);
    map.keycodes[KeyName{'B', 'K', 'S', 'P'}] = 22;
    map.keycodes[KeyName{'U', 'P', 0, 0}] = 111;
    EXPECT_EQ(map.keycodeOf(51), 22);
    EXPECT_EQ(map.keycodeOf(126), 111);
    EXPECT_EQ(map.keycodeOf(117), std::nullopt);
}

TEST(KeyboardMapTest, ModifiersAreThoseOfTheServer) {
    KeyboardMap map;
    EXPECT_EQ(map.modifiersOf(0), 0);
    EXPECT_EQ(map.modifiersOf(0x1000 | 0x200), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT);
    EXPECT_EQ(map.modifiersOf(0x800), XCB_MOD_MASK_1);
    EXPECT_EQ(map.modifiersOf(0x100), XCB_MOD_MASK_4);
    map.option = XCB_MOD_MASK_5;
    map.command = XCB_MOD_MASK_3;
    EXPECT_EQ(map.modifiersOf(0x1B00),
              XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_5 | XCB_MOD_MASK_3);
    EXPECT_EQ(map.modifiersOf(0x400), std::nullopt);
    EXPECT_EQ(map.modifiersOf(0x80001000), std::nullopt);
}

}  // namespace
}  // namespace quorvel::native
