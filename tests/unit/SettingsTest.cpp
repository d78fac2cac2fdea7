#include "main/settings/Settings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/MemoryDefaults.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Array = Value::Array;
using Dictionary = Value::Dictionary;

Value record(const std::string& path) {
    return Array{Dictionary{{"appPath", path}}};
}

Value placementRecord(const std::string& path) {
    return Array{Dictionary{{"appPath", path}, {"display", "X"}}};
}

class SettingsTest : public testing::Test {
protected:
    void store(std::string_view key, const Value& value) { defaults.setObject(key, value); }
    void preset(std::string_view key, Value value) {
        defaults.presets.insert_or_assign(std::string(key), std::move(value));
    }

    MemoryDefaults defaults;
    Settings settings{defaults};
};

TEST(DwellTest, AMissingValueIsThreeHundred) {
    EXPECT_EQ(hotZoneDwellMilliseconds(std::nullopt), 300);
}

TEST(DwellTest, BooleansAreThreeHundred) {
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(true)), 300);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(false)), 300);
}

TEST(DwellTest, IntegersAreClamped) {
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(-5)), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(0)), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(450)), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(60000)), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(60001)), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(120000)), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(std::numeric_limits<std::int64_t>::max())), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(std::numeric_limits<std::int64_t>::min())), 0);
}

TEST(DwellTest, RealsLoseTheirFractionAndAreClamped) {
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(450.9)), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(0.9)), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(-0.9)), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(60000.5)), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(1e300)), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(-1e300)), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(std::numeric_limits<double>::infinity())), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(std::numeric_limits<double>::quiet_NaN())), 300);
}

TEST(DwellTest, WholeNumbersAsTextAreReadAndClamped) {
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("450")), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(" 450 ")), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("\n450\t")), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("+450")), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("-450")), 0);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("000450")), 450);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("120000")), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("9223372036854775807")), 60000);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value("-9223372036854775808")), 0);
}

TEST(DwellTest, OtherTextsAreThreeHundred) {
    for (const char* text : {"",
                             "  ",
                             "abc",
                             "4.5e2",
                             "450ms",
                             "450.0",
                             "4 50",
                             "+",
                             "-",
                             "+-450",
                             "-+450",
                             "++450",
                             "--450",
                             "+ 450",
                             "0x1F",
                             "1,000",
                             "true",
                             "\u0664\u0665\u0660",
                             "9223372036854775808",
                             "-9223372036854775809",
                             "99999999999999999999999999"}) {
        EXPECT_EQ(hotZoneDwellMilliseconds(Value(text)), 300) << text;
    }
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(std::string("450\0", 4))), 300);
}

TEST(DwellTest, ArraysAndDictionariesAreThreeHundred) {
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(Array{450})), 300);
    EXPECT_EQ(hotZoneDwellMilliseconds(Value(Dictionary{{"a", 450}})), 300);
}

TEST_F(SettingsTest, DwellStoredAsBooleanTrueIsThreeHundred) {
    store(Keys::hotZoneDwellMs, true);
    EXPECT_EQ(settings.hotZoneDwellMs(), 300);
}

TEST_F(SettingsTest, DwellAbsentIsTheBundleValue) {
    preset(Keys::hotZoneDwellMs, 500);
    EXPECT_EQ(settings.hotZoneDwellMs(), 500);
}

TEST_F(SettingsTest, DwellUnreadableIsThreeHundredInSpiteOfTheBundleValue) {
    preset(Keys::hotZoneDwellMs, 500);
    store(Keys::hotZoneDwellMs, "abc");
    EXPECT_EQ(settings.hotZoneDwellMs(), 300);
}

TEST_F(SettingsTest, AnEmptyDomainWithoutPresetsGivesTheFallbacks) {
    EXPECT_THAT(settings.appBindings(), IsEmpty());
    EXPECT_THAT(settings.placements(), IsEmpty());
    EXPECT_THAT(settings.knownDisplays(), IsEmpty());
    EXPECT_EQ(settings.hotZoneDwellMs(), 300);
    EXPECT_EQ(settings.tuckAnimation(), std::nullopt);
    EXPECT_FALSE(settings.boolForKey(Keys::didOfferLoginItem));
    EXPECT_EQ(settings.textForKey(Keys::targetAppPath), std::nullopt);
}

