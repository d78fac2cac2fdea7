#include "main/shell/ProcessValues.hpp"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(ProcessValuesTest, TheSignatureIsItsFourCharactersReadBigEndian) {
    EXPECT_EQ(hotKeySignature, 0x575A4B48u);
    EXPECT_EQ(fourCharacterCode("AES1"), 0x41455331u);
    EXPECT_NE(hotKeySignature, fourCharacterCode("AES1"));
}

TEST(ProcessValuesTest, TheStatusPictureIsEighteenPointsSquare) {
    EXPECT_EQ(menuBarIconSize, (Size{18, 18}));
}

TEST(ProcessValuesTest, AnEventWithoutContentOrReceiverIsNotHandled) {
    const HotKeyEvent event{HotKeyID{hotKeySignature, 100}};
    int receiver = 0;
    EXPECT_EQ(hotKeyEventHandler(nullptr, nullptr, &receiver), eventNotHandledErr);
    EXPECT_EQ(hotKeyEventHandler(nullptr, &event, nullptr), eventNotHandledErr);
    EXPECT_EQ(eventNotHandledErr, -9874);
}

}  // namespace
}  // namespace quorvel
