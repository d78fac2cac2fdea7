// The launches of an installation in which earlier programs or versions have left settings.

#include "main/shell/SettingsUpgrade.hpp"
#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Array = Value::Array;
using Dictionary = Value::Dictionary;

constexpr const char* firstDomain = "com.tessivane.pellomarch";
constexpr const char* secondDomain = "com.tessivane.vintrosk";

class LauncherFirstLaunchTest : public LauncherFixture {
protected:
    LauncherFirstLaunchTest() { sim.defaults.values = {}; }

    const Settings settings{sim.defaults};

    static std::string flattened(int apps, int placements,
                                 const std::string& displays = "Display 1") {
        return formatted(
            "Quorvel: flattened settings — %d app(s), %d placement(s), 5 retired "
            "key(s) removed; materialised onto %@",
            apps, placements, displays);
    }
    static std::string migrated(int count, const std::string& domain) {
        return formatted("Quorvel: migrated %d setting(s) from %@", count, domain);
    }
    const Value& stored(std::string_view key) const { return sim.defaults.values.at(key); }
    bool isStored(std::string_view key) const { return sim.defaults.values.contains(key); }

    static Value binding(const char* path) {
        return Array{Dictionary{{"appPath", path}, {"hotKey", "none"}, {"autoTuck", "false"}}};
    }
};

TEST_F(LauncherFirstLaunchTest, WithNothingStoredItFlattensRegistersAndOpensTheSettings) {
    launch();
    EXPECT_THAT(sim.log.lines,
                ElementsAre(flattened(0, 0), "Quorvel: registered to open at login",
                            "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                            "Quorvel: ready — 0 app(s) bound", "Quorvel: accessibility granted",
                            "Quorvel: no apps bound; opening Settings"));
    EXPECT_EQ(stored("AppBindings"), Value(Array{}));
    EXPECT_EQ(stored("Placements"), Value(Array{}));
    for (const char* marker :
         {"DidMigrateLegacySettings", "DidFlattenPlacements", "DidOfferLoginItem"}) {
        EXPECT_EQ(stored(marker), Value(true)) << marker;
    }
}

TEST_F(LauncherFirstLaunchTest, TheSecondLaunchDoesNoneOfItAndWritesNothing) {
    launch();
    controller.reset();
    sim.log.lines.clear();
    sim.loginItem.current = LoginItemStatus::notRegistered;  // by the user
    sim.defaults.otherDomains[firstDomain] = {{"HotZoneDwellMs", 100}};
    const auto before = sim.defaults.values;
    const int writes = sim.defaults.writeCount;
    launch();
    EXPECT_EQ(sim.log.lines.front(), "Quorvel: no hot corners placed.");
    EXPECT_EQ(sim.defaults.values, before);
    EXPECT_EQ(sim.defaults.writeCount, writes);
    EXPECT_EQ(sim.loginItem.status(), LoginItemStatus::notRegistered);
}

TEST_F(LauncherFirstLaunchTest, EachStepIsOneWrite) {
    sim.defaults.otherDomains[firstDomain] = {
        {"AppBindings", binding(editor)}, {"TargetAppPath", browser}, {"HotZoneDwellMs", 100}};
    launch();
    // Migration, flattening, the offer to open at login, the displays.
    EXPECT_EQ(sim.defaults.writeCount, 4);
}

// Migration
// -------------------------------------------------------------------------------------

TEST_F(LauncherFirstLaunchTest, OfTwoEarlierProgramsOnlyTheFirstIsTakenOver) {
    sim.defaults.otherDomains[firstDomain] = {{"TuckAnimation", "spring"}, {"Other", 1}};
    sim.defaults.otherDomains[secondDomain] = {{"TuckAnimation", "instant"},
                                               {"HotZoneDwellMs", 900}};
    launch();
    EXPECT_EQ(sim.log.lines.front(), migrated(1, firstDomain));
    EXPECT_EQ(stored("TuckAnimation"), Value("spring"));
    EXPECT_FALSE(isStored("HotZoneDwellMs"));
    EXPECT_FALSE(isStored("Other"));
}

TEST_F(LauncherFirstLaunchTest, AFirstEarlierProgramWithForeignKeysGivesWayToTheSecond) {
    sim.defaults.otherDomains[firstDomain] = {{"DidFlattenPlacements", true}, {"Other", 1}};
    sim.defaults.otherDomains[secondDomain] = {{"HotZoneDwellMs", "900"}, {"TuckAnimation", 7}};
    launch();
    EXPECT_EQ(sim.log.lines.front(), migrated(2, secondDomain));
    EXPECT_EQ(stored("HotZoneDwellMs"), Value("900"));
    EXPECT_EQ(stored("TuckAnimation"), Value(7)) << "values are taken over unchanged";
}

TEST_F(LauncherFirstLaunchTest, OnlyTheOfferToOpenAtLoginStoredIsRoomForAnImport) {
    sim.defaults.values = {{"DidOfferLoginItem", true}};
    sim.defaults.otherDomains[firstDomain] = {{"HotZoneDwellMs", 100}};
    launch();
    EXPECT_EQ(settings.hotZoneDwellMs(), 100);
}