TEST_F(SettingsTest, ListsComeFromTheBundleOnlyWhereTheDomainHasNoObject) {
    preset(Keys::appBindings, record("/preset"));
    preset(Keys::placements, placementRecord("/preset"));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{"/preset"}));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{"/preset", "X"}));

    store(Keys::appBindings, record("/own"));
    store(Keys::placements, placementRecord("/own"));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{"/own"}));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{"/own", "X"}));
}

TEST_F(SettingsTest, AnObjectOfTheWrongKindIsNotReplacedByTheBundleValue) {
    preset(Keys::appBindings, record("/preset"));
    preset(Keys::placements, placementRecord("/preset"));
    store(Keys::appBindings, "no list");
    store(Keys::placements, false);
    EXPECT_THAT(settings.appBindings(), IsEmpty());
    EXPECT_THAT(settings.placements(), IsEmpty());

    store(Keys::appBindings, Array{});
    EXPECT_THAT(settings.appBindings(), IsEmpty());
}

TEST_F(SettingsTest, AnimationOfBlanksResolvesToTheBundleValue) {
    store(Keys::tuckAnimation, "   ");
    preset(Keys::tuckAnimation, "slide");
    EXPECT_EQ(settings.tuckAnimation(), "slide");
}

TEST_F(SettingsTest, AnimationOfTheWrongKindResolvesToTheBundleValue) {
    preset(Keys::tuckAnimation, "slide");
    store(Keys::tuckAnimation, 3);
    EXPECT_EQ(settings.tuckAnimation(), "slide");
}

TEST_F(SettingsTest, AnimationIsReturnedUntrimmedFromEitherSource) {
    preset(Keys::tuckAnimation, " slide\n");
    EXPECT_EQ(settings.tuckAnimation(), " slide\n");
    store(Keys::tuckAnimation, " no such style ");
    EXPECT_EQ(settings.tuckAnimation(), " no such style ");
}

TEST_F(SettingsTest, AnimationIsAbsentWhenBothSourcesAreBlankOrOfTheWrongKind) {
    store(Keys::tuckAnimation, "");
    preset(Keys::tuckAnimation, "\n ");
    EXPECT_EQ(settings.tuckAnimation(), std::nullopt);
    preset(Keys::tuckAnimation, true);
    EXPECT_EQ(settings.tuckAnimation(), std::nullopt);
}

TEST_F(SettingsTest, KnownDisplaysWithOneNonTextValueAreEmpty) {
    store(Keys::knownDisplays, Dictionary{{"A", "Left"}, {"B", 2}});
    EXPECT_THAT(settings.knownDisplays(), IsEmpty());
}

TEST_F(SettingsTest, KnownDisplaysAreReadWhenAllAreTexts) {
    store(Keys::knownDisplays, Dictionary{{"B", "Right"}, {"A", ""}});
    EXPECT_THAT(settings.knownDisplays(), ElementsAre(Pair("A", ""), Pair("B", "Right")));
    store(Keys::knownDisplays, Array{"A"});
    EXPECT_THAT(settings.knownDisplays(), IsEmpty());
}

TEST_F(SettingsTest, KnownDisplaysHaveNoBundleFallback) {
    preset(Keys::knownDisplays, Dictionary{{"A", "Left"}});
    EXPECT_THAT(settings.knownDisplays(), IsEmpty());
}

TEST_F(SettingsTest, MarkersAreReadFromBooleansNumbersAndTexts) {
    const std::vector<Value> yes{true, 1, -1, 0.5, "YES", "yes", "true", "TRUE", "1"};
    const std::vector<Value> no{false,
                                0,
                                0.0,
                                "NO",
                                "no",
                                "false",
                                "0",
                                "",
                                "2",
                                "on",
                                Value(Array{true}),
                                Value(Dictionary{{"a", true}})};
    for (const Value& value : yes) {
        store(Keys::didOfferLoginItem, value);
        EXPECT_TRUE(settings.boolForKey(Keys::didOfferLoginItem));
    }
    for (const Value& value : no) {
        store(Keys::didOfferLoginItem, value);
        EXPECT_FALSE(settings.boolForKey(Keys::didOfferLoginItem));
    }
}

