#include "main/tucking/TuckAnimationStyle.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace quorvel {
namespace {

using enum TuckAnimationStyle;
using std::chrono::milliseconds;

struct Expected {
    TuckAnimationStyle style;
    std::string_view raw;
    std::string_view displayName;
    milliseconds duration;
};

constexpr std::array<Expected, 5> expectedRows{
    {{instant, "instant", "Instant", milliseconds{0}},
     {slide, "slide", "Slide", milliseconds{160}},
     {easeOut, "easeout", "Ease Out", milliseconds{180}},
     {easeInOut, "easeinout", "Ease In-Out", milliseconds{200}},
     {spring, "spring", "Spring", milliseconds{280}}}};

const std::vector<TuckAnimationStyle> animated{slide, easeOut, easeInOut, spring};

TEST(TuckAnimationStyleTest, FiveStylesInMenuOrderWithNamesAndDurations) {
    for (std::size_t i = 0; i < expectedRows.size(); ++i) {
        const auto& [style, raw, name, time] = expectedRows[i];
        EXPECT_EQ(allTuckAnimationStyles[i], style);
        EXPECT_EQ(static_cast<std::size_t>(style), i);
        EXPECT_EQ(rawValue(style), raw);
        EXPECT_EQ(displayName(style), name);
        EXPECT_EQ(duration(style), time);
    }
}

TEST(TuckAnimationStyleTest, EveryStoredTextReadsBack) {
    for (const TuckAnimationStyle style : allTuckAnimationStyles) {
        EXPECT_EQ(tuckAnimationStyleFromRawValue(rawValue(style)), style);
        EXPECT_EQ(parseTuckAnimationStyle(rawValue(style)), style);
        EXPECT_EQ(parseTuckAnimationStyle(displayName(style)), style);
    }
}

TEST(TuckAnimationStyleTest, RawValueIsExact) {
    for (const char* text : {"Slide", " slide", "easeOut", "ease-out", "", "none"}) {
        EXPECT_EQ(tuckAnimationStyleFromRawValue(text), std::nullopt) << text;
    }
}

TEST(TuckAnimationStyleTest, ParseCountsTheLettersOnly) {
    for (const char* text : {"Ease-Out", "ease out", "EASE_OUT 2", "easeOut"}) {
        EXPECT_EQ(parseTuckAnimationStyle(text), easeOut) << text;
    }
    for (const char* text : {"", "none", "ease", "easein", "slides", "spr\u00EFng"}) {
        EXPECT_EQ(parseTuckAnimationStyle(text), std::nullopt) << text;
    }
}

TEST(ProgressTest, InstantIsThereAtOnce) {
    for (const double t : {-1.0, 0.0, 0.3, 1.0, 2.0}) EXPECT_EQ(progress(instant, t), 1);
}

TEST(ProgressTest, NegativeTimeIsTheStartOfEveryAnimation) {
    for (const TuckAnimationStyle style : animated) {
        EXPECT_EQ(progress(style, -0.25), 0);
        EXPECT_EQ(progress(style, -std::numeric_limits<double>::infinity()), 0);
        EXPECT_EQ(progress(style, 0), 0);
    }
}

TEST(ProgressTest, EveryAnimationEndsExactly) {
    for (const TuckAnimationStyle style : animated) {
        EXPECT_EQ(progress(style, 1), 1);
        EXPECT_EQ(progress(style, 1.5), 1);
        EXPECT_EQ(progress(style, std::numeric_limits<double>::infinity()), 1);
    }
}

TEST(ProgressTest, SpringOvershootsNearTheEndAndSettlesAtOne) {
    EXPECT_GT(progress(spring, 0.9), 1);
    EXPECT_EQ(progress(spring, 1), 1);
}

TEST(ProgressTest, EaseInOutIsExactlyHalfWayAtHalfTimeByBothBranches) {
    EXPECT_EQ(progress(easeInOut, 0.5), 0.5);
    EXPECT_NEAR(progress(easeInOut, std::nextafter(0.5, 0)), 0.5, 1e-15);
}

TEST(ProgressTest, CurvesFollowTheirEquations) {
    EXPECT_EQ(progress(slide, 0.25), 0.25);
    EXPECT_EQ(progress(slide, 0.7), 0.7);
    EXPECT_DOUBLE_EQ(progress(easeOut, 0.5), 0.875);
    EXPECT_DOUBLE_EQ(progress(easeOut, 0.25), 0.578125);
    EXPECT_DOUBLE_EQ(progress(easeInOut, 0.25), 0.0625);
    EXPECT_DOUBLE_EQ(progress(easeInOut, 0.75), 0.9375);
    EXPECT_DOUBLE_EQ(progress(spring, 0.5), 1 - 2.70158 * 0.125 + 1.70158 * 0.25);
    EXPECT_DOUBLE_EQ(progress(spring, 0.9), 1 - 2.70158 * 0.001 + 1.70158 * 0.01);
}

TEST(ProgressTest, OnlySpringEverLeavesTheWayAndOnlyForwards) {
    double highest = 0;
    for (const TuckAnimationStyle style : animated) {
        double last = 0;
        for (int i = 0; i <= 1000; ++i) {
            const double p = progress(style, i / 1000.0);
            EXPECT_GE(p, -1e-12);
            if (style == spring) {
                highest = std::max(highest, p);
            } else {
                EXPECT_LE(p, 1);
                EXPECT_GE(p, last);
            }
            last = p;
        }
    }
    EXPECT_NEAR(highest, 1.1, 0.001);
}

TEST(ProgressTest, CurvesHaveNoJumps) {
    for (const TuckAnimationStyle style : animated) {
        for (int i = 0; i < 1000; ++i) {
            const double step = progress(style, (i + 1) / 1000.0) - progress(style, i / 1000.0);
            EXPECT_LT(std::abs(step), 0.006) << rawValue(style) << " at " << i;
        }
    }
}

}  // namespace
}  // namespace quorvel
