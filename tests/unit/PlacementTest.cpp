#include "main/settings/Placement.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unordered_set>

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Array = Value::Array;
using Dictionary = Value::Dictionary;

DisplayInfo panel() {
    return {{"PANEL-ID"}, "Panel", {0, 0, 1280, 800}, true};
}
DisplayInfo monitor() {
    return {{"MONITOR-ID"}, "Monitor", {1280, 0, 1920, 1080}, false};
}

TEST(PlacementTest, ADisplayOfOneSpaceIsSkipped) {
    EXPECT_THAT(Placement::decode(Array{Dictionary{{"appPath", "/a"}, {"display", " "}},
                                        Dictionary{{"appPath", "/b"}, {"display", "X"}}}),
                ElementsAre(Placement{"/b", "X"}));
}

TEST(PlacementTest, ARecordWithoutAPathOrADisplayIsSkipped) {
    EXPECT_THAT(
        Placement::decode(Array{Dictionary{{"appPath", "/a"}}, Dictionary{{"display", "X"}},
                                Dictionary{{"appPath", " \n"}, {"display", "X"}}, Dictionary{}}),
        IsEmpty());
}

TEST(PlacementTest, AMissingCornerOrEdgeIsNone) {
    EXPECT_THAT(Placement::decode(Array{Dictionary{{"appPath", "/a"}, {"display", "X"}}}),
                ElementsAre(Placement{"/a", "X", "none", "none"}));
}

TEST(PlacementTest, BuiltInIsKeptAsTypedAndMatchesTheBuiltInDisplay) {
    const auto decoded = Placement::decode(
        Array{Dictionary{{"appPath", "/a"}, {"display", "BuiltIn"}, {"corner", "Top Left"}}});
    ASSERT_THAT(decoded, ElementsAre(Placement{"/a", "BuiltIn", "Top Left", "none"}));
    EXPECT_EQ(Placement::matching("/a", panel(), decoded), decoded.front());
    EXPECT_EQ(Placement::matching("/a", monitor(), decoded), std::nullopt);
}

TEST(PlacementTest, TextsAreKeptExactlyAsStored) {
    EXPECT_THAT(
        Placement::decode(Array{Dictionary{
            {"appPath", " /a"}, {"display", " X "}, {"corner", ""}, {"tuckEdge", "Top-Left "}}}),
        ElementsAre(Placement{" /a", " X ", "", "Top-Left "}));
}

TEST(PlacementTest, OneMalformedElementMakesTheWholeListUnreadable) {
    const Dictionary good{{"appPath", "/a"}, {"display", "X"}};
    Dictionary bad = good;
    bad.insert_or_assign("corner", Value(1));
    EXPECT_THAT(Placement::decode(Array{good, 1}), IsEmpty());
    EXPECT_THAT(Placement::decode(Array{good, bad}), IsEmpty());
    EXPECT_THAT(Placement::decode(good), IsEmpty());
    EXPECT_THAT(Placement::decode(std::nullopt), IsEmpty());
}

TEST(PlacementTest, EncodeWritesEveryFieldNoneIncluded) {
    const Value expected = Array{
        Dictionary{{"appPath", "/a"}, {"display", "X"}, {"corner", "none"}, {"tuckEdge", "none"}}};
    EXPECT_EQ(Placement::encode({{"/a", "X"}}), expected);
}

TEST(PlacementTest, EncodedListsDecodeToThemselves) {
    const std::vector<Placement> list{{"/a", "X", "topLeft", "none"},
                                      {"/a", "builtin", "none", "bottom-right"},
                                      {"/b", " Y", "", ""}};
    EXPECT_EQ(Placement::decode(Placement::encode(list)), list);
}

TEST(PlacementTest, MatchingReturnsTheEarlierOfTwo) {
    const std::vector<Placement> placements{{"/b", "MONITOR-ID", "topRight"},
                                            {"/a", "MONITOR-ID", "topLeft"},
                                            {"/a", "MONITOR-ID", "bottomLeft"}};
    EXPECT_EQ(Placement::matching("/a", monitor(), placements), placements[1]);
}

