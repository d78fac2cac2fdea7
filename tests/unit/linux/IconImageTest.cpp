#include "platform/linux/status/IconImage.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel::native {
namespace {

using testing::Each;
using testing::ElementsAre;

IconImage plain(int size, std::uint32_t pixel) {
    return {size, std::vector<std::uint32_t>(static_cast<std::size_t>(size * size), pixel)};
}

TEST(IconImageTest, TheOneOfExactlyThatSizeIsTakenAsItIs) {
    EXPECT_EQ(iconOfSize({plain(16, 1), plain(22, 2), plain(24, 3)}, 22), plain(22, 2));
}

TEST(IconImageTest, ElseTheNextLargerOneIsMadeSmaller) {
    constexpr std::uint32_t red = 0xFFFF0000;
    constexpr std::uint32_t blue = 0xFF0000FF;
    EXPECT_EQ(iconOfSize({plain(16, red), plain(48, red), plain(24, blue)}, 20), plain(20, blue));
}

TEST(IconImageTest, WhereAllAreSmallerTheLargestIsMadeLarger) {
    constexpr std::uint32_t green = 0x8000FF00;
    EXPECT_EQ(iconOfSize({plain(16, 0), plain(22, green)}, 64), plain(64, green));
}

TEST(IconImageTest, WithoutAnyThereIsNone) {
    EXPECT_EQ(iconOfSize({}, 22), IconImage{});
    EXPECT_EQ(iconOfSize({plain(16, 1)}, 0), IconImage{});
}

TEST(IconImageTest, APixelIsTheMeanOfWhatItCoversByAlpha) {
    // Transparent pixels have no colour of their own to mix in.
    const IconImage halves{2, {0xFFFF0000, 0x0000FF00, 0xFFFF0000, 0x0000FF00}};
    EXPECT_THAT(iconOfSize({halves}, 1).pixels, ElementsAre(0x80FF0000));
}

TEST(IconImageTest, UnevenScalesShareThePixelsBetween) {
    const IconImage three{3,
                          {0xFF000000, 0xFFFFFFFF, 0xFF000000, 0xFF000000, 0xFFFFFFFF, 0xFF000000,
                           0xFF000000, 0xFFFFFFFF, 0xFF000000}};
    EXPECT_THAT(iconOfSize({three}, 2).pixels, Each(0xFF555555));
}

TEST(IconImageTest, PremultipliedColoursAreNeverAboveAlpha) {
    EXPECT_THAT(premultiplied({2, {0xFF102030, 0x80FF8000, 0x00FFFFFF, 0x01FFFFFF}}),
                ElementsAre(0xFF102030, 0x80804000, 0x00000000, 0x01010101));
}

TEST(IconImageTest, TheCircleIsRoundAndStriped) {
    for (const int size : {16, 22, 24, 48}) {
        const IconImage circle = circleWithVerticalFill(size);
        const auto alpha = [&](int x, int y) {
            return circle.pixels[static_cast<std::size_t>(y * size + x)] >> 24;
        };
        ASSERT_EQ(circle.pixels.size(), static_cast<std::size_t>(size * size));
        EXPECT_EQ(alpha(0, 0), 0u);
        EXPECT_EQ(alpha(size - 1, size - 1), 0u);
        const auto isInk = [&](int x) { return alpha(x, size / 2) > 127; };
        int changes = 0;
        for (int x = 1; x < size; ++x) changes += isInk(x) != isInk(x - 1) ? 1 : 0;
        EXPECT_GE(changes, 6) << size;
    }
}

}  // namespace
}  // namespace quorvel::native
