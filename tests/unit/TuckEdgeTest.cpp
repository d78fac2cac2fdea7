#include "main/tucking/TuckEdge.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>

#include "tests/support/Printers.hpp"

namespace quorvel {
namespace {

using Side = TuckEdge::Side;

const Rect screenAX{0, 0, 1440, 900};
/// Away from the origin, so that a forgotten offset shows.
const Rect farScreenAX{1440, -300, 1920, 1080};
const Rect windowAX{1500, 40, 800, 600};

Point tucked(TuckEdge edge, const Rect& screen = farScreenAX) {
    return edge.tuckedOrigin(windowAX, screen);
}
Point revealed(TuckEdge edge, const Rect& screen = farScreenAX) {
    return edge.revealedOrigin(windowAX, screen);
}

struct Expected {
    TuckEdge edge;
    std::string_view raw;
    std::string_view letters;
    Side side;
    bool isCorner;
};

const std::array<Expected, 7> expectedRows{
    {{TuckEdge::left, "left", "left", Side::left, false},
     {TuckEdge::right, "right", "right", Side::right, false},
     {TuckEdge::bottom, "bottom", "bottom", Side::bottom, false},
     {TuckEdge::topLeft, "top-left", "topleft", Side::left, true},
     {TuckEdge::bottomLeft, "bottom-left", "bottomleft", Side::left, true},
     {TuckEdge::topRight, "top-right", "topright", Side::right, true},
     {TuckEdge::bottomRight, "bottom-right", "bottomright", Side::right, true}}};

TEST(TuckEdgeTest, SevenEdgesInStoredOrderWithTheirTextsAndSides) {
    ASSERT_EQ(TuckEdge::allCases.size(), expectedRows.size());
    for (std::size_t i = 0; i < expectedRows.size(); ++i) {
        const auto& [edge, raw, letters, side, isCorner] = expectedRows[i];
        EXPECT_EQ(TuckEdge::allCases[i], edge);
        EXPECT_EQ(static_cast<std::size_t>(static_cast<TuckEdge::Case>(edge)), i);
        EXPECT_EQ(edge.rawValue(), raw);
        EXPECT_EQ(edge.side(), side) << raw;
        EXPECT_EQ(edge.isCorner(), isCorner) << raw;
    }
}

TEST(TuckEdgeTest, EveryStoredTextReadsBack) {
    for (const auto& [edge, raw, letters, side, isCorner] : expectedRows) {
        EXPECT_EQ(TuckEdge::fromRawValue(raw), edge);
        EXPECT_EQ(TuckEdge::parse(raw), edge);
        EXPECT_EQ(TuckEdge::parse(letters), edge);
    }
}

TEST(TuckEdgeTest, EveryEdgeHashesDifferently) {
    const std::unordered_set<TuckEdge> all(TuckEdge::allCases.begin(), TuckEdge::allCases.end());
    EXPECT_EQ(all.size(), 7u);
    std::unordered_set<std::size_t> hashes;
    for (const TuckEdge edge : all) hashes.insert(std::hash<TuckEdge>{}(edge));
    EXPECT_EQ(hashes.size(), 7u);
}

TEST(TuckEdgeTest, RawValueIsExact) {
    for (const char* text :
         {"Left", " left", "topleft", "topLeft", "Top-Left", "top", "none", ""}) {
        EXPECT_EQ(TuckEdge::fromRawValue(text), std::nullopt) << text;
    }
}

TEST(TuckEdgeTest, ParseCountsTheLettersOnly) {
    for (const char* text : {"BOTTOM-right", "bottom right", "bottom_right 3", "\nBottomRight\n"}) {
        EXPECT_EQ(TuckEdge::parse(text), TuckEdge::bottomRight) << text;
    }
    for (const char* text : {"Top-Left", "top left", "top_left"}) {
        EXPECT_EQ(TuckEdge::parse(text), TuckEdge::topLeft) << text;
    }
}

TEST(TuckEdgeTest, TopAndTheEmptyTextAreNoEdge) {
    for (const char* text : {"top", "", " 2 ", "none", "leftright", "lefttop", "l\u00E9ft"}) {
        EXPECT_EQ(TuckEdge::parse(text), std::nullopt) << text;
    }
}

TEST(TuckEdgeTest, AWindowOf800TuckedOnAScreenOf1440By900LeavesTwoPoints) {
    const Rect window{100, 50, 800, 600};
    EXPECT_EQ(TuckEdge(TuckEdge::left).tuckedOrigin(window, screenAX), (Point{-798, 50}));
    EXPECT_EQ(TuckEdge(TuckEdge::right).tuckedOrigin(window, screenAX), (Point{1438, 50}));
    EXPECT_EQ(TuckEdge(TuckEdge::bottom).tuckedOrigin(window, screenAX), (Point{100, 898}));
}

TEST(TuckEdgeTest, TuckedOriginsOfEveryEdge) {
    EXPECT_EQ(tucked(TuckEdge::left), (Point{642, 40}));
    EXPECT_EQ(tucked(TuckEdge::topLeft), (Point{642, -300}));
    EXPECT_EQ(tucked(TuckEdge::bottomLeft), (Point{642, 180}));
    EXPECT_EQ(tucked(TuckEdge::right), (Point{3358, 40}));
    EXPECT_EQ(tucked(TuckEdge::topRight), (Point{3358, -300}));
    EXPECT_EQ(tucked(TuckEdge::bottomRight), (Point{3358, 180}));
    EXPECT_EQ(tucked(TuckEdge::bottom), (Point{1500, 778}));
}

TEST(TuckEdgeTest, RevealedOriginsOfEveryEdge) {
    EXPECT_EQ(revealed(TuckEdge::left), (Point{1440, 40}));
    EXPECT_EQ(revealed(TuckEdge::topLeft), (Point{1440, -300}));
    EXPECT_EQ(revealed(TuckEdge::bottomLeft), (Point{1440, 180}));
    EXPECT_EQ(revealed(TuckEdge::right), (Point{2560, 40}));
    EXPECT_EQ(revealed(TuckEdge::topRight), (Point{2560, -300}));
    EXPECT_EQ(revealed(TuckEdge::bottomRight), (Point{2560, 180}));
    EXPECT_EQ(revealed(TuckEdge::bottom), (Point{1500, 180}));
}

TEST(TuckEdgeTest, TopLeftIsAtTheTopAndBottomRightEndsAtTheBottom) {
    EXPECT_EQ(tucked(TuckEdge::topLeft).y, farScreenAX.minY());
    EXPECT_EQ(tucked(TuckEdge::bottomRight).y + windowAX.height, farScreenAX.maxY());
}

TEST(TuckEdgeTest, ExactlyTwoPointsOfEveryTuckedWindowStayVisible) {
    for (const TuckEdge edge : TuckEdge::allCases) {
        for (const Size size : {Size{800, 600}, Size{3, 3}, Size{5000, 4000}, Size{640.5, 480.5}}) {
            const Rect window{1600, 0, size.width, size.height};
            const Point origin = edge.tuckedOrigin(window, farScreenAX);
            const Rect visible =
                Rect{origin.x, origin.y, size.width, size.height}.intersection(farScreenAX);
            EXPECT_EQ(edge.side() == Side::bottom ? visible.height : visible.width, 2)
                << edge.rawValue();
        }
    }
}

TEST(TuckEdgeTest, ARevealedWindowThatFitsIsWhollyOnTheScreenAndTouchesItsEdge) {
    for (const TuckEdge edge : TuckEdge::allCases) {
        const Rect window{1600, -200, 800, 600};
        const Point origin = edge.revealedOrigin(window, farScreenAX);
        const Rect frame{origin.x, origin.y, 800, 600};
        EXPECT_EQ(frame.intersection(farScreenAX), frame) << edge.rawValue();
        switch (edge.side()) {
            case Side::left:
                EXPECT_EQ(frame.minX(), farScreenAX.minX());
                break;
            case Side::right:
                EXPECT_EQ(frame.maxX(), farScreenAX.maxX());
                break;
            case Side::bottom:
                EXPECT_EQ(frame.maxY(), farScreenAX.maxY());
                break;
        }
    }
}

// In Cocoa space from here on: y grows upwards.
const Rect screenCocoa{100, 200, 1000, 800};

Rect strip(TuckEdge edge, const Rect& tuckedFrameCocoa, const Rect& screen = screenCocoa) {
    return edge.revealStripCocoa(tuckedFrameCocoa, screen);
}

TEST(RevealStripTest, ASliverOfTwoPointsGetsAStripOfSix) {
    EXPECT_EQ(strip(TuckEdge::left, {-298, 300, 400, 500}), (Rect{100, 300, 6, 500}));
    EXPECT_EQ(strip(TuckEdge::right, {1098, 300, 400, 500}), (Rect{1094, 300, 6, 500}));
    EXPECT_EQ(strip(TuckEdge::bottom, {300, -298, 400, 500}), (Rect{300, 200, 400, 6}));
}

TEST(RevealStripTest, AWiderVisiblePartIsTheStrip) {
    EXPECT_EQ(strip(TuckEdge::left, {-200, 300, 400, 500}), (Rect{100, 300, 100, 500}));
    EXPECT_EQ(strip(TuckEdge::right, {1050, 300, 400, 500}), (Rect{1050, 300, 50, 500}));
    EXPECT_EQ(strip(TuckEdge::bottom, {300, -280, 400, 500}), (Rect{300, 200, 400, 20}));
}

TEST(RevealStripTest, TheStripLiesAtTheScreenEdgeWhereverTheVisiblePartIs) {
    EXPECT_EQ(strip(TuckEdge::left, {500, 300, 50, 500}), (Rect{100, 300, 50, 500}));
    EXPECT_EQ(strip(TuckEdge::right, {500, 300, 50, 500}), (Rect{1050, 300, 50, 500}));
    EXPECT_EQ(strip(TuckEdge::bottom, {500, 300, 50, 40}), (Rect{500, 200, 50, 40}));
}

TEST(RevealStripTest, WhatIsOffTheScreenDoesNotCount) {
    EXPECT_EQ(strip(TuckEdge::left, {-298, 100, 400, 500}), (Rect{100, 200, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::right, {1098, 700, 400, 500}), (Rect{1094, 700, 6, 300}));
    EXPECT_EQ(strip(TuckEdge::bottom, {0, -298, 400, 500}), (Rect{100, 200, 300, 6}));
}

TEST(RevealStripTest, AFrameOffTheScreenYieldsSixPointsOfItsOwnExtent) {
    EXPECT_EQ(strip(TuckEdge::left, {-600, 100, 400, 500}), (Rect{100, 100, 6, 500}));
    EXPECT_EQ(strip(TuckEdge::right, {1200, 100, 400, 500}), (Rect{1094, 100, 6, 500}));
    EXPECT_EQ(strip(TuckEdge::bottom, {0, -600, 400, 500}), (Rect{0, 200, 400, 6}));
}

TEST(RevealStripTest, AFrameThatOnlyTouchesTheScreenIsOffIt) {
    EXPECT_EQ(strip(TuckEdge::left, {-300, 100, 400, 500}), (Rect{100, 100, 6, 500}));
    EXPECT_EQ(strip(TuckEdge::bottom, {0, -300, 400, 500}), (Rect{0, 200, 400, 6}));
}

TEST(RevealStripTest, ACornerStripIsClippedToItsHalf) {
    // The halves meet at 600; the windows reach 100 beyond it.
    EXPECT_EQ(strip(TuckEdge::topLeft, {-298, 500, 400, 500}), (Rect{100, 600, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::topRight, {1098, 500, 400, 500}), (Rect{1094, 600, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::bottomLeft, {-298, 200, 400, 500}), (Rect{100, 200, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::bottomRight, {1098, 200, 400, 500}), (Rect{1094, 200, 6, 400}));
}

TEST(RevealStripTest, ACornerStripInsideItsHalfStaysAsItIs) {
    EXPECT_EQ(strip(TuckEdge::topLeft, {-298, 700, 400, 300}), (Rect{100, 700, 6, 300}));
    EXPECT_EQ(strip(TuckEdge::bottomRight, {1098, 200, 400, 300}), (Rect{1094, 200, 6, 300}));
}

TEST(RevealStripTest, ACornerStripOutsideItsHalfSpansTheWholeHalf) {
    EXPECT_EQ(strip(TuckEdge::topLeft, {-298, 250, 400, 300}), (Rect{100, 600, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::topRight, {1050, 250, 400, 300}), (Rect{1050, 600, 50, 400}));
    EXPECT_EQ(strip(TuckEdge::bottomLeft, {-298, 650, 400, 300}), (Rect{100, 200, 6, 400}));
    EXPECT_EQ(strip(TuckEdge::bottomRight, {1098, 650, 400, 300}), (Rect{1094, 200, 6, 400}));
}

TEST(RevealStripTest, ACornerStripThatEndsWhereItsHalfBeginsSpansTheWholeHalf) {
    EXPECT_EQ(strip(TuckEdge::topLeft, {-298, 250, 400, 350}), (Rect{100, 600, 6, 400}));
}

TEST(RevealStripTest, ACornerFrameOffTheScreenIsClippedByItsOwnExtent) {
    EXPECT_EQ(strip(TuckEdge::topLeft, {-900, 500, 400, 300}), (Rect{100, 600, 6, 200}));
    EXPECT_EQ(strip(TuckEdge::bottomRight, {2000, 5000, 400, 300}), (Rect{1094, 200, 6, 400}));
}

TEST(RevealStripTest, HalfPointsAreKept) {
    const Rect oddScreen{0, 0, 1000, 801};
    EXPECT_EQ(strip(TuckEdge::topLeft, {-398, 0, 400, 801}, oddScreen), (Rect{0, 400.5, 6, 400.5}));
    EXPECT_EQ(strip(TuckEdge::bottomLeft, {-398, 0, 400, 801}, oddScreen), (Rect{0, 0, 6, 400.5}));
    EXPECT_EQ(strip(TuckEdge::left, {-390.5, 10.5, 400, 20}, oddScreen), (Rect{0, 10.5, 9.5, 20}));
}

TEST(RevealStripTest, TheStripOfEveryTuckedWindowIsSixPointsAtItsEdgeAndOnTheScreen) {
    const double primaryMaxY = 1000;
    const Rect screenOfWindowAX = flipped(screenCocoa, primaryMaxY);
    for (const TuckEdge edge : TuckEdge::allCases) {
        const Rect window{300, 200, 400, 500};
        const Point origin = edge.tuckedOrigin(window, screenOfWindowAX);
        const Rect frame = flipped({origin.x, origin.y, 400, 500}, primaryMaxY);
        const Rect result = strip(edge, frame);
        EXPECT_EQ(result.intersection(screenCocoa), result) << edge.rawValue();
        EXPECT_EQ(edge.side() == Side::bottom ? result.height : result.width, 6);
        EXPECT_TRUE(result.intersects(frame)) << edge.rawValue();
    }
}

bool shared(TuckEdge edge, const std::vector<Rect>& others, bool withItself = true) {
    std::vector<Rect> all = others;
    if (withItself) all.insert(all.begin(), screenCocoa);
    return tuckEdgeIsShared(edge, screenCocoa, all);
}

/// Which of the seven edges are shared, by their texts in order.
std::string sharedEdges(const std::vector<Rect>& others) {
    std::string result;
    for (const TuckEdge edge : TuckEdge::allCases) {
        if (shared(edge, others)) result += std::string(edge.rawValue()) + " ";
    }
    return result;
}

TEST(SharedEdgeTest, NoOtherDisplaySharesNothing) {
    EXPECT_EQ(sharedEdges({}), "");
    EXPECT_FALSE(shared(TuckEdge::left, {}, false));
}

TEST(SharedEdgeTest, ANeighbourOfFullHeightSharesTheWholeSide) {
    EXPECT_EQ(sharedEdges({{1100, 200, 1000, 800}}), "right top-right bottom-right ");
    EXPECT_EQ(sharedEdges({{-900, 200, 1000, 800}}), "left top-left bottom-left ");
}

TEST(SharedEdgeTest, ADisplayBelowSharesTheBottomAndOneAboveNothing) {
    EXPECT_EQ(sharedEdges({{100, -600, 1000, 800}}), "bottom ");
    EXPECT_EQ(sharedEdges({{100, 1000, 1000, 800}}), "");
}

TEST(SharedEdgeTest, HalfAPointBetweenTheBordersIsStillShared) {
    EXPECT_TRUE(shared(TuckEdge::right, {{1100.5, 200, 1000, 800}}));
    EXPECT_TRUE(shared(TuckEdge::right, {{1099.5, 200, 1000, 800}}));
    EXPECT_TRUE(shared(TuckEdge::left, {{-900.5, 200, 1000, 800}}));
    EXPECT_TRUE(shared(TuckEdge::bottom, {{100, -600.5, 1000, 800}}));
}

TEST(SharedEdgeTest, OnePointBetweenTheBordersIsSharedAndMoreIsNot) {
    for (const double gap : {-1.0, 1.0}) {
        EXPECT_TRUE(shared(TuckEdge::right, {{1100 + gap, 200, 1000, 800}})) << gap;
        EXPECT_TRUE(shared(TuckEdge::left, {{-900 - gap, 200, 1000, 800}})) << gap;
        EXPECT_TRUE(shared(TuckEdge::bottom, {{100, -600 - gap, 1000, 800}})) << gap;
    }
    for (const double gap : {-1.01, 1.01}) {
        EXPECT_FALSE(shared(TuckEdge::right, {{1100 + gap, 200, 1000, 800}})) << gap;
        EXPECT_FALSE(shared(TuckEdge::left, {{-900 - gap, 200, 1000, 800}})) << gap;
        EXPECT_FALSE(shared(TuckEdge::bottom, {{100, -600 - gap, 1000, 800}})) << gap;
    }
}

TEST(SharedEdgeTest, ADiagonalNeighbourSharesNothing) {
    EXPECT_EQ(sharedEdges({{1100, 1000, 1000, 800},
                           {1100, -600, 1000, 800},
                           {-900, 1000, 1000, 800},
                           {-900, -600, 1000, 800}}),
              "");
}

TEST(SharedEdgeTest, AnOverlapOfLessThanAPointIsAnOverlap) {
    EXPECT_EQ(sharedEdges({{1100, 999.5, 1000, 800}}), "right top-right ");
    EXPECT_EQ(sharedEdges({{1100, -599.5, 1000, 800}}), "right bottom-right ");
    EXPECT_EQ(sharedEdges({{1099.5, -600, 1000, 800}}), "bottom ");
}

TEST(SharedEdgeTest, ANeighbourOfTheLowerHalfLeavesTheUpperCornerFree) {
    EXPECT_EQ(sharedEdges({{1100, 200, 1000, 400}}), "right bottom-right ");
    EXPECT_EQ(sharedEdges({{-900, 200, 1000, 400}}), "left bottom-left ");
}

TEST(SharedEdgeTest, ANeighbourOfTheUpperHalfLeavesTheLowerCornerFree) {
    EXPECT_EQ(sharedEdges({{1100, 600, 1000, 400}}), "right top-right ");
    EXPECT_EQ(sharedEdges({{-900, 600, 1000, 400}}), "left top-left ");
}

TEST(SharedEdgeTest, AMirroredDisplayOfTheSameFrameIsNoNeighbour) {
    EXPECT_EQ(sharedEdges({screenCocoa, screenCocoa}), "");
}

TEST(SharedEdgeTest, ADisplayOnePointWideDoesNotBorderItself) {
    const Rect narrow{0, 0, 1, 1};
    for (const TuckEdge edge : TuckEdge::allCases) {
        EXPECT_FALSE(tuckEdgeIsShared(edge, narrow, {narrow})) << edge.rawValue();
    }
}

TEST(SharedEdgeTest, AnyOneOfSeveralNeighboursIsEnough) {
    EXPECT_EQ(sharedEdges({{5000, 0, 10, 10}, {-900, 200, 1000, 800}, {100, -600, 1000, 800}}),
              "left bottom top-left bottom-left ");
}

}  // namespace
}  // namespace quorvel
