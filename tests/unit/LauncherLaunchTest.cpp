#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

class LauncherLaunchTest : public LauncherFixture {};

TEST_F(LauncherLaunchTest, WithoutBindingsTheSettingsOpenAfterTheTwoLines) {
    launch();
    EXPECT_THAT(sim.log.lines,
                ElementsAre("Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                            "Quorvel: ready — 0 app(s) bound", "Quorvel: accessibility granted",
                            "Quorvel: no apps bound; opening Settings"));
    EXPECT_EQ(interface.settingsShown, 1);
}

TEST_F(LauncherLaunchTest, WithABindingNothingOpensAndTheInterfaceIsNeverLoaded) {
    bind({{editor, editorKeys, "false"}});
    launch();
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: global hotkey registered (%@) for %@", editorKeys, editor),
                    "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                    "Quorvel: ready — 1 app(s) bound", "Quorvel: accessibility granted"));
    EXPECT_EQ(interfaceLoads, 0);
}

TEST_F(LauncherLaunchTest, BindingsThatAreAllUnusableKeepTheSettingsClosed) {
    bind({{editor, "nonsense", "false"}});
    launch();
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: binding dropped — %@: unusable hotkey 'nonsense'", editor),
                    "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                    "Quorvel: ready — 0 app(s) bound", "Quorvel: accessibility granted"));
    EXPECT_EQ(interface.settingsShown, 0);
}

TEST_F(LauncherLaunchTest, AMissingPermissionIsOnlyLogged) {
    sim.trust.granted = false;
    bind({{editor, "none", "false"}});
    launch();
    EXPECT_TRUE(sim.log.contains("Quorvel: accessibility not granted"));
    EXPECT_EQ(sim.trust.promptCount, 0);
    EXPECT_THAT(interface.prompts, ElementsAre());
}

TEST_F(LauncherLaunchTest, WithoutTheInterfaceTheProgramRunsAllTheSame) {
    interfaceIsMissing = true;
    launch();
    EXPECT_EQ(sim.log.lines.back(), "Quorvel: settings not shown — the interface is missing");
    bind({{editor, editorKeys, "false"}});
    controller->reloadFromSettings();
    sim.install(editor);
    press(editorKeys);
    EXPECT_EQ(sim.applications.launchCounts[editor], 1);
}

TEST_F(LauncherLaunchTest, SavedStateIsReadBackOnlyInItsSecureForm) {
    EXPECT_TRUE(create().applicationSupportsSecureRestorableState());
}

// The remembered displays
// --------------------------------------------------------------------------

TEST_F(LauncherLaunchTest, RemembersTheAttachedDisplaysByNameAndForgetsNone) {
    const Settings settings(sim.defaults);
    settings.setKnownDisplays({{"GONE", "Old projector"}, {displayId(1), "Earlier name"}});
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
    launch();
    EXPECT_THAT(settings.knownDisplays(), ElementsAre(std::pair(displayId(1), "Display 1"),
                                                      std::pair(displayId(2), "Display 2"),
                                                      std::pair("GONE", "Old projector")));
}

TEST_F(LauncherLaunchTest, UnchangedDisplaysCauseNoWrite) {
    bind({{editor, "none", "false"}});
    launch();
    const int before = sim.defaults.writeCount;
    controller->reloadFromSettings();
    controller->applyAllHotZones(300);
    EXPECT_EQ(sim.defaults.writeCount, before);

    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
    controller->applyAllHotZones(300);
    EXPECT_EQ(sim.defaults.writeCount, before + 1);
}

TEST_F(LauncherLaunchTest, DisplaysThatAreGoneForAMomentAreNotForgotten) {
    bind({{editor, "none", "false"}});
    launch();
    sim.screens.arrange({});
    controller->applyAllHotZones(300);
    EXPECT_EQ(Settings(sim.defaults).knownDisplays().count(displayId(1)), 1u);
}

// What the settings say of one application
// -----------------------------------------------------------

class LauncherTuckConfigTest : public LauncherFixture {
protected:
    bool isAuto(const std::string& text) {
        bind({{editor, "none", text}});
        create().reloadFromSettings();
        return controller->tuckConfig(editor)->isAuto;
    }
};

TEST_F(LauncherTuckConfigTest, FourWordsCountAsAutoInAnyCaseAndSpacing) {
    for (const char* text : {"true", "yes", "1", "on", " YES ", "\tOn\n", "TRUE"}) {
        EXPECT_TRUE(isAuto(text)) << text;
    }
    for (const char* text : {"y", "", "false", "no", "0", "yes please", "11", "t r u e"}) {
        EXPECT_FALSE(isAuto(text)) << text;
    }
}

TEST_F(LauncherTuckConfigTest, AnApplicationWithoutAnActiveBindingHasNone) {
    bind({{editor, "unusable", "true"}});
    create().reloadFromSettings();
    EXPECT_EQ(controller->tuckConfig(editor), std::nullopt);
    EXPECT_EQ(controller->tuckConfig(browser), std::nullopt);
}

TEST_F(LauncherTuckConfigTest, TheFirstBindingOfAPathCounts) {
    bind({{editor, "unusable", "true"}, {editor, "none", "no"}, {editor, "none", "yes"}});
    create().reloadFromSettings();
    EXPECT_FALSE(controller->tuckConfig(editor)->isAuto);
}

TEST_F(LauncherTuckConfigTest, TheEdgeIsThePreferredOneOrNone) {
    bind({{editor, "none", "yes"}});
    create().reloadFromSettings();
    EXPECT_EQ(controller->tuckConfig(editor)->edge, std::nullopt);
    place({{editor, displayId(1), "none", "bottom"}, {editor, displayId(2), "none", "Top Right"}});
    EXPECT_EQ(controller->tuckConfig(editor)->edge, TuckEdge(TuckEdge::topRight));
}

TEST_F(LauncherTuckConfigTest, TheBottomGivesWayToAnEdgeOfAnyOtherDisplay) {
    create();
    place({{editor, displayId(1), "none", "bottom"}, {editor, displayId(2), "none", "left"}});
    EXPECT_EQ(controller->preferredPlacedEdgeRaw(editor), "left");
    place({{editor, displayId(1), "none", "right"}, {editor, displayId(2), "none", "left"}});
    EXPECT_EQ(controller->preferredPlacedEdgeRaw(editor), "right");
    place({{editor, displayId(1), "none", "bottom"}});
    EXPECT_EQ(controller->preferredPlacedEdgeRaw(editor), "bottom");
    place({});
    EXPECT_EQ(controller->preferredPlacedEdgeRaw(editor), "none");
}

TEST_F(LauncherTuckConfigTest, PlacementsOfOthersAndTextsThatAreNoEdgeDoNotCount) {
    create();
    place({{browser, displayId(1), "none", "left"},
           {std::string(editor) + "/", displayId(1), "none", "left"},
           {editor, displayId(1), "none", "top"},
           {editor, displayId(2), "none", "none"},
           {editor, displayId(3), "none", ""}});
    EXPECT_EQ(controller->preferredPlacedEdgeRaw(editor), "none");
}

}  // namespace
}  // namespace quorvel
