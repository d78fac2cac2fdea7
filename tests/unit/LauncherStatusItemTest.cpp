#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;

constexpr StatusItemEvent leftClick{StatusItemEvent::Type::leftMouseUp, false};
constexpr StatusItemEvent controlClick{StatusItemEvent::Type::leftMouseUp, true};
constexpr StatusItemEvent rightClick{StatusItemEvent::Type::rightMouseUp, false};

class LauncherStatusItemTest : public LauncherFixture {
protected:
    LauncherStatusItemTest() { bind({{editor, editorKeys, "false"}}); }

    void click(const StatusItemEvent& event) {
        sim.statusBar.click(event);
        sim.settle();
    }
    bool choose(const char* title) {
        const bool wasThere = sim.statusBar.choose(title);
        sim.settle();
        return wasThere;
    }
    static constexpr const char* enable = "Enable Tuck (needs Accessibility)…";
};

TEST_F(LauncherStatusItemTest, ShowsTheIconWithItsToolTipAndLabel) {
    launch();
    const ShownStatusItem* const item = sim.statusBar.item();
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->hasIcon);
    EXPECT_EQ(item->iconPoints, (Size{18, 18}));
    EXPECT_EQ(item->title, "");
    EXPECT_EQ(item->toolTip, "Quorvel");
    EXPECT_EQ(item->accessibilityLabel, "Quorvel");
}

TEST_F(LauncherStatusItemTest, WithoutAUsableIconItShowsASingleCharacter) {
    sim.statusBar.hasIcon = false;
    launch();
    ASSERT_NE(sim.statusBar.item(), nullptr);
    EXPECT_FALSE(sim.statusBar.item()->hasIcon);
    EXPECT_EQ(sim.statusBar.item()->title, "◍");
}

TEST_F(LauncherStatusItemTest, WithoutAPlaceForItTheProgramEndsWithStatusOne) {
    sim.statusBar.refuses = true;
    create();
    EXPECT_EQ(application.run(), 1);
    EXPECT_THAT(sim.log.lines,
                ElementsAre("Quorvel: the system refused to create a status item button."));
    EXPECT_FALSE(sim.hotKeys.isRegistered(virtualKeyCodes().at("E"),
                                          HotKeySpec::parse(editorKeys)->carbonMask()));
}

TEST_F(LauncherStatusItemTest, APlainClickOpensTheSettings) {
    launch();
    click(leftClick);
    EXPECT_EQ(interface.settingsShown, 1);
    EXPECT_THAT(sim.statusBar.openTitles(), ElementsAre());
}

TEST_F(LauncherStatusItemTest, ControlClickBehavesExactlyLikeARightClick) {
    launch();
    for (const StatusItemEvent& event : {rightClick, controlClick}) {
        click(event);
        EXPECT_THAT(sim.statusBar.openTitles(), ElementsAre("Settings…", "-", "Quit Quorvel"));
    }
    EXPECT_EQ(sim.statusBar.item()->opened.size(), 2u);
    EXPECT_EQ(interface.settingsShown, 0);
}

TEST_F(LauncherStatusItemTest, MenuHasFourEntriesUntilThePermissionIsThere) {
    sim.trust.granted = false;
    launch();
    click(rightClick);
    EXPECT_THAT(sim.statusBar.openTitles(), ElementsAre("Settings…", enable, "-", "Quit Quorvel"));
    sim.trust.granted = true;
    click(rightClick);
    EXPECT_THAT(sim.statusBar.openTitles(), ElementsAre("Settings…", "-", "Quit Quorvel"));
}

TEST_F(LauncherStatusItemTest, APanelThatOpensTheMenuItselfGetsTheOneOfThatMoment) {
    sim.statusBar.opensMenus = true;
    sim.trust.granted = false;
    launch();
    click(rightClick);
    EXPECT_EQ(sim.statusBar.openTitles().size(), 4u);
    sim.trust.granted = true;
    click(rightClick);
    EXPECT_EQ(sim.statusBar.openTitles().size(), 3u);
}

TEST_F(LauncherStatusItemTest, EntriesHaveTheirKeyEquivalents) {
    sim.trust.granted = false;
    launch();
    click(rightClick);
    const Menu& menu = sim.statusBar.item()->opened.back();
    ASSERT_EQ(menu.size(), 4u);
    EXPECT_EQ(menu[0].keyEquivalent, ",");
    EXPECT_EQ(menu[1].keyEquivalent, "");
    EXPECT_EQ(menu[3].keyEquivalent, "q");
}

TEST_F(LauncherStatusItemTest, AfterTheMenuAPlainClickOpensTheSettingsAgain) {
    launch();
    click(rightClick);
    click(leftClick);
    EXPECT_EQ(interface.settingsShown, 1);
    EXPECT_EQ(sim.statusBar.item()->opened.size(), 1u);
}

TEST_F(LauncherStatusItemTest, EntriesDoWhatTheySay) {
    sim.trust.granted = false;
    launch();
    click(rightClick);
    EXPECT_TRUE(choose("Settings…"));
    EXPECT_EQ(interface.settingsShown, 1);
    EXPECT_TRUE(choose(enable));
    EXPECT_EQ(sim.trust.promptCount, 1);
    EXPECT_FALSE(application.isEnding());
    EXPECT_TRUE(choose("Quit Quorvel"));
    EXPECT_TRUE(application.isEnding());
}

TEST_F(LauncherStatusItemTest, QuitFromTheMenuPutsEveryWindowBack) {
    const AXWindow window = sim.start(editor);
    const auto home = sim.frameAX(window);
    place({{editor, "builtin", "none", "left"}});
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}, true)});
    launch();
    press(editorKeys);
    waitForSlides();
    ASSERT_NE(sim.frameAX(window), home);
    click(rightClick);
    choose("Quit Quorvel");
    EXPECT_TRUE(application.isEnding());
    EXPECT_EQ(sim.frameAX(window), home);
}

TEST_F(LauncherStatusItemTest, QuitEndsTheAlertThatIsUp) {
    bind({{"/opt/nowhere/Missing.desktop", editorKeys, "false"}});
    launch();
    click(rightClick);
    bool wasEndingInside = true;
    interface.answer = [&](const Alert&) {
        EXPECT_TRUE(sim.statusBar.choose("Settings…"));
        EXPECT_EQ(interface.settingsShown, 0);
        EXPECT_TRUE(sim.statusBar.choose("Quit Quorvel"));
        wasEndingInside = application.isEnding();
        return 0;
    };
    press(editorKeys);
    EXPECT_FALSE(wasEndingInside);
    EXPECT_TRUE(application.isEnding());
}

TEST_F(LauncherStatusItemTest, TheItemGoesWithTheController) {
    launch();
    controller.reset();
    EXPECT_EQ(sim.statusBar.item(), nullptr);
}

}  // namespace
}  // namespace quorvel
