#include "main/settings/Migration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using Migration::Plan;
using Migration::Source;

const std::string first = "com.tessivane.pellomarch";
const std::string second = "com.tessivane.vintrosk";

TEST(MigrationTest, TheEarlierDomainsAreTriedInThisOrder) {
    EXPECT_THAT(Migration::earlierDomains, testing::ElementsAre(first, second));
}

TEST(MigrationTest, OfTwoSourcesThatHaveSettingsTheFirstIsTaken) {
    EXPECT_EQ(Migration::plan(false, false, {{first, {"AppBindings"}}, {second, {"HotKey"}}}),
              (Plan{first, {"AppBindings"}, true}));
}

TEST(MigrationTest, ASourceWithForeignKeysOnlyIsPassedOver) {
    EXPECT_EQ(
        Migration::plan(
            false, false,
            {{first, {"NSWindow Frame", "DidFlattenPlacements", "DidOfferLoginItem", "hotkey"}},
             {second, {"Extra", "HotKey"}}}),
        (Plan{second, {"HotKey"}, true}));
}

TEST(MigrationTest, KeysComeInTheirOwnOrderAndOthersStayBehind) {
    const Source source{first,
                        {"KnownDisplays", "Placements", "AppBindings", "TuckAnimation",
                         "HotZoneDwellMs", "TuckAuto", "TuckEdge", "HotZone", "HotKey",
                         "TargetAppPath", "DidFlattenPlacements", "Other"}};
    EXPECT_EQ(Migration::plan(false, false, {source}),
              (Plan{first,
                    {"TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto", "HotZoneDwellMs",
                     "TuckAnimation", "AppBindings", "Placements", "KnownDisplays"},
                    true}));
}

TEST(MigrationTest, WithSettingsOfItsOwnOnlyTheMarkerIsSet) {
    EXPECT_EQ(Migration::plan(false, true, {{first, {"AppBindings"}}}),
              (Plan{std::nullopt, {}, true}));
}

TEST(MigrationTest, WithTheMarkerNothingIsDone) {
    EXPECT_EQ(Migration::plan(true, false, {{first, {"AppBindings"}}}), Plan{});
    EXPECT_EQ(Migration::plan(true, true, {{first, {"AppBindings"}}}), Plan{});
}

TEST(MigrationTest, WithNothingToTakeOverOnlyTheMarkerIsSet) {
    EXPECT_EQ(Migration::plan(false, false, {}), (Plan{std::nullopt, {}, true}));
    EXPECT_EQ(Migration::plan(false, false, {{first, {}}, {second, {"Other"}}}),
              (Plan{std::nullopt, {}, true}));
}

}  // namespace
}  // namespace quorvel