TEST_F(LauncherFirstLaunchTest, RetiredKeysOfItsOwnAreRoomForAnImport) {
    sim.defaults.values = {{"TargetAppPath", editor}};
    sim.defaults.otherDomains[firstDomain] = {{"HotZoneDwellMs", 100}};
    launch();
    EXPECT_EQ(settings.hotZoneDwellMs(), 100);
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{editor}));
}

TEST_F(LauncherFirstLaunchTest, AnySettingOfItsOwnKeepsTheImportOutAndSetsTheMarker) {
    for (const char* key :
         {"HotZoneDwellMs", "TuckAnimation", "AppBindings", "Placements", "KnownDisplays"}) {
        sim.defaults.values = {{key, Dictionary{}}};
        sim.defaults.otherDomains[firstDomain] = {{"TargetAppPath", editor}};
        launch();
        EXPECT_THAT(sim.log.taken(), Not(Contains(StartsWith("Quorvel: migrated")))) << key;
        EXPECT_THAT(settings.appBindings(), IsEmpty()) << key;
        EXPECT_EQ(stored("DidMigrateLegacySettings"), Value(true)) << key;
        controller.reset();
    }
}

TEST_F(LauncherFirstLaunchTest, APresetIsNoSettingOfItsOwn) {
    sim.defaults.presets = {{"AppBindings", binding(browser)}, {"DidMigrateLegacySettings", true}};
    sim.defaults.otherDomains[firstDomain] = {{"AppBindings", binding(editor)}};
    launch();
    EXPECT_EQ(sim.log.lines.front(), migrated(1, firstDomain));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{editor}));
}

TEST_F(LauncherFirstLaunchTest, AMarkerThatIsATextDoesNotCount) {
    sim.defaults.values = {{"DidMigrateLegacySettings", "true"}};
    sim.defaults.otherDomains[firstDomain] = {{"HotZoneDwellMs", 100}};
    launch();
    EXPECT_EQ(sim.log.lines.front(), migrated(1, firstDomain));
    EXPECT_EQ(stored("DidMigrateLegacySettings"), Value(true));
}

TEST_F(LauncherFirstLaunchTest, AnImportThatCannotBeStoredIsTriedAgainAtTheNextLaunch) {
    sim.defaults.otherDomains[firstDomain] = {{"AppBindings", binding(editor)},
                                              {"HotZoneDwellMs", 100}};
    sim.defaults.keysThatFailToSave = {"AppBindings"};
    launch();
    EXPECT_EQ(sim.log.lines.front(),
              "Quorvel: could not store HotZoneDwellMs, AppBindings, DidMigrateLegacySettings in "
              "/home/user/.config/com.tessivane.quorvel/defaults.json — No space left on device");
    EXPECT_THAT(sim.log.taken(), AllOf(Not(Contains(StartsWith("Quorvel: migrated"))),
                                       Not(Contains(StartsWith("Quorvel: flattened"))),
                                       Contains("Quorvel: ready — 0 app(s) bound")));
    EXPECT_EQ(sim.defaults.values, (Dictionary{{"DidOfferLoginItem", true}}))
        << "a setting of its own would keep the import out";

    controller.reset();
    sim.defaults.keysThatFailToSave.clear();
    launch();
    EXPECT_THAT(sim.log.lines, AllOf(Contains(migrated(2, firstDomain)), Contains(flattened(1, 1)),
                                     Contains("Quorvel: ready — 1 app(s) bound")));
    EXPECT_EQ(settings.knownDisplays().size(), 1u);
}

TEST_F(LauncherFirstLaunchTest, AnImportThatIsTooLargeGivesWayToTheSecondOne) {
    sim.defaults.otherDomains[firstDomain] = {{"AppBindings", binding(editor)}};
    sim.defaults.otherDomains[secondDomain] = {{"HotZoneDwellMs", 900}};
    sim.defaults.keysThatAreTooLarge = {"AppBindings"};
    SettingsUpgrade::migrate(sim.defaults, sim.log);
    EXPECT_THAT(sim.log.lines,
                ElementsAre("Quorvel: could not store AppBindings, DidMigrateLegacySettings in "
                            "/home/user/.config/com.tessivane.quorvel/defaults.json — too large",
                            migrated(1, secondDomain)));
    EXPECT_EQ(sim.defaults.values,
              (Dictionary{{"HotZoneDwellMs", 900}, {"DidMigrateLegacySettings", true}}));
}

TEST_F(LauncherFirstLaunchTest, AnImportThatIsTooLargeIsNotTriedAgain) {
    sim.defaults.otherDomains[firstDomain] = {{"Placements", binding(editor)}};
    sim.defaults.keysThatAreTooLarge = {"Placements"};
    EXPECT_TRUE(SettingsUpgrade::migrate(sim.defaults, sim.log));
    EXPECT_EQ(sim.defaults.values, (Dictionary{{"DidMigrateLegacySettings", true}}));
    EXPECT_EQ(sim.log.taken().size(), 1u);

    sim.defaults.keysThatAreTooLarge.clear();
    launch();
    EXPECT_EQ(sim.log.lines.front(), flattened(0, 0));
}

