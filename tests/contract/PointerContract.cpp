#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class PointerContract : public Contract {
protected:
    Point location() { return desktop.pointer.read().locationCocoa; }
    unsigned buttons() { return desktop.pointer.read().pressedButtons; }
};

TEST_P(PointerContract, TopmostRowHasTheHeightOfThePrimaryDisplay) {
    rig->movePointer({17, 0});
    EXPECT_EQ(location(), (Point{17, 800}));
}

TEST_P(PointerContract, LowestRowIsOneAboveZero) {
    rig->movePointer({1279, 799});
    EXPECT_EQ(location(), (Point{1279, 1}));
}

TEST_P(PointerContract, CornersBelongToTheDisplay) {
    const Rect frameCocoa = desktop.screens.screens().at(0).frameCocoa;
    for (const Point corner : {Point{0, 0}, Point{1279, 0}, Point{0, 799}, Point{1279, 799}}) {
        rig->movePointer(corner);
        EXPECT_TRUE(cursorIsOn(frameCocoa, location())) << corner.x << "," << corner.y;
    }
}

TEST_P(PointerContract, EachOfThreeButtonsHasItsBit) {
    EXPECT_EQ(buttons(), 0U);
    for (const std::uint8_t button : {std::uint8_t{1}, std::uint8_t{2}, std::uint8_t{3}}) {
        rig->pressButton(button);
        EXPECT_EQ(buttons(), 1U << (button - 1U));
        rig->releaseButton(button);
        EXPECT_EQ(buttons(), 0U);
    }
}

TEST_P(PointerContract, ButtonsHeldTogetherAreAllSeen) {
    rig->pressButton(1);
    rig->pressButton(3);
    EXPECT_EQ(buttons(), 0b101U);
    rig->releaseButton(1);
    EXPECT_EQ(buttons(), 0b100U);
}

TEST_P(PointerContract, WheelIsNotAButton) {
    rig->pressButton(4);
    EXPECT_EQ(buttons(), 0U);
    rig->releaseButton(4);
    rig->pressButton(5);
    EXPECT_EQ(buttons(), 0U);
}

INSTANTIATE_TEST_SUITE_P(, PointerContract, testing::Values(simulatedRig(), bareRig()), rigName);

class PointerOnTwoDisplaysContract : public PointerContract {};

TEST_P(PointerOnTwoDisplaysContract, PointBesideATallerDisplayIsMeasuredFromThePrimary) {
    rig->arrange({{0, 0, 1280, 800}, {1280, 0, 1920, 1080}});
    ASSERT_TRUE(rig->until([&] { return desktop.screens.screens().size() == 2; }));
    rig->movePointer({2000, 1079});
    EXPECT_TRUE(rig->until([&] { return location() == Point{2000, -279}; }));
    EXPECT_TRUE(cursorIsOn(desktop.screens.screens()[1].frameCocoa, location()));
    EXPECT_FALSE(cursorIsOn(desktop.screens.screens()[0].frameCocoa, location()));
}

INSTANTIATE_TEST_SUITE_P(, PointerOnTwoDisplaysContract,
                         testing::Values(simulatedRig(), hotPlugRig()), rigName);

}  // namespace
}  // namespace quorvel::test
