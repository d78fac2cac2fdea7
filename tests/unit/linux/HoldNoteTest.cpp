#include "platform/linux/HoldNote.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace quorvel::native {
namespace {

constexpr Rect home{-12, 34, 800, 600};

HoldNote throughContent(const HoldNote& note) {
    const WindowNotes::Content content = note.content();
    EXPECT_EQ(content.size(), HoldNote::length);
    return HoldNote(content);
}

TEST(HoldNoteTest, AWindowThatGaveUpNothing) {
    const HoldNote read = throughContent({home, std::nullopt});
    EXPECT_EQ(read.home, home);
    EXPECT_FALSE(read.given);
}

TEST(HoldNoteTest, StatesThatItHasNotLeftYet) {
    const GivenUpStates given{{true, false, false}, {0, 0, 1280, 800}, std::nullopt};
    EXPECT_EQ(throughContent({home, given}).given, given);
}

TEST(HoldNoteTest, EachStateByItself) {
    for (int bits = 0; bits < 8; ++bits) {
        const GivenUpStates given{{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0},
                                  {0, 24, 1280, 776},
                                  GivenUpStates::Normal{{100, -50, 300, 200}, {298, 180}}};
        EXPECT_EQ(throughContent({home, given}).given, given) << bits;
    }
}

TEST(HoldNoteTest, NumbersThatNobodyWroteAreReadWithoutHarm) {
    const HoldNote read(
        WindowNotes::Content(HoldNote::length, std::numeric_limits<std::int32_t>::min()));
    EXPECT_LT(read.home.x, 0);
}

}  // namespace
}  // namespace quorvel::native
