#include "platform/Text.hpp"
#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class LauncherHotZonesTest : public LauncherFixture {
protected:
    void SetUp() override {
        sim.pointer.moveTo({700, 450});
        sim.install(editor);
        sim.install(browser);
    }

    void reload(const std::vector<AppBinding>& bindings, const std::vector<Placement>& placements) {
        bind(bindings);
        place(placements);
        if (!controller) create();
        sim.log.lines.clear();
        controller->reloadFromSettings();
    }

    void attachMonitor() {
        sim.screens.arrange({SimulatedScreens::screen(2, {0, 0, 1920, 1080}),
                             SimulatedScreens::screen(1, {1920, 0, 1440, 900}, true)});
    }

    /// Long enough for the default dwell.
    void restAt(Point cursorCocoa) {
        sim.pointer.moveTo(cursorCocoa);
        sim.advance(500ms);
    }

    std::string firedAt(int x, int y) const {
        return formatted("Quorvel: hot corner fired at (%d, %d)", x, y);
    }

    int launches(const char* path) { return sim.applications.launchCounts[path]; }
};

TEST_F(LauncherHotZonesTest, APlacementOnTheBuiltInPanelGivesOneZoneInItsCorner) {
    attachMonitor();
    reload({{editor}}, {{editor, "builtin", "topRight", "none"}});
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: hot corner zones: (3354,894 6x6)",
                                           "Quorvel: hot corner armed (topRight, dwell 300ms)"));
    restAt({1917, 1077});
    EXPECT_EQ(launches(editor), 0);
    restAt({3357, 897});
    EXPECT_EQ(launches(editor), 1);
}

TEST_F(LauncherHotZonesTest, OfTwoInOneCornerBothHaveAZoneAndTheEarlierOneRuns) {
    reload({{editor}, {browser}}, {{browser, displayId(1), "top-left", "none"},
                                   {editor, displayId(1), "topLeft", "none"}});
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(formatted("Quorvel: corner shared — %@: corner topLeft is already used by %@ "
                              "on the display %@",
                              browser, editor, displayId(1)),
                    "Quorvel: hot corner zones: (0,894 6x6) (0,894 6x6)",
                    "Quorvel: hot corner armed (topLeft, topLeft, dwell 300ms)"));
    restAt({0, 900});
    EXPECT_EQ(launches(editor), 1);
    EXPECT_EQ(launches(browser), 0);
}

TEST_F(LauncherHotZonesTest, WithoutPlacementsItIsLoggedAndNoTimerRuns) {
    reload({{editor}}, {});
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: no hot corners placed."));
    EXPECT_EQ(sim.runLoop.timerCount(), 0u);
}

TEST_F(LauncherHotZonesTest, PlacementsElsewhereAndWithoutACornerGiveNoZone) {
    reload({{editor}}, {{editor, displayId(7), "topLeft", "none"},
                        {editor, displayId(1), "top", "left"},
                        {browser, displayId(1), "topLeft", "none"}});
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: no hot corners placed."));
}

TEST_F(LauncherHotZonesTest, ZonesComeByBindingThenByDisplay) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
    reload({{browser}, {editor}}, {{editor, displayId(1), "bottomLeft", "none"},
                                   {browser, displayId(2), "bottomRight", "none"},
                                   {browser, displayId(1), "topRight", "none"},
                                   {editor, displayId(2), "topLeft", "none"}});
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre("Quorvel: hot corner zones: (1434,894 6x6) (3354,0 6x6) (0,0 6x6) "
                    "(1440,1074 6x6)",
                    "Quorvel: hot corner armed (topRight, bottomRight, bottomLeft, topLeft, "
                    "dwell 300ms)"));
}

TEST_F(LauncherHotZonesTest, DroppedBindingsGetNoZone) {
    reload({{editor, "nonsense"}}, {{editor, displayId(1), "topLeft", "none"}});
    EXPECT_EQ(sim.log.lines.back(), "Quorvel: no hot corners placed.");
}

