#include "main/settings/Flatten.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Array = Value::Array;
using Dictionary = Value::Dictionary;

const std::string home = "/home/user";

DisplayInfo panel() {
    return {{"PANEL-ID"}, "Panel", {0, 0, 1280, 800}, true};
}
DisplayInfo monitor() {
    return {{"MONITOR-ID"}, "Monitor", {1280, 0, 1920, 1080}, false};
}
const std::vector<DisplayInfo> both{panel(), monitor()};

Flatten::Stored bindings(Array records) {
    Flatten::Stored stored;
    stored.rawBindings = std::move(records);
    return stored;
}

Flatten::Plan planned(const Flatten::Stored& stored, const std::vector<Placement>& placements = {},
                      const std::vector<DisplayInfo>& attached = both) {
    return Flatten::plan(false, stored, placements, attached, home);
}

// Decoding
// ---------------------------------------------------------------------------------------

TEST(FlattenDecodeTest, WhatIsMissingIsNoneAndNotAuto) {
    EXPECT_THAT(Flatten::decodeOld(Array{Dictionary{{"appPath", " /a "}}}),
                ElementsAre(OldBinding{" /a ", "none", "none", "none", "false"}));
}

TEST(FlattenDecodeTest, TextsAreKeptAsStoredAndOthersIgnored) {
    EXPECT_THAT(Flatten::decodeOld(Array{Dictionary{{"autoTuck", "Yes "},
                                                    {"tuckEdge", "Top Left"},
                                                    {"corner", ""},
                                                    {"hotKey", "none"},
                                                    {"appPath", "/a"},
                                                    {"more", "x"}}}),
                ElementsAre(OldBinding{"/a", "none", "", "Top Left", "Yes "}));
}

TEST(FlattenDecodeTest, RecordsWithoutAPathAreSkipped) {
    EXPECT_THAT(Flatten::decodeOld(Array{Dictionary{}, Dictionary{{"appPath", " \n"}},
                                         Dictionary{{"appPath", "/b"}}}),
                ElementsAre(OldBinding{"/b"}));
}

TEST(FlattenDecodeTest, AnythingButAListOfTextRecordsIsEmpty) {
    EXPECT_THAT(Flatten::decodeOld(std::nullopt), IsEmpty());
    EXPECT_THAT(Flatten::decodeOld(Value("text")), IsEmpty());
    EXPECT_THAT(Flatten::decodeOld(Dictionary{{"appPath", "/a"}}), IsEmpty());
    EXPECT_THAT(Flatten::decodeOld(Array{Dictionary{{"appPath", "/a"}}, Value(7)}), IsEmpty());
    EXPECT_THAT(Flatten::decodeOld(Array{Dictionary{{"appPath", "/a"}, {"corner", 1}}}), IsEmpty());
}

// From every display to each display
// -------------------------------------------------------------

TEST(FlattenTest, AnOldCornerIsPlacedOnEachAttachedDisplay) {
    const auto plan = planned(bindings({Dictionary{
        {"appPath", "/a"}, {"hotKey", "control,A"}, {"corner", "top-left"}, {"autoTuck", "YES"}}}));
    EXPECT_THAT(plan.bindings, ElementsAre(AppBinding{"/a", "control,A", "YES"}));
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/a", "PANEL-ID", "topLeft", "none"},
                                             Placement{"/a", "MONITOR-ID", "topLeft", "none"}));
}

TEST(FlattenTest, APlacementThatIsThereIsKeptAndNotDoubled) {
    const std::vector<Placement> stored{{"/a", " BuiltIn ", "Bottom Left", "x"},
                                        {"/a", "GONE", "topLeft", "left"}};
    const auto plan =
        planned(bindings({Dictionary{{"appPath", "/a"}, {"corner", "topRight"}}}), stored);
    EXPECT_THAT(plan.placements,
                ElementsAre(stored[0], stored[1], Placement{"/a", "MONITOR-ID", "topRight"}));
}

