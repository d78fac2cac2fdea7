#include "main/settings/SettingsLayout.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/Printers.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DisplayInfo panel() {
    return {{"PANEL-ID"}, "Panel", {0, 0, 1280, 800}, true};
}
DisplayInfo monitor() {
    return {{"MONITOR-ID"}, "Monitor", {1280, 0, 1920, 1080}, false};
}

Slot corner(HotZoneCorner at) {
    return Slot::corner(at);
}
const Slot left = Slot::side(Side::left);
const Slot right = Slot::side(Side::right);
const Slot bottom = Slot::bottomHide();
const std::vector<Slot> all{corner(HotZoneCorner::topLeft),
                            corner(HotZoneCorner::topRight),
                            corner(HotZoneCorner::bottomLeft),
                            corner(HotZoneCorner::bottomRight),
                            left,
                            right,
                            bottom};

Assignment cornerRow(const std::string& path, HotZoneCorner at,
                     std::optional<std::string> warning = std::nullopt) {
    return {path, corner(at), std::nullopt, std::move(warning)};
}
Assignment edgeRow(const std::string& path, const Slot& slot, TuckEdge edge,
                   std::optional<std::string> warning = std::nullopt) {
    return {path, slot, edge, std::move(warning)};
}

// One display
// -----------------------------------------------------------------------------------

TEST(SettingsLayoutRowsTest, EachEdgeHoldsItsSideOrTheBottom) {
    const std::vector<std::pair<const char*, Slot>> expected{
        {"left", left},       {"Top Left", left},      {"bottom-left", left}, {"right", right},
        {"top-right", right}, {"BOTTOM_RIGHT", right}, {"bottom", bottom}};
    for (const auto& [edge, slot] : expected) {
        EXPECT_THAT(SettingsLayout::rows({{"/a"}}, {{"/a", "PANEL-ID", "none", edge}}, panel()),
                    ElementsAre(edgeRow("/a", slot, *TuckEdge::parse(edge))))
            << edge;
    }
}

TEST(SettingsLayoutRowsTest, ACornerAndAnEdgeAreTwoRowsTheCornerFirst) {
    const auto rows =
        SettingsLayout::rows({{"/a"}}, {{"/a", "PANEL-ID", "topLeft", "top-left"}}, panel());
    EXPECT_THAT(rows, ElementsAre(cornerRow("/a", HotZoneCorner::topLeft),
                                  edgeRow("/a", left, TuckEdge::topLeft)));
    EXPECT_THAT(SettingsLayout::free(rows),
                ElementsAre(corner(HotZoneCorner::topRight), corner(HotZoneCorner::bottomLeft),
                            corner(HotZoneCorner::bottomRight), right, bottom));
}

TEST(SettingsLayoutRowsTest, RowsFollowTheBindingsAndLeaveOutWhatIsPlacedNowhereHere) {
    const std::vector<Placement> placements{
        {"/a", "builtin", "topLeft"},       {"/b", "PANEL-ID", "none", "bottom"},
        {"/b", "PANEL-ID", "none", "left"}, {"/c", "PANEL-ID"},
        {"/d", "MONITOR-ID", "topLeft"},    {"/unbound", "PANEL-ID", "topLeft"}};
    EXPECT_THAT(SettingsLayout::rows({{"/d"}, {"/c"}, {"/b"}, {"/a"}, {"/e"}}, placements, panel()),
                ElementsAre(edgeRow("/b", bottom, TuckEdge::bottom),
                            cornerRow("/a", HotZoneCorner::topLeft)));
}

TEST(SettingsLayoutRowsTest, FreeSlotsComeInTheirOwnOrder) {
    EXPECT_EQ(SettingsLayout::free({}), all);
    EXPECT_THAT(SettingsLayout::free({edgeRow("/a", bottom, TuckEdge::bottom),
                                      edgeRow("/a", left, TuckEdge::bottomLeft),
                                      cornerRow("/b", HotZoneCorner::topRight)}),
                ElementsAre(corner(HotZoneCorner::topLeft), corner(HotZoneCorner::bottomLeft),
                            corner(HotZoneCorner::bottomRight), right));
}

// Absent displays
// -------------------------------------------------------------------------------

TEST(SettingsLayoutAbsentTest, EachIsNamedOnceAsItFirstAppears) {
    EXPECT_THAT(SettingsLayout::absentRefs({{"/a", " GONE "},
                                            {"/a", "panel-id"},
                                            {"/b", "GONE"},
                                            {"/b", "MONITOR-ID"},
                                            {"/c", "Builtin"},
                                            {"/c", "  "}},
                                           {panel(), monitor()}),
                ElementsAre("GONE", "panel-id"));
}

TEST(SettingsLayoutAbsentTest, TheBuiltInPanelIsAbsentWhereThereIsNone) {
    EXPECT_THAT(SettingsLayout::absentRefs({{"/a", "BuiltIn"}, {"/b", "BUILTIN"}}, {monitor()}),
                ElementsAre("builtin"));
}

// The cards
// -------------------------------------------------------------------------------------

TEST(SettingsLayoutCardsTest, WithoutBindingsEachAttachedDisplayHasAnEmptyCard) {
    EXPECT_THAT(SettingsLayout::cards({}, {}, {monitor(), panel()}, {{"GONE", "Projector"}}),
                ElementsAre(DisplayCard{"MONITOR-ID", "Monitor", true, Size{1920, 1080}, {}, all},
                            DisplayCard{"PANEL-ID", "Panel", true, Size{1280, 800}, {}, all}));
}

