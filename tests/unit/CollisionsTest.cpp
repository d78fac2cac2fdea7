#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/SettingsLayout.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Corners --------------------------------------------------------------------------------------

TEST(CornerCollisionsTest, TwoInOneCornerOfOneDisplayGiveOneMessageThatNamesTheLaterFirst) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D1"}, {"/b", "topLeft", "D1"}}),
                ElementsAre("/b: corner topLeft is already used by /a on the display D1"));
}

TEST(CornerCollisionsTest, TheSameTwoOnTwoDisplaysAreReportedForTheFirstOnly) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D2"},
                                              {"/a", "topLeft", "D1"},
                                              {"/b", "topLeft", "D1"},
                                              {"/b", "topLeft", "D2"}}),
                ElementsAre("/b: corner topLeft is already used by /a on the display D2"));
}

TEST(CornerCollisionsTest, TheSameTwoInTwoCornersAreReportedForEach) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D1"},
                                              {"/b", "topLeft", "D1"},
                                              {"/b", "topRight", "D2"},
                                              {"/a", "topRight", "D2"}}),
                ElementsAre("/b: corner topLeft is already used by /a on the display D1",
                            "/a: corner topRight is already used by /b on the display D2"));
}

TEST(CornerCollisionsTest, OneApplicationTwiceInACornerIsNoCollision) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D1"}, {"/a", "topLeft", "D1"}}),
                IsEmpty());
}

TEST(CornerCollisionsTest, OtherCornersDisplaysAndTextsThatAreNoCornerDoNotCollide) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D1"},
                                              {"/b", "topRight", "D1"},
                                              {"/c", "topLeft", "d1"},
                                              {"/d", "none", "D1"},
                                              {"/e", "none", "D1"}}),
                IsEmpty());
}

TEST(CornerCollisionsTest, CornersAreComparedByMeaningAndWrittenAsStored) {
    EXPECT_THAT(
        AppBinding::cornerCollisions({{"/a", "Bottom Right", "D1"}, {"/b", "bottom-right", "D1"}}),
        ElementsAre("/b: corner bottomRight is already used by /a on the display D1"));
}

TEST(CornerCollisionsTest, MessagesComeByTheEarlierOneThenByTheLater) {
    EXPECT_THAT(AppBinding::cornerCollisions({{"/a", "topLeft", "D1"},
                                              {"/x", "topRight", "D1"},
                                              {"/y", "topRight", "D1"},
                                              {"/b", "topLeft", "D1"},
                                              {"/c", "topLeft", "D1"}}),
                ElementsAre("/b: corner topLeft is already used by /a on the display D1",
                            "/c: corner topLeft is already used by /a on the display D1",
                            "/y: corner topRight is already used by /x on the display D1",
                            "/c: corner topLeft is already used by /b on the display D1"));
}

// Edges ----------------------------------------------------------------------------------------

std::string overlaps(const std::string& path, const std::string& edge, const std::string& accepted,
                     const std::string& holder) {
    return path + ": tuck edge '" + edge + "' overlaps '" + accepted + "' already used by " +
           holder + " — put them on opposite halves so the two do not collide";
}

TEST(TuckEdgeCollisionsTest, AWholeSideOverlapsItsCorners) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "left"}, {"/b", "topLeft"}}),
                ElementsAre(overlaps("/b", "top-left", "left", "/a")));
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "Bottom Right"}, {"/b", "right"}}),
                ElementsAre(overlaps("/b", "right", "bottom-right", "/a")));
}

TEST(TuckEdgeCollisionsTest, OppositeHalvesOfASideDoNotOverlap) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "topLeft"}, {"/b", "bottomLeft"}}),
                IsEmpty());
}

TEST(TuckEdgeCollisionsTest, TheSameCornerOverlaps) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "topRight"}, {"/b", "topRight"}}),
                ElementsAre(overlaps("/b", "top-right", "top-right", "/a")));
}

TEST(TuckEdgeCollisionsTest, TheTwoSidesDoNotOverlap) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "left"}, {"/b", "right"}}), IsEmpty());
}

TEST(TuckEdgeCollisionsTest, TheBottomAndTextsThatAreNoEdgeClaimNothing) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions(
                    {{"/a", "right"}, {"/b", "bottom"}, {"/c", "bottom"}, {"/d", "none"}}),
                IsEmpty());
}

TEST(TuckEdgeCollisionsTest, AReportedClaimIsNotAccepted) {
    EXPECT_THAT(AppBinding::tuckEdgeCollisions({{"/a", "left"}, {"/b", "left"}, {"/c", "topLeft"}}),
                ElementsAre(overlaps("/b", "left", "left", "/a"),
                            overlaps("/c", "top-left", "left", "/a")));
}

TEST(TuckEdgeCollisionsTest, OnlyTheFirstAcceptedClaimThatOverlapsIsNamed) {
    EXPECT_THAT(
        AppBinding::tuckEdgeCollisions({{"/a", "bottom-left"}, {"/b", "top-left"}, {"/c", "left"}}),
        ElementsAre(overlaps("/c", "left", "bottom-left", "/a")));
}

// Where the corners come from ------------------------------------------------------------------

TEST(SettingsLayoutTest, ArmedCornersComeByBindingThenByDisplay) {
    const DisplayInfo panel{{"P"}, "Panel", {0, 0, 1440, 900}, true};
    const DisplayInfo monitor{{"M"}, "Monitor", {1440, 0, 1920, 1080}, false};
    const std::vector<Placement> placements{
        {"/b", "M", "top-left", "none"},       {"/a", "M", "bottomRight", "none"},
        {"/a", "BuiltIn", "Top Left", "none"}, {"/a", "P", "bottomLeft", "none"},
        {"/b", "P", "none", "left"},           {"/c", "P", "topLeft", "none"},
        {"/a", "absent", "topLeft", "none"}};
    EXPECT_THAT(
        SettingsLayout::armed({{"/a"}, {"/b"}}, placements, {panel, monitor}),
        ElementsAre(ArmedCorner{"/a", "topLeft", "P"}, ArmedCorner{"/a", "bottomRight", "M"},
                    ArmedCorner{"/b", "topLeft", "M"}));
}

TEST(PlacementIndexTest, FindsWhatALookThroughTheListFinds) {
    const std::vector<DisplayInfo> displays{{{"P"}, "Panel", {}, true},
                                            {{"M"}, "Monitor", {}, false}};
    const std::vector<Placement> placements{{"/a", "M", "none", "left"},
                                            {"/a", " builtin ", "none", "right"},
                                            {"/a", "P", "none", "bottom"},
                                            {"/b", "m", "none", "left"},
                                            {"/b/", "M", "none", "left"}};
    const PlacementIndex index(placements);
    for (const char* path : {"/a", "/b", "/b/", "/c"}) {
        for (const DisplayInfo& display : displays) {
            const auto expected = Placement::matching(path, display, placements);
            const Placement* const found = index.matching(path, display);
            ASSERT_EQ(found != nullptr, expected.has_value()) << path << " on " << display.name;
            EXPECT_EQ(found ? *found : Placement{}, expected.value_or(Placement{}));
            EXPECT_EQ(index.tuckEdge(path, display), expected ? expected->tuckEdge : "none");
        }
    }
}

}  // namespace
}  // namespace quorvel