TEST(FlattenTest, EdgesAreWrittenInTheirOwnFormAndUnknownTextsAsNone) {
    const auto plan = planned(
        bindings(
            {Dictionary{{"appPath", "/a"}, {"corner", "BOTTOM_RIGHT"}, {"tuckEdge", "topleft"}},
             Dictionary{{"appPath", "/b"}, {"corner", "middle"}, {"tuckEdge", "Bottom"}},
             Dictionary{{"appPath", "/c"}, {"tuckEdge", "top"}}}),
        {}, {monitor()});
    EXPECT_THAT(plan.placements,
                ElementsAre(Placement{"/a", "MONITOR-ID", "bottomRight", "top-left"},
                            Placement{"/b", "MONITOR-ID", "none", "bottom"},
                            Placement{"/c", "MONITOR-ID", "none", "none"}));
}

TEST(FlattenTest, OfAPathThatStandsTwiceTheFirstIsPlacedAndBothStayBound) {
    const auto plan = planned(bindings({Dictionary{{"appPath", "/a"}, {"corner", "topLeft"}},
                                        Dictionary{{"appPath", "/a"}, {"corner", "topRight"}}}),
                              {}, {panel()});
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/a", "PANEL-ID", "topLeft"}));
    EXPECT_EQ(plan.bindings.size(), 2u);
}

TEST(FlattenTest, WithoutADisplayTheBindingsRemainAndNothingIsPlaced) {
    const auto plan =
        planned(bindings({Dictionary{{"appPath", "/a"}, {"corner", "topLeft"}}}), {}, {});
    EXPECT_THAT(plan.bindings, ElementsAre(AppBinding{"/a"}));
    EXPECT_THAT(plan.placements, IsEmpty());
    EXPECT_TRUE(plan.setMarker);
}

TEST(FlattenTest, TheRetiredKeysAlwaysGoAndTheMarkerIsSet) {
    const auto plan = planned({}, {{"/x", "GONE"}});
    EXPECT_THAT(plan.retiredKeys,
                ElementsAre("TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto"));
    EXPECT_TRUE(plan.setMarker);
    EXPECT_THAT(plan.bindings, IsEmpty());
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/x", "GONE"}));
}

TEST(FlattenTest, WithTheMarkerThereIsNothingToDo) {
    auto stored = bindings({Dictionary{{"appPath", "/a"}}});
    stored.targetPath = "/b";
    EXPECT_EQ(Flatten::plan(true, stored, {{"/a", "X"}}, both, home), Flatten::Plan{});
}