TEST_F(LauncherHotZonesTest, SharedEdgesAreLoggedForEachDisplayByItsName) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}),
                         SimulatedScreens::screen(2, {1440, 0, 1920, 1080})});
    reload({{editor}, {browser}}, {{browser, displayId(1), "none", "topLeft"},
                                   {editor, displayId(1), "none", "left"},
                                   {editor, displayId(2), "none", "right"},
                                   {browser, displayId(2), "none", "right"}});
    const std::string end = " — put them on opposite halves so the two do not collide";
    EXPECT_THAT(
        sim.log.lines,
        ElementsAre(
            formatted("Quorvel: tuck edge shared on Display 1 — %@: tuck edge 'top-left' overlaps "
                      "'left' already used by %@%@",
                      browser, editor, end),
            formatted("Quorvel: tuck edge shared on Display 2 — %@: tuck edge 'right' overlaps "
                      "'right' already used by %@%@",
                      browser, editor, end),
            "Quorvel: no hot corners placed."));
}

TEST_F(LauncherHotZonesTest, CornersAreReportedBeforeEdgesAndBothBeforeTheZones) {
    reload({{editor}, {browser}},
           {{editor, displayId(1), "topLeft", "left"}, {browser, displayId(1), "topLeft", "left"}});
    EXPECT_THAT(sim.log.lines, ElementsAre(StartsWith("Quorvel: corner shared — "),
                                           StartsWith("Quorvel: tuck edge shared on Display 1 — "),
                                           StartsWith("Quorvel: hot corner zones: "),
                                           StartsWith("Quorvel: hot corner armed (")));
}

TEST_F(LauncherHotZonesTest, ACornerTucksTheApplicationInFrontToTheEdgeOfItsDisplay) {
    const AXWindow window = sim.start(editor, {200, 100, 800, 600});
    reload({{editor}}, {{editor, displayId(1), "bottomRight", "right"}});
    restAt({1440, 0});
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window)->x, 1438);
    EXPECT_TRUE(sim.log.contains(firedAt(1440, 0)));
}

TEST_F(LauncherHotZonesTest, ACornerWithoutAnEdgeHidesTheApplicationInFront) {
    sim.start(editor);
    reload({{editor}}, {{editor, displayId(1), "bottomRight", "none"}});
    restAt({1440, 0});
    EXPECT_TRUE(sim.applications.isHidden({editor, 0}));
}

TEST_F(LauncherHotZonesTest, TheDwellIsThatOfTheSettings) {
    sim.defaults.setObject(Keys::hotZoneDwellMs, 2000);
    reload({{editor}}, {{editor, displayId(1), "topLeft", "none"}});
    EXPECT_EQ(sim.log.lines.back(), "Quorvel: hot corner armed (topLeft, dwell 2000ms)");
    restAt({0, 900});
    EXPECT_EQ(launches(editor), 0);
    sim.advance(2s);
    EXPECT_EQ(launches(editor), 1);
}

TEST_F(LauncherHotZonesTest, TheDeedIsDoneAfterThePollAndNotWithinIt) {
    sim.defaults.setObject(Keys::hotZoneDwellMs, 0);
    reload({{editor}}, {{editor, displayId(1), "topLeft", "none"}});
    interface.answer = [&](const Alert&) {
        // A reload while an alert is up replaces the watcher that brought it about.
        if (interface.alerts.size() == 1) controller->reloadFromSettings();
        return 1;
    };
    sim.files.remove(editor);
    restAt({0, 900});
    EXPECT_EQ(interface.alerts.size(), 2u) << "the new watcher knows nothing of the visit";
}

TEST_F(LauncherHotZonesTest, AReloadReplacesTheWatcher) {
    reload({{editor}}, {{editor, displayId(1), "topLeft", "none"}});
    reload({{editor}}, {{editor, displayId(1), "topRight", "none"}});
    restAt({0, 900});
    EXPECT_EQ(launches(editor), 0);
    reload({{editor}}, {});
    restAt({1440, 900});
    EXPECT_EQ(launches(editor), 0);
    EXPECT_EQ(sim.runLoop.timerCount(), 0u);
    sim.log.lines.clear();
    attachMonitor();
    sim.advance(1s);
    EXPECT_THAT(sim.log.lines, Not(Contains(StartsWith("Quorvel: hot corner"))));
}

