#include <algorithm>
#include <chrono>

#include "main/shell/ProcessValues.hpp"
#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LauncherShortcutsTest : public LauncherFixture {
protected:
    static SimulatedHotKeys::Registered key(const char* keys, std::uint32_t id) {
        const auto spec = HotKeySpec::parse(keys);
        return {virtualKeyCodes().at(spec->keyName), spec->carbonMask(), {hotKeySignature, id}};
    }

    void reload(const std::vector<AppBinding>& bindings) {
        bind(bindings);
        if (!controller) create();
        controller->reloadFromSettings();
    }

    static constexpr const char* noCorners = "Quorvel: no hot corners placed.";

    static std::string registeredLine(const char* keys, const std::string& path) {
        return formatted("Quorvel: global hotkey registered (%@) for %@", keys, path);
    }
};

TEST_F(LauncherShortcutsTest, IdentifiersCountAlongAllActiveBindings) {
    reload({{editor, "none", "false"}, {browser, "alt, CTRL,b", "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(browserKeys, 101)));
    EXPECT_THAT(sim.log.lines, ElementsAre(registeredLine(browserKeys, browser), noCorners));
}

TEST_F(LauncherShortcutsTest, DroppedBindingsAreLoggedOnceAnApplyAndTakeNoIdentifier) {
    reload({{editor, "hyper,Q", "false"}, {browser, browserKeys, "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(browserKeys, 100)));
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: binding dropped — %@: unusable hotkey 'hyper,Q'", editor),
                    registeredLine(browserKeys, browser), noCorners));
}

TEST_F(LauncherShortcutsTest, NoneInAnyCaseRegistersAndSaysNothing) {
    reload({{editor, "NONE", "false"}, {browser, "None", "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), IsEmpty());
    EXPECT_THAT(sim.log.lines, ElementsAre(noCorners));
}

TEST_F(LauncherShortcutsTest, ACombinationThatAnotherProgramHoldsIsLoggedWithTheStatus) {
    const auto held = key(editorKeys, 0);
    sim.hotKeys.holdElsewhere(held.keyCode, held.modifiers);
    reload({{editor, "Control,Option,e", "false"}, {browser, browserKeys, "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(browserKeys, 101)));
    EXPECT_THAT(sim.log.lines,
                ElementsAre(formatted("Quorvel: hotkey 'Control,Option,e' for %@ rejected "
                                      "(error 10)",
                                      editor),
                            registeredLine(browserKeys, browser), noCorners));

    sim.hotKeys.releaseElsewhere(held.keyCode, held.modifiers);
    controller->reloadFromSettings();
    EXPECT_TRUE(sim.hotKeys.isRegistered(held.keyCode, held.modifiers));
}

TEST_F(LauncherShortcutsTest, TwoBindingsOfOneShortcutLeaveItToTheFirst) {
    reload({{editor, editorKeys, "false"}, {browser, editorKeys, "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(editorKeys, 100)));
    EXPECT_TRUE(sim.log.contains(
        formatted("Quorvel: hotkey '%@' for %@ rejected (error 10)", editorKeys, browser)));
}

TEST_F(LauncherShortcutsTest, ARegistrationWithoutAReferenceIsRejectedWithError0) {
    sim.hotKeys.withholdsReferences = true;
    reload({{editor, editorKeys, "false"}});
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: hotkey '%@' for %@ rejected (error 0)", editorKeys, editor),
                    noCorners));
}

TEST_F(LauncherShortcutsTest, AReloadReplacesTheWholeSet) {
    reload({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
    reload({{browser, editorKeys, "false"}});
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(editorKeys, 100)));
    reload({});
    EXPECT_THAT(sim.hotKeys.registered(), IsEmpty());
}

TEST_F(LauncherShortcutsTest, TheHandlerIsInstalledOnceWhateverCameOfIt) {
    sim.hotKeys.installStatus = 1;
    reload({{editor, editorKeys, "false"}});
    reload({{editor, editorKeys, "false"}});
    EXPECT_EQ(sim.hotKeys.installCount, 1);
}

TEST_F(LauncherShortcutsTest, ADisplayChangeRegistersNoShortcutAgain) {
    reload({{editor, editorKeys, "false"}});
    sim.log.lines.clear();
    sim.hotKeys.registrationStatus = 7;  // would refuse what was let go
    sim.screens.arrange({SimulatedScreens::screen(2, {0, 0, 1920, 1080})});
    controller->applyAllHotZones(300);
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(editorKeys, 100)));
    EXPECT_THAT(sim.log.lines, ElementsAre(noCorners));
}

TEST_F(LauncherShortcutsTest, ThePathsOfTheSettingsAreHowApplicationsAreKnown) {
    reload({{editor, "unusable", "false"}, {browser, "none", "false"}});
    EXPECT_THAT(sim.applications.preferredPaths(), ElementsAre(editor, browser));
}

// Dispatch
// -------------------------------------------------------------------------------------------

TEST_F(LauncherShortcutsTest, APressOpensTheApplicationOfItsBinding) {
    reload({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
    sim.install(editor);
    sim.install(browser);
    press(browserKeys);
    EXPECT_EQ(sim.applications.launchCounts[browser], 1);
    EXPECT_EQ(sim.applications.launchCounts[editor], 0);
}

TEST_F(LauncherShortcutsTest, APressQueuedAcrossAReloadThatShortensTheListIsStale) {
    reload({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
    sim.install(editor);
    sim.install(browser);
    sim.log.lines.clear();
    const auto pressed = key(browserKeys, 0);
    sim.hotKeys.press(pressed.keyCode, pressed.modifiers);
    // Between the event and what it leads to.
    sim.runLoop.async([&] {
        bind({{editor, "none", "false"}});
        controller->reloadFromSettings();
    });
    sim.settle();
    EXPECT_THAT(sim.log.lines,
                ElementsAre(noCorners, "Quorvel: hotkey fired with stale id 101 — ignored"));
    EXPECT_EQ(sim.applications.launchCounts[browser], 0);
}

TEST_F(LauncherShortcutsTest, AnEventWithoutAnIdentifierIsStale) {
    reload({{editor, editorKeys, "false"}});
    sim.log.lines.clear();
    sim.hotKeys.withholdsIdentifiers = true;
    press(editorKeys);
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: hotkey fired with stale id 0 — ignored"));
}

TEST_F(LauncherShortcutsTest, APressThatOutlivesTheControllerIsSkipped) {
    reload({{editor, editorKeys, "false"}});
    sim.install(editor);
    const auto pressed = key(editorKeys, 0);
    sim.hotKeys.press(pressed.keyCode, pressed.modifiers);
    sim.runLoop.async([&] { controller.reset(); });
    sim.settle();
    EXPECT_EQ(sim.applications.launchCounts[editor], 0);
}

// The edge that goes with a press
// ----------------------------------------------------------------------

class LauncherEdgeHintTest : public LauncherShortcutsTest {
protected:
    void SetUp() override {
        sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                             SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
        reload({{editor, editorKeys, "false"}});
        sim.start(editor);
        sim.settle();
        sim.log.lines.clear();
    }

    /// Whether a press took the bottom edge, which is seen by its line.
    bool pressHidesAtTheBottom() {
        press(editorKeys);
        return sim.log.contains(formatted("Quorvel: hid %@ (bottom tuck)", editor));
    }

    bool pressTucksAWindow() {
        press(editorKeys);
        waitForSlides();
        return sim.log.countStartingWith("Quorvel: tucked ") > 0;
    }
};

TEST_F(LauncherEdgeHintTest, ComesFromTheDisplayUnderThePointer) {
    place({{editor, displayId(1), "none", "left"}, {editor, displayId(2), "none", "bottom"}});
    sim.pointer.moveTo({1500, 500});
    EXPECT_TRUE(pressHidesAtTheBottom());
}

TEST_F(LauncherEdgeHintTest, ThePixelRowAtTheTopBelongsToTheDisplay) {
    place({{editor, displayId(1), "none", "left"}, {editor, displayId(2), "none", "bottom"}});
    sim.pointer.moveTo({1440, 1080});
    EXPECT_TRUE(pressHidesAtTheBottom());
}

TEST_F(LauncherEdgeHintTest, ComesFromTheFirstDisplayWhenNoneIsUnderThePointer) {
    place({{editor, displayId(1), "none", "bottom"}, {editor, displayId(2), "none", "left"}});
    sim.pointer.moveTo({-50, -50});
    EXPECT_TRUE(pressHidesAtTheBottom());
}

TEST_F(LauncherEdgeHintTest, IsThePreferredOneWhereTheDisplayHasNoPlacement) {
    place({{editor, displayId(1), "none", "left"}});
    sim.pointer.moveTo({1500, 500});
    EXPECT_TRUE(pressTucksAWindow());
}

TEST_F(LauncherEdgeHintTest, IsThePreferredOneWhereThePlacementHasNoEdge) {
    place({{editor, displayId(2), "topLeft", "none"}, {editor, displayId(1), "none", "left"}});
    sim.pointer.moveTo({1500, 500});
    EXPECT_TRUE(pressTucksAWindow());
}

TEST_F(LauncherEdgeHintTest, IsThePreferredOneWhileNoDisplayIsAttached) {
    place({{editor, displayId(1), "none", "bottom"}});
    sim.screens.arrange({});
    EXPECT_TRUE(pressHidesAtTheBottom());
}

// Which edge is placed where, as the tuck engine asks
// ---------------------------------------------------

TEST_F(LauncherEdgeHintTest, TheWindowIsTuckedToTheEdgeOfItsOwnDisplay) {
    place({{editor, displayId(1), "none", "left"}, {editor, displayId(2), "none", "bottom-right"}});
    sim.pointer.moveTo({100, 100});
    const AXWindow window = sim.start(editor, {1600, 0, 800, 600});
    press(editorKeys);
    waitForSlides();
    EXPECT_TRUE(sim.log.contains(formatted("Quorvel: tucked %@ window to bottom-right", editor)));
    EXPECT_EQ(sim.frameAX(window)->x, 1440 + 1920 - 2);
}

TEST_F(LauncherEdgeHintTest, WithoutAPlacementOnItsDisplayTheApplicationIsHiddenInstead) {
    place({{editor, displayId(1), "none", "left"}});
    sim.start(editor, {1600, 0, 800, 600});
    press(editorKeys);
    EXPECT_TRUE(sim.log.contains(formatted(
        "Quorvel: hiding %@ instead — nothing is placed for it on this display", editor)));
}

TEST_F(LauncherEdgeHintTest, TheAnimationFollowsTheSettingsAtTheNextReload) {
    place({{editor, displayId(1), "none", "left"}});
    sim.defaults.setObject(Keys::tuckAnimation, "Instant");
    controller->reloadFromSettings();
    press(editorKeys);
    EXPECT_EQ(sim.windows.moves.size(), 1u);
    press(editorKeys);
    EXPECT_EQ(sim.windows.moves.size(), 2u);

    sim.defaults.setObject(Keys::tuckAnimation, "wobble");
    controller->reloadFromSettings();
    press(editorKeys);
    waitForSlides();
    // 160 ms of 1/60 s.
    EXPECT_EQ(sim.windows.moves.size(), 2u + 10);
}

// Many
// ------------------------------------------------------------------------------------------------

class LauncherManyBindingsTest : public LauncherShortcutsTest {
protected:
    static std::string path(int number) {
        return "/usr/share/applications/program-" + std::to_string(number) + ".desktop";
    }

    void bindMany(int count) {
        std::vector<AppBinding> bindings;
        std::vector<Placement> placements;
        for (int i = 0; i < count; ++i) {
            bindings.push_back({path(i), i == count - 1 ? editorKeys : "none", "true"});
            placements.push_back({path(i), displayId(1), "none", "left"});
        }
        bind(bindings);
        place(placements);
    }

    std::chrono::nanoseconds timeOfAReloadAndAPress(int count) {
        bindMany(count);
        auto best = std::chrono::nanoseconds::max();
        for (int run = 0; run < 3; ++run) {
            const auto start = std::chrono::steady_clock::now();
            controller->reloadFromSettings();
            press(editorKeys);
            best =
                std::min<std::chrono::nanoseconds>(best, std::chrono::steady_clock::now() - start);
        }
        return best;
    }
};

TEST_F(LauncherManyBindingsTest, TheLastOfTenThousandIsReachedByItsShortcut) {
    bindMany(10'000);
    sim.install(path(9'999));
    launch();
    EXPECT_TRUE(sim.log.contains("Quorvel: ready — 10000 app(s) bound"));
    EXPECT_THAT(sim.hotKeys.registered(), ElementsAre(key(editorKeys, 100 + 9'999)));
    press(editorKeys);
    EXPECT_EQ(sim.applications.launchCounts[path(9'999)], 1);
}

TEST_F(LauncherManyBindingsTest, TenTimesTheBindingsTakeNowhereNearAHundredTimesAsLong) {
    create();
    interface.answer = [](const Alert&) { return 1; };
    const auto few = timeOfAReloadAndAPress(1'000);
    const auto many = timeOfAReloadAndAPress(10'000);
    EXPECT_LT(many, 40 * few);
}

}  // namespace
}  // namespace quorvel