TEST(PlacementTest, TheAliasAndTheIdentifierOfThePanelCompeteByOrder) {
    const std::vector<Placement> aliasFirst{{"/a", "builtin", "topLeft"},
                                            {"/a", "PANEL-ID", "topRight"}};
    const std::vector<Placement> identifierFirst{aliasFirst[1], aliasFirst[0]};
    EXPECT_EQ(Placement::matching("/a", panel(), aliasFirst), aliasFirst[0]);
    EXPECT_EQ(Placement::matching("/a", panel(), identifierFirst), aliasFirst[1]);
}

TEST(PlacementTest, MatchingTrimsTheStoredDisplay) {
    const std::vector<Placement> placements{{"/a", "\n MONITOR-ID "}, {"/a", " BUILTIN\t"}};
    EXPECT_EQ(Placement::matching("/a", monitor(), placements), placements[0]);
    EXPECT_EQ(Placement::matching("/a", panel(), placements), placements[1]);
}

TEST(PlacementTest, MatchingComparesIdentifierAndPathExactly) {
    EXPECT_EQ(Placement::matching("/a", monitor(), {{"/a", "monitor-id"}}), std::nullopt);
    EXPECT_EQ(Placement::matching("/a", monitor(), {{"/A", "MONITOR-ID"}}), std::nullopt);
    EXPECT_EQ(Placement::matching("/a", monitor(), {{"/a ", "MONITOR-ID"}}), std::nullopt);
    EXPECT_EQ(Placement::matching("/a", monitor(), {}), std::nullopt);
}

TEST(PlacementTest, ForgettingDropsTheExactDisplayTextOnly) {
    const std::vector<Placement> placements{
        {"/a", "X"}, {"/a", "x"}, {"/b", "X"}, {"/b", " X"}, {"/c", "builtin"}};
    EXPECT_THAT(Placement::forgetting(placements, "X"),
                ElementsAre(placements[1], placements[3], placements[4]));
    EXPECT_EQ(Placement::forgetting(placements, "Y"), placements);
}

TEST(PlacementTest, PruningChangesNothingWhileThePathIsStillConfigured) {
    const std::vector<Placement> placements{{"/a", "X"}, {"/b", "X"}};
    EXPECT_EQ(Placement::pruning(placements, "/a", {"/b", "/a"}), placements);
}

TEST(PlacementTest, PruningDropsThePlacementsOfTheRemovedPath) {
    const std::vector<Placement> placements{{"/a", "X"}, {"/b", "X"}, {"/a", "Y"}, {"/A", "X"}};
    EXPECT_THAT(Placement::pruning(placements, "/a", {"/b", "/A"}),
                ElementsAre(placements[1], placements[3]));
    EXPECT_THAT(Placement::pruning(placements, "/a", {}),
                ElementsAre(placements[1], placements[3]));
}

TEST(PlacementTest, TenThousandPlacementsDecode) {
    std::vector<Placement> list;
    for (int i = 0; i < 10'000; ++i) list.push_back({"/" + std::to_string(i), "X", "topLeft"});
    const auto decoded = Placement::decode(Placement::encode(list));
    EXPECT_EQ(decoded, list);
    EXPECT_EQ(Placement::forgetting(decoded, "X").size(), 0u);
}

TEST(SlotTest, EveryPositionDiffersInEqualityAndHash) {
    std::vector<Slot> slots;
    for (const HotZoneCorner corner : allHotZoneCorners) slots.push_back(Slot::corner(corner));
    for (const Side side : {Side::left, Side::right, Side::bottom}) {
        slots.push_back(Slot::side(side));
    }
    slots.push_back(Slot::bottomHide());

    std::unordered_set<std::size_t> hashes;
    for (const Slot& slot : slots) hashes.insert(std::hash<Slot>{}(slot));
    EXPECT_EQ(hashes.size(), slots.size());
    EXPECT_EQ(std::unordered_set<Slot>(slots.begin(), slots.end()).size(), slots.size());
    EXPECT_EQ(Slot::side(Side::left), Slot::side(Side::left));
    EXPECT_NE(Slot::side(Side::bottom), Slot::bottomHide());
}

}  // namespace
}  // namespace quorvel
