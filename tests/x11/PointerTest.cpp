#include "platform/linux/X11Pointer.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::native {
namespace {

class PointerTest : public test::ConnectedTest {
protected:
    PointerTest()
        : ConnectedTest({.server = test::XServerKind::hotPlug, .windowManager = std::nullopt}) {}

    X11Screens screens{*connection, loop};
    X11Pointer pointer{*connection, screens};
};

TEST_F(PointerTest, LocationHasItsOriginAtTheBottomLeftOfThePrimary) {
    session.input().moveTo(0, 0);
    EXPECT_EQ(pointer.read().locationCocoa, (Point{0, 800})) << "topmost row";
    session.input().moveTo(100, 799);
    EXPECT_EQ(pointer.read().locationCocoa, (Point{100, 1})) << "lowest row";
    session.input().warpTo(1279, 30);
    EXPECT_EQ(pointer.read().locationCocoa, (Point{1279, 770}));
}

TEST_F(PointerTest, CursorIsOnTheDisplayThatShowsIt) {
    session.server().plug("DUMMY1", 0, 800);
    ASSERT_TRUE(waitInLoop([&] { return screens.screens().size() == 2; }));
    const auto shownOn = [&](int x, int y) {
        session.input().warpTo(x, y);
        std::vector<std::string> names;
        for (const Screen& screen : screens.screens()) {
            if (cursorIsOn(screen.frameCocoa, pointer.read().locationCocoa)) {
                names.push_back(screen.localizedName);
            }
        }
        return names;
    };
    EXPECT_EQ(shownOn(5, 799), std::vector<std::string>{"DUMMY0"});
    EXPECT_EQ(shownOn(5, 800), std::vector<std::string>{"DUMMY1"});
    EXPECT_EQ(shownOn(1279, 1599), std::vector<std::string>{"DUMMY1"});
}

TEST_F(PointerTest, LocationFollowsThePrimaryAwayFromTheRootOrigin) {
    session.server().xrandr({"--output", "DUMMY0", "--mode", "1280x800", "--pos", "0x1080",
                             "--output", "DUMMY1", "--mode", "1920x1080", "--pos", "1280x0",
                             "--primary"});
    ASSERT_TRUE(waitInLoop([&] { return screens.axOriginInRoot() == Point{1280, 0}; }));
    session.input().warpTo(1280, 0);
    EXPECT_EQ(pointer.read().locationCocoa, (Point{0, 1080}));
    session.input().warpTo(0, 1879);
    EXPECT_EQ(pointer.read().locationCocoa, (Point{-1280, -799}));
}

TEST_F(PointerTest, FirstThreeButtonsCountAndTheOthersDoNot) {
    EXPECT_EQ(pointer.read().pressedButtons, 0U);
    for (std::uint8_t button = 1; button <= 3; ++button) {
        session.input().pressButton(button);
        EXPECT_EQ(pointer.read().pressedButtons, 1U << (button - 1));
        session.input().releaseButton(button);
    }
    session.input().pressButton(1);
    session.input().pressButton(3);
    EXPECT_EQ(pointer.read().pressedButtons, 5U);
    session.input().releaseButton(1);
    session.input().releaseButton(3);
    for (std::uint8_t button = 4; button <= 9; ++button) {
        session.input().pressButton(button);
        EXPECT_EQ(pointer.read().pressedButtons, 0U) << "button " << unsigned{button};
        session.input().releaseButton(button);
    }
}

TEST_F(PointerTest, HeldModifiersAreNoButtons) {
    session.input().press("Shift");
    session.input().press("Super");
    EXPECT_EQ(pointer.read().pressedButtons, 0U);
    session.input().release("Super");
    session.input().release("Shift");
}

TEST_F(PointerTest, LostServerGivesAPointOffEveryDisplay) {
    session.server().kill();
    ASSERT_TRUE(test::waitUntil([&] {
        pointer.read();
        return connection->isLost();
    }));
    const PointerState state = pointer.read();
    EXPECT_EQ(state.pressedButtons, 0U);
    EXPECT_FALSE((Rect{-10000, -10000, 20000, 20000}).contains(state.locationCocoa));
}

}  // namespace
}  // namespace quorvel::native
