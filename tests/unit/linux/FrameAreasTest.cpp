#include <gtest/gtest.h>

#include "platform/linux/FrameReader.hpp"
#include "tests/support/Printers.hpp"

namespace quorvel::native {
namespace {

constexpr Rect client{100, 100, 400, 300};

TEST(FrameAreasTest, WindowWithoutAFrameIsSeenWithItsBorder) {
    const Rect withBorder = client.grown(3);
    EXPECT_EQ(seenArea(withBorder, withBorder, {}, {}), withBorder);
}

TEST(FrameAreasTest, FrameIsSeenWhereNothingIsSaidOfDecorations) {
    const Rect frame{98, 82, 404, 320};
    EXPECT_EQ(seenArea(client, frame, {}, {}), frame);
}

TEST(FrameAreasTest, InvisibleBorderAroundTheDecorationsDoesNotCount) {
    const Extents decoration{1, 1, 25, 1};
    const Rect frame{89, 65, 422, 346};
    EXPECT_EQ(seenArea(client, frame, {}, decoration), (Rect{99, 75, 402, 326}));
}

TEST(FrameAreasTest, DecorationThatDoesNotFitIntoTheFrameIsNotBelieved) {
    const Extents decoration{5, 5, 29, 5};
    const Rect shaded{95, 71, 410, 29};
    EXPECT_EQ(seenArea(client, shaded, {}, decoration), shaded);
    EXPECT_EQ(seenArea(client, client, {}, decoration), client);
}

TEST(FrameAreasTest, ShadowThatTheClientDrawsDoesNotCount) {
    const Extents shadow{26, 27, 23, 29};
    EXPECT_EQ(seenArea(client, client, shadow, {}), (Rect{126, 123, 347, 248}));
}

TEST(FrameAreasTest, ShadowIsNotBelievedOfAWindowThatWasDecoratedAllTheSame) {
    const Extents shadow{26, 27, 23, 29};
    const Rect frame{98, 82, 404, 320};
    EXPECT_EQ(seenArea(client, frame, shadow, {}), frame);
}

TEST(FrameAreasTest, ShadowThatLeavesNothingIsNotBelieved) {
    EXPECT_EQ(seenArea(client, client, {200, 200, 0, 0}, {}), client);
    EXPECT_EQ(seenArea(client, client, {0, 0, 0x7FFF, 0x7FFF}, {}), client);
}

}  // namespace
}  // namespace quorvel::native