TEST(FlattenTest, ThousandsOfApplicationsDoNotMultiply) {
    Array records;
    std::vector<Placement> stored;
    for (int i = 0; i < 3000; ++i) {
        const std::string path = "/applications/" + std::to_string(i);
        records.push_back(Dictionary{{"appPath", path}, {"corner", "topLeft"}});
        records.push_back(Dictionary{{"appPath", "/the/same"}});
        stored.push_back({path, "GONE"});
        stored.push_back({"/the/same", "GONE-" + std::to_string(i)});
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(planned(bindings(std::move(records)), stored).placements.size(), 12'002u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// The version that knew one application
// ----------------------------------------------------------

TEST(FlattenSingleTest, TheRetiredKeysAloneMakeABindingPlacedEverywhere) {
    Flatten::Stored stored;
    stored.targetPath = " ~/Applications/Y.app\n";
    stored.hotZone = "topRight";
    stored.tuckAuto = " YES ";
    const auto plan = planned(stored);
    EXPECT_THAT(plan.bindings,
                ElementsAre(AppBinding{"/home/user/Applications/Y.app", "none", "true"}));
    EXPECT_THAT(plan.placements,
                ElementsAre(Placement{"/home/user/Applications/Y.app", "PANEL-ID", "topRight"},
                            Placement{"/home/user/Applications/Y.app", "MONITOR-ID", "topRight"}));
}

TEST(FlattenSingleTest, ItComesBeforeTheOthers) {
    auto stored = bindings({Dictionary{{"appPath", "/a"}}});
    stored.targetPath = "/b";
    stored.hotKey = "no shortcut";
    stored.tuckEdge = "right";
    const auto plan = planned(stored, {}, {panel()});
    EXPECT_THAT(plan.bindings,
                ElementsAre(AppBinding{"/b", "no shortcut", "false"}, AppBinding{"/a"}));
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/b", "PANEL-ID", "none", "right"},
                                             Placement{"/a", "PANEL-ID"}));
}

TEST(FlattenSingleTest, AKnownApplicationGetsOnlyWhatItLacks) {
    Flatten::Stored stored = bindings(
        {Dictionary{{"appPath", "/a"}, {"corner", "none"}}, Dictionary{{"appPath", "/a"}}});
    stored.targetPath = "/a";
    stored.hotKey = "control,A";
    stored.hotZone = "bottomLeft";
    stored.tuckEdge = "left";
    stored.tuckAuto = "on";
    auto plan = planned(stored, {}, {panel()});
    EXPECT_THAT(plan.bindings, ElementsAre(AppBinding{"/a", "control,A", "true"}, AppBinding{"/a"}))
        << "of two the first one gets it";
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/a", "PANEL-ID", "bottomLeft", "left"}));

    stored.rawBindings = Array{Dictionary{{"appPath", "/a"},
                                          {"hotKey", "control,B"},
                                          {"corner", "topLeft"},
                                          {"tuckEdge", "right"},
                                          {"autoTuck", "true"}}};
    stored.tuckAuto = "no";
    plan = planned(stored, {}, {panel()});
    EXPECT_THAT(plan.bindings, ElementsAre(AppBinding{"/a", "control,B", "true"}));
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/a", "PANEL-ID", "topLeft", "right"}));
}

TEST(FlattenSingleTest, AShortcutThatCannotBeUsedReplacesNothing) {
    Flatten::Stored stored =
        bindings({Dictionary{{"appPath", "/a"}, {"hotKey", "what?"}, {"autoTuck", "maybe"}}});
    stored.targetPath = "/a";
    stored.hotKey = "nonsense";
    EXPECT_THAT(planned(stored).bindings, ElementsAre(AppBinding{"/a", "what?", "maybe"}));
}

TEST(FlattenSingleTest, ABlankPathMeansThatThereIsNone) {
    Flatten::Stored stored;
    stored.targetPath = " \n";
    stored.hotKey = "control,A";
    EXPECT_THAT(planned(stored).bindings, IsEmpty());
}

TEST(FlattenSingleTest, OnlyTheOwnHomeIsExpanded) {
    const auto expanded = [](const std::string& path, const std::string& homeDirectory) {
        Flatten::Stored stored;
        stored.targetPath = path;
        return Flatten::plan(false, stored, {}, {}, homeDirectory).bindings.at(0).appPath;
    };
    EXPECT_EQ(expanded("~", home), "/home/user");
    EXPECT_EQ(expanded("~/x y", home), "/home/user/x y");
    EXPECT_EQ(expanded("~/x", "/"), "/x");
    EXPECT_EQ(expanded("~", "/"), "/");
    EXPECT_EQ(expanded("~root/x", home), "~root/x");
    EXPECT_EQ(expanded("/a/~/x", home), "/a/~/x");
}

TEST(FlattenSingleTest, TheHomeIsExpandedBeforeTheApplicationIsLookedFor) {
    auto stored = bindings({Dictionary{{"appPath", "/home/user/y"}}});
    stored.targetPath = "~/y";
    stored.hotZone = "topLeft";
    const auto plan = planned(stored, {}, {panel()});
    EXPECT_THAT(plan.bindings, ElementsAre(AppBinding{"/home/user/y"}));
    EXPECT_THAT(plan.placements, ElementsAre(Placement{"/home/user/y", "PANEL-ID", "topLeft"}));
}

}  // namespace
}  // namespace quorvel