TEST(SettingsLayoutCardsTest, AnAbsentDisplayFollowsByItsRememberedNameOrItsIdentifier) {
    const auto cards = SettingsLayout::cards(
        {{"/a"}}, {{"/a", "GONE", "none", "right"}, {"/x", "KNOWN"}, {"/a", "PANEL-ID"}}, {panel()},
        {{"KNOWN", "Projector"}, {"PANEL-ID", "Earlier name"}});
    ASSERT_EQ(cards.size(), 3u);
    EXPECT_EQ(cards[0].name, "Panel");
    EXPECT_EQ(cards[1].ref, "GONE");
    EXPECT_EQ(cards[1].name, "GONE");
    EXPECT_FALSE(cards[1].isAttached);
    EXPECT_EQ(cards[1].aspect, std::nullopt);
    EXPECT_THAT(cards[1].rows, ElementsAre(edgeRow("/a", right, TuckEdge::right)));
    EXPECT_EQ(cards[1].freeSlots.size(), 6u);
    EXPECT_EQ(cards[2], (DisplayCard{"KNOWN", "Projector", false, std::nullopt, {}, all}));
}

TEST(SettingsLayoutCardsTest, APanelThatIsNotThereHasOneCardHoweverItIsSpelt) {
    const auto cards = SettingsLayout::cards(
        {{"/a"}, {"/b"}}, {{"/a", "BUILTIN", "topLeft"}, {"/b", " BuiltIn", "none", "left"}},
        {monitor()}, {});
    ASSERT_EQ(cards.size(), 2u);
    EXPECT_EQ(cards[1].ref, "builtin");
    EXPECT_EQ(cards[1].name, "builtin");
    EXPECT_THAT(cards[1].rows, ElementsAre(cornerRow("/a", HotZoneCorner::topLeft),
                                           edgeRow("/b", left, TuckEdge::left)));
}

TEST(SettingsLayoutCardsTest, ASharedCornerWarnsBothRowsOnEveryCard) {
    const std::vector<Placement> placements{{"/a", "PANEL-ID", "topLeft"},
                                            {"/b", "PANEL-ID", "topLeft"},
                                            {"/c", "PANEL-ID", "topRight"},
                                            {"/b", "MONITOR-ID", "bottomLeft"}};
    const auto cards =
        SettingsLayout::cards({{"/a"}, {"/b"}, {"/c"}}, placements, {panel(), monitor()}, {});
    const std::string message = "/b: corner topLeft is already used by /a on the display PANEL-ID";
    EXPECT_THAT(cards[0].rows, ElementsAre(cornerRow("/a", HotZoneCorner::topLeft, message),
                                           cornerRow("/b", HotZoneCorner::topLeft, message),
                                           cornerRow("/c", HotZoneCorner::topRight)));
    EXPECT_THAT(cards[1].rows, ElementsAre(cornerRow("/b", HotZoneCorner::bottomLeft, message)));
}

TEST(SettingsLayoutCardsTest, OverlappingEdgesWarnOnTheirOwnCardOnly) {
    const std::vector<Placement> placements{{"/a", "PANEL-ID", "topLeft", "left"},
                                            {"/b", "PANEL-ID", "none", "top-left"},
                                            {"/a", "MONITOR-ID", "none", "left"},
                                            {"/b", "GONE", "none", "right"},
                                            {"/a", "GONE", "none", "right"}};
    const auto cards =
        SettingsLayout::cards({{"/a"}, {"/b"}}, placements, {panel(), monitor()}, {});
    const std::string onPanel =
        "/b: tuck edge 'top-left' overlaps 'left' already used by /a — put them on opposite "
        "halves so the two do not collide";
    const std::string onGone =
        "/b: tuck edge 'right' overlaps 'right' already used by /a — put them on opposite "
        "halves so the two do not collide";
    EXPECT_THAT(cards[0].rows, ElementsAre(cornerRow("/a", HotZoneCorner::topLeft),
                                           edgeRow("/a", left, TuckEdge::left, onPanel),
                                           edgeRow("/b", left, TuckEdge::topLeft, onPanel)));
    EXPECT_THAT(cards[1].rows, ElementsAre(edgeRow("/a", left, TuckEdge::left)));
    EXPECT_THAT(cards[2].rows, ElementsAre(edgeRow("/a", right, TuckEdge::right, onGone),
                                           edgeRow("/b", right, TuckEdge::right, onGone)));
}

TEST(SettingsLayoutCardsTest, CornersOfAbsentDisplaysDoNotCollide) {
    const auto cards = SettingsLayout::cards(
        {{"/a"}, {"/b"}}, {{"/a", "GONE", "topLeft"}, {"/b", "GONE", "topLeft"}}, {panel()}, {});
    EXPECT_THAT(cards[1].rows, ElementsAre(cornerRow("/a", HotZoneCorner::topLeft),
                                           cornerRow("/b", HotZoneCorner::topLeft)));
}

TEST(SettingsLayoutCardsTest, APathThatBeginsAnotherSharesItsFirstWarning) {
    const std::vector<Placement> placements{{"/app", "PANEL-ID", "bottomLeft"},
                                            {"/app-two", "PANEL-ID", "topLeft"},
                                            {"/b", "PANEL-ID", "topLeft"}};
    const auto cards =
        SettingsLayout::cards({{"/app"}, {"/app-two"}, {"/b"}}, placements, {panel()}, {});
    EXPECT_EQ(cards[0].rows[0].warning,
              "/b: corner topLeft is already used by /app-two on the display PANEL-ID");
    EXPECT_THAT(cards[0].rows[0].appPath, "/app");
}

}  // namespace
}  // namespace quorvel