// Flattening
// ------------------------------------------------------------------------------------

TEST_F(LauncherFirstLaunchTest, ImportedRetiredKeysAreFlattenedInTheSameLaunch) {
    sim.defaults.otherDomains[firstDomain] = {{"TargetAppPath", "~/Applications/Y.app"},
                                              {"HotKey", editorKeys},
                                              {"HotZone", "topRight"},
                                              {"TuckAuto", "YES"}};
    launch();
    const std::string path = sim.files.home + "/Applications/Y.app";
    EXPECT_EQ(sim.log.lines[0], migrated(4, firstDomain));
    EXPECT_EQ(sim.log.lines[1], flattened(1, 1));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{path, editorKeys, "true"}));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{path, displayId(1), "topRight"}));
    for (const char* key : {"TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto"}) {
        EXPECT_FALSE(isStored(key)) << key;
    }
    EXPECT_EQ(sim.hotKeys.registered().size(), 1u) << "it takes effect at once";
}

TEST_F(LauncherFirstLaunchTest, ARetiredKeyMayHoldANumber) {
    sim.defaults.values = {{"TargetAppPath", editor}, {"TuckAuto", 1}};
    launch();
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{editor, "none", "true"}));
}

TEST_F(LauncherFirstLaunchTest, EveryAttachedDisplayIsNamedAndEveryAbsentOneHasItsLine) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
    sim.defaults.values = {
        {"KnownDisplays", Dictionary{{"GONE", "Projector"}, {displayId(2), "Earlier name"}}},
        {"AppBindings", Array{Dictionary{{"appPath", editor}, {"tuckEdge", "left"}}}},
        {"Placements", Array{Dictionary{{"appPath", editor}, {"display", "GONE"}}}}};
    launch();
    EXPECT_EQ(sim.log.lines[0], flattened(1, 3, "Display 1, Display 2"));
    EXPECT_EQ(sim.log.lines[1],
              "Quorvel: flatten — display Projector (GONE) was not attached; nothing was "
              "materialised for it — set its corners in Settings when it returns");
    EXPECT_EQ(sim.log.lines[2], "Quorvel: registered to open at login");
}

TEST_F(LauncherFirstLaunchTest, PresetPlacementsAreKept) {
    sim.defaults.presets = {
        {"Placements", Array{Dictionary{{"appPath", editor}, {"display", displayId(1)}}}}};
    sim.defaults.values = {
        {"AppBindings", Array{Dictionary{{"appPath", editor}, {"corner", "topLeft"}}}}};
    launch();
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, displayId(1)}));
}

TEST_F(LauncherFirstLaunchTest, AMarkerInAnyFormKeepsFlatteningOut) {
    for (const Value& marker : {Value(true), Value("YES"), Value(1)}) {
        sim.defaults.values = {{"DidFlattenPlacements", marker}, {"TargetAppPath", editor}};
        launch();
        EXPECT_THAT(sim.log.taken(), Not(Contains(StartsWith("Quorvel: flattened"))));
        EXPECT_TRUE(isStored("TargetAppPath"));
        controller.reset();
    }
}

TEST_F(LauncherFirstLaunchTest, FlatteningThatCannotBeStoredChangesNothingAndIsTriedAgain) {
    sim.defaults.values = {
        {"AppBindings", Array{Dictionary{{"appPath", editor}, {"corner", "topLeft"}}}},
        {"DidMigrateLegacySettings", true}};
    const Value before = stored("AppBindings");
    sim.defaults.keysThatFailToSave = {"Placements"};
    launch();
    EXPECT_EQ(stored("AppBindings"), before);
    EXPECT_FALSE(isStored("DidFlattenPlacements"));
    EXPECT_THAT(sim.log.taken(), AllOf(Contains(StartsWith("Quorvel: could not store AppBindings, "
                                                           "Placements, TargetAppPath, ")),
                                       Not(Contains(StartsWith("Quorvel: flattened"))),
                                       Contains("Quorvel: ready — 1 app(s) bound")));

    sim.defaults.keysThatFailToSave.clear();
    controller->flattenPlacementsIfNeeded();
    EXPECT_THAT(sim.log.lines, ElementsAre(flattened(1, 1)));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, displayId(1), "topLeft"}));
}

// Opening at login
// ------------------------------------------------------------------------------

TEST_F(LauncherFirstLaunchTest, FromAMountedImageTheOfferWaits) {
    sim.files.readOnlyVolumes = {"/opt"};
    launch();
    EXPECT_THAT(sim.log.lines, Contains("Quorvel: not registering for login yet — running from " +
                                        sim.loginItem.program));
    EXPECT_FALSE(isStored("DidOfferLoginItem"));
    EXPECT_EQ(sim.loginItem.registerCount, 0);
}

}  // namespace
}  // namespace quorvel