TEST_F(SettingsTest, MarkersHaveNoBundleFallback) {
    preset(Keys::didFlattenPlacements, true);
    EXPECT_FALSE(settings.boolForKey(Keys::didFlattenPlacements));
}

TEST_F(SettingsTest, TextsAreReadFromTextsAndNumbers) {
    const auto read = [this](const Value& value) {
        store(Keys::tuckAuto, value);
        return settings.textForKey(Keys::tuckAuto);
    };
    EXPECT_EQ(read(" YES "), " YES ");
    EXPECT_EQ(read(""), "");
    EXPECT_EQ(read(1), "1");
    EXPECT_EQ(read(-42), "-42");
    EXPECT_EQ(read(2.0), "2");
    EXPECT_EQ(read(0.25), "0.25");
    EXPECT_EQ(read(true), "1");
    EXPECT_EQ(read(false), "0");
    EXPECT_EQ(read(Array{"YES"}), std::nullopt);
    EXPECT_EQ(read(Dictionary{{"a", "YES"}}), std::nullopt);
}

TEST_F(SettingsTest, TextsHaveNoBundleFallback) {
    preset(Keys::targetAppPath, "/preset");
    EXPECT_EQ(settings.textForKey(Keys::targetAppPath), std::nullopt);
}

TEST_F(SettingsTest, EveryReadIsFresh) {
    EXPECT_EQ(settings.hotZoneDwellMs(), 300);
    defaults.values.insert_or_assign("HotZoneDwellMs", Value(700));
    EXPECT_EQ(settings.hotZoneDwellMs(), 700);
    const Settings copy = settings;
    defaults.values.insert_or_assign("HotZoneDwellMs", Value(800));
    EXPECT_EQ(copy.hotZoneDwellMs(), 800);
}

TEST_F(SettingsTest, ListsAreWrittenWholeAndReadBack) {
    const std::vector<AppBinding> bindings{{"/a", "cmd,K", "true"}, {"/b"}};
    const std::vector<Placement> placements{{"/a", "X", "topLeft", "right"}, {"/b", "builtin"}};
    EXPECT_TRUE(settings.setAppBindings(bindings));
    EXPECT_TRUE(settings.setPlacements(placements));
    EXPECT_EQ(defaults.values.at("AppBindings"), AppBinding::encode(bindings));
    EXPECT_EQ(defaults.values.at("Placements"), Placement::encode(placements));
    EXPECT_EQ(settings.appBindings(), bindings);
    EXPECT_EQ(settings.placements(), placements);
}

TEST_F(SettingsTest, KnownDisplaysAreWrittenAsADictionaryOfTexts) {
    EXPECT_TRUE(settings.setKnownDisplays({{"A", "Left"}, {"B", "Right"}}));
    const Value expected = Dictionary{{"A", "Left"}, {"B", "Right"}};
    EXPECT_EQ(defaults.values.at("KnownDisplays"), expected);
    EXPECT_THAT(settings.knownDisplays(), ElementsAre(Pair("A", "Left"), Pair("B", "Right")));
}

TEST_F(SettingsTest, AWrittenEmptyListHidesTheBundleValue) {
    preset(Keys::appBindings, record("/preset"));
    EXPECT_TRUE(settings.setAppBindings({}));
    EXPECT_THAT(settings.appBindings(), IsEmpty());
}

TEST_F(SettingsTest, ARefusedWriteIsReportedAndChangesNothing) {
    ASSERT_TRUE(settings.setAppBindings({{"/a"}}));
    defaults.refusesWrites = true;
    EXPECT_FALSE(settings.setAppBindings({}));
    EXPECT_FALSE(settings.setPlacements({}));
    EXPECT_FALSE(settings.setKnownDisplays({}));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{"/a"}));
}

