#include "main/settings/HotZoneCorner.hpp"

#include <gtest/gtest.h>

#include <string>

namespace quorvel {
namespace {

struct Expected {
    HotZoneCorner corner;
    std::string_view raw;
    std::string_view label;
};

constexpr std::array<Expected, 4> expectedRows{
    {{HotZoneCorner::bottomLeft, "bottomLeft", "Bottom left"},
     {HotZoneCorner::bottomRight, "bottomRight", "Bottom right"},
     {HotZoneCorner::topLeft, "topLeft", "Top left"},
     {HotZoneCorner::topRight, "topRight", "Top right"}}};

TEST(HotZoneCornerTest, StoredTextsAndLabelsInSortingOrder) {
    for (std::size_t i = 0; i < expectedRows.size(); ++i) {
        EXPECT_EQ(allHotZoneCorners[i], expectedRows[i].corner);
        EXPECT_EQ(static_cast<std::size_t>(expectedRows[i].corner), i);
        EXPECT_EQ(rawValue(expectedRows[i].corner), expectedRows[i].raw);
        EXPECT_EQ(label(expectedRows[i].corner), expectedRows[i].label);
    }
}

TEST(HotZoneCornerTest, EveryStoredTextReadsBack) {
    for (const HotZoneCorner corner : allHotZoneCorners) {
        EXPECT_EQ(hotZoneCornerFromRawValue(rawValue(corner)), corner);
        EXPECT_EQ(parseHotZoneCorner(rawValue(corner)), corner);
        EXPECT_EQ(parseHotZoneCorner(label(corner)), corner);
    }
}

TEST(HotZoneCornerTest, RawValueIsExact) {
    for (const char* text :
         {"topleft", "TopLeft", "top-left", " topLeft", "topLeft ", "", "none"}) {
        EXPECT_EQ(hotZoneCornerFromRawValue(text), std::nullopt) << text;
    }
}

TEST(HotZoneCornerTest, ParseCountsTheLettersOnly) {
    for (const char* text : {"topLeft", "top-left", "Top Left", "TOP_LEFT", "top left 2"}) {
        EXPECT_EQ(parseHotZoneCorner(text), HotZoneCorner::topLeft) << text;
    }
    EXPECT_EQ(parseHotZoneCorner("\tbottom\nRIGHT!"), HotZoneCorner::bottomRight);
}

TEST(HotZoneCornerTest, NoneEmptyAndForeignTextsAreNoCorner) {
    for (const char* text :
         {"none", "", " 2 ", "left", "top", "lefttop", "topleftt", "topl\u00E9ft"}) {
        EXPECT_EQ(parseHotZoneCorner(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace quorvel