TEST_F(LauncherHotZonesTest, ADeedThatOutlivesTheControllerIsSkipped) {
    /// Ends the controller between the firing and the deed, which is queued after it was logged.
    struct EndingLog final : Log {
        EndingLog(SimulatedDesktop& sim, std::function<void()> end)
            : sim(sim), end(std::move(end)) {}
        void line(std::string_view message) override {
            sim.log.line(message);
            if (message.starts_with("Quorvel: hot corner fired")) sim.runLoop.async(end);
        }
        SimulatedDesktop& sim;
        std::function<void()> end;
    };
    EndingLog log(sim, [this] { controller.reset(); });
    const Desktop all = sim.desktop();
    sim.defaults.setObject(Keys::hotZoneDwellMs, 0);
    bind({{editor}});
    place({{editor, displayId(1), "topLeft", "none"}});
    controller.emplace(
        Desktop{all.runLoop, log, all.defaults, all.files, all.screens, all.pointer, all.pollTimers,
                all.hotKeys, all.applications, all.catalog, all.windows, all.trust, all.loginItem,
                all.statusBar, all.remoteControl, all.diagnostics},
        application, []() -> Interface* { return nullptr; });
    controller->reloadFromSettings();
    sim.settle();
    sim.pointer.moveTo({0, 900});
    sim.advance(1s);
    EXPECT_TRUE(sim.log.contains(firedAt(0, 900)));
    EXPECT_FALSE(controller.has_value());
    EXPECT_EQ(launches(editor), 0);
}

TEST_F(LauncherHotZonesTest, ADisplayChangeRearmsTheCornersAndRegistersNoShortcutAgain) {
    bind({{editor, editorKeys}});
    place({{editor, displayId(2), "topLeft", "none"}});
    launch();
    const auto registered = sim.hotKeys.registered();
    sim.hotKeys.registrationStatus = 7;  // would refuse what was let go
    sim.log.lines.clear();
    attachMonitor();
    sim.advance(1s);
    EXPECT_THAT(sim.log.lines,
                ElementsAre("Quorvel: displays changed — 0 tucked window(s) unaffected",
                            "Quorvel: hot corner zones: (0,1074 6x6)",
                            "Quorvel: hot corner armed (topLeft, dwell 300ms)"));
    EXPECT_EQ(sim.hotKeys.registered(), registered);
    EXPECT_FALSE(registered.empty());
    restAt({0, 1080});
    EXPECT_EQ(launches(editor), 1);
}

TEST_F(LauncherHotZonesTest, ANewDisplayIsRememberedOnceItHasSettled) {
    bind({{editor}});
    launch();
    const int before = sim.defaults.writeCount;
    attachMonitor();
    sim.advance(1s);
    EXPECT_EQ(Settings(sim.defaults).knownDisplays().count(displayId(2)), 1u);
    EXPECT_EQ(sim.defaults.writeCount, before + 1);
}

TEST_F(LauncherHotZonesTest, NoDisplayForAMomentLeavesNoCornersUntilOneIsBack) {
    bind({{editor}});
    place({{editor, "builtin", "topLeft", "none"}});
    launch();
    sim.log.lines.clear();
    sim.screens.arrange({});
    sim.advance(1s);
    EXPECT_THAT(sim.log.lines, ElementsAre("Quorvel: hot corner zones: (0,894 6x6)",
                                           "Quorvel: no hot corners placed."));
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}, true)});
    sim.advance(1s);
    restAt({0, 900});
    EXPECT_EQ(launches(editor), 1);
}

TEST_F(LauncherHotZonesTest, ADisplayChangeThatOutlivesTheControllerIsSkipped) {
    bind({{editor}});
    launch();
    const auto observer = sim.screens.onChange([this] { controller.reset(); });
    attachMonitor();
    sim.advance(1s);
    EXPECT_FALSE(controller);
}

}  // namespace
}  // namespace quorvel
