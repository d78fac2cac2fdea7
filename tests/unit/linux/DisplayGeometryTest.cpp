#include "platform/linux/DisplayGeometry.hpp"

#include <gtest/gtest.h>

#include "tests/support/Printers.hpp"

namespace quorvel::native {
namespace {

const std::vector<Rect> sideBySide{{0, 0, 1280, 800}, {1280, 0, 1920, 1080}};

TEST(DisplayGeometryTest, WindowAcrossTwoDisplaysIsWhollyOnThem) {
    EXPECT_TRUE(isWhollyOnDisplays({1000, 100, 600, 400}, sideBySide));
    EXPECT_TRUE(isWhollyOnDisplays({0, 0, 1280, 800}, sideBySide));
}

TEST(DisplayGeometryTest, WindowThatReachesBelowTheShorterDisplayIsNotWhollyOnThem) {
    EXPECT_FALSE(isWhollyOnDisplays({1000, 500, 600, 400}, sideBySide));
    EXPECT_TRUE(isWhollyOnDisplays({1280, 500, 600, 400}, sideBySide));
}

TEST(DisplayGeometryTest, OnePixelOutsideIsOutside) {
    EXPECT_FALSE(isWhollyOnDisplays({-1, 0, 400, 300}, sideBySide));
    EXPECT_FALSE(isWhollyOnDisplays({2801, 100, 400, 300}, sideBySide));
    EXPECT_TRUE(isWhollyOnDisplays({2800, 100, 400, 300}, sideBySide));
}

TEST(DisplayGeometryTest, OverlappingDisplaysCountOnce) {
    const std::vector<Rect> mirrored{{0, 0, 1280, 800}, {0, 0, 1024, 768}};
    EXPECT_FALSE(isWhollyOnDisplays({1000, 600, 400, 300}, mirrored));
    EXPECT_TRUE(isWhollyOnDisplays({800, 400, 480, 400}, mirrored));
}

TEST(DisplayGeometryTest, NothingIsOnNoDisplay) {
    EXPECT_FALSE(isWhollyOnDisplays({0, 0, 10, 10}, {}));
    EXPECT_EQ(originOnNearestDisplay({70, 80, 10, 10}, {}), (Point{70, 80}));
}

TEST(DisplayGeometryTest, WindowOfWhichSomethingIsSeenStays) {
    EXPECT_EQ(originOnNearestDisplay({-399, 790, 400, 300}, sideBySide), (Point{-399, 790}));
}

TEST(DisplayGeometryTest, WindowOutsideComesWhollyOntoTheNearestDisplayByTheShortestWay) {
    EXPECT_EQ(originOnNearestDisplay({-400, 100, 400, 300}, sideBySide), (Point{0, 100}));
    EXPECT_EQ(originOnNearestDisplay({3300, 1200, 400, 300}, sideBySide), (Point{2800, 780}));
    // Below the shorter display: 50 up is less than 280 to the right.
    EXPECT_EQ(originOnNearestDisplay({600, 850, 400, 300}, sideBySide), (Point{600, 500}));
}

TEST(DisplayGeometryTest, WindowLargerThanTheDisplayGetsItsUpperLeftCornerOntoIt) {
    EXPECT_EQ(originOnNearestDisplay({-2000, -50, 2000, 900}, {{0, 0, 1280, 800}}), (Point{0, 0}));
}

}  // namespace
}  // namespace quorvel::native