TEST_F(SettingsTest, RestoreDefaultsRemovesTheKeysInOrder) {
    settings.restoreDefaults();
    EXPECT_THAT(defaults.removals, ElementsAre("HotZoneDwellMs", "TuckAnimation", "AppBindings",
                                               "Placements", "KnownDisplays", "TargetAppPath",
                                               "HotKey", "HotZone", "TuckEdge", "TuckAuto"));
}

TEST_F(SettingsTest, RestoreDefaultsIsOneWriteThatMayBeRefused) {
    store(Keys::hotZoneDwellMs, 100);
    store(Keys::tuckAnimation, "spring");
    defaults.refusesWrites = true;
    EXPECT_FALSE(settings.restoreDefaults());
    EXPECT_EQ(defaults.values.size(), 2u);
    defaults.refusesWrites = false;
    const int before = defaults.writeCount;
    EXPECT_TRUE(settings.restoreDefaults());
    EXPECT_EQ(defaults.writeCount, before + 1);
    EXPECT_THAT(defaults.values, IsEmpty());
}

TEST_F(SettingsTest, RestoreDefaultsKeepsTheMarkersAndForeignKeys) {
    for (const char* key :
         {"HotZoneDwellMs", "TuckAnimation", "AppBindings", "Placements", "KnownDisplays",
          "TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto", "DidOfferLoginItem",
          "DidFlattenPlacements", "DidMigrateLegacySettings", "SomethingElse"}) {
        store(key, true);
    }
    settings.restoreDefaults();
    EXPECT_TRUE(settings.boolForKey("DidFlattenPlacements"));
    EXPECT_TRUE(settings.boolForKey("DidOfferLoginItem"));
    EXPECT_TRUE(settings.boolForKey("DidMigrateLegacySettings"));
    EXPECT_EQ(defaults.values.size(), 4u);
}

TEST_F(SettingsTest, RestoreDefaultsMakesTheBundleValuesVisibleAgain) {
    store(Keys::appBindings, record("/own"));
    store(Keys::hotZoneDwellMs, 100);
    store(Keys::tuckAnimation, "spring");
    settings.restoreDefaults();
    EXPECT_THAT(settings.appBindings(), IsEmpty());

    preset(Keys::appBindings, record("/preset"));
    preset(Keys::hotZoneDwellMs, "500");
    preset(Keys::tuckAnimation, "slide");
    store(Keys::appBindings, record("/own"));
    settings.restoreDefaults();
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{"/preset"}));
    EXPECT_EQ(settings.hotZoneDwellMs(), 500);
    EXPECT_EQ(settings.tuckAnimation(), "slide");
}

TEST_F(SettingsTest, AnyKeyToValueFunctionCanStandInForTheBundle) {
    preset(Keys::hotZoneDwellMs, 500);
    const Settings other(defaults, [](std::string_view key) -> std::optional<Value> {
        if (key == "HotZoneDwellMs") return 1234;
        return std::nullopt;
    });
    EXPECT_EQ(other.hotZoneDwellMs(), 1234);
    EXPECT_EQ(other.tuckAnimation(), std::nullopt);
}

TEST(SettingsKeysTest, TheKeysAreTheStoredOnes) {
    EXPECT_THAT(
        (std::vector{Keys::appBindings, Keys::placements, Keys::knownDisplays, Keys::hotZoneDwellMs,
                     Keys::tuckAnimation, Keys::didOfferLoginItem, Keys::didFlattenPlacements,
                     Keys::didMigrateLegacySettings, Keys::targetAppPath, Keys::hotKey,
                     Keys::hotZone, Keys::tuckEdge, Keys::tuckAuto}),
        ElementsAre("AppBindings", "Placements", "KnownDisplays", "HotZoneDwellMs", "TuckAnimation",
                    "DidOfferLoginItem", "DidFlattenPlacements", "DidMigrateLegacySettings",
                    "TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto"));
}

}  // namespace
}  // namespace quorvel
