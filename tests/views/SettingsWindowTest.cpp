#include "tests/views/SettingsWindowFixture.hpp"

#include "main/interface/DisplayCardView.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;

TEST_F(SettingsWindowTest, ASecondShowKeepsTheWindowAndShowsWhatIsStoredNow) {
    QWidget* const first = &shown();
    EXPECT_EQ(first->windowTitle(), QStringLiteral("Quorvel Settings"));
    EXPECT_EQ(first->size(), QSize(680, 620));
    EXPECT_EQ(first->minimumSize(), QSize(560, 520));
    first->hide();
    settings.setAppBindings({{notes, "control,option,N", "false"}});
    EXPECT_EQ(&shown(), first);
    EXPECT_TRUE(first->isVisible());
    EXPECT_TRUE(shows("Notes, ⌃⌥N"));
    EXPECT_EQ(QApplication::topLevelWidgets().count(first), 1);
}

TEST_F(SettingsWindowTest, EachShowIsOneLineInTheLog) {
    shown();
    EXPECT_EQ(sim.log.lines.back(), "Quorvel: settings window shown (680x620, 5 sections)");
    shown();
    EXPECT_EQ(std::count(sim.log.lines.begin(), sim.log.lines.end(), sim.log.lines.back()), 2);
}

TEST_F(SettingsWindowTest, WithoutAppsTheRosterSaysSoAndNothingCanBeRemoved) {
    shown();
    EXPECT_TRUE(shows("No apps yet. Add one, then click a corner or edge on a display below."));
    EXPECT_FALSE(withName<QToolButton>("Remove the selected app")->isEnabled());
}

TEST_F(SettingsWindowTest, AddingStoresAnAppWithoutShortcutAndSelectsIt) {
    settings.setAppBindings({{paint, "control,option,P", "true"}});
    shown();
    add("not");
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{paint, "control,option,P", "true"},
                                                    AppBinding{notes, "none", "false"}));
    EXPECT_EQ(host.reloads, 1);
    EXPECT_TRUE(withName<QRadioButton>("Select Notes for removal")->isChecked());
    EXPECT_FALSE(withName<QRadioButton>("Select Paint for removal")->isChecked());
    EXPECT_TRUE(withName<QToolButton>("Remove the selected app")->isEnabled());
    EXPECT_TRUE(shows("Notes, None"));
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(SettingsWindowTest, AddingWhatIsThereSaysSoAndChangesNothing) {
    settings.setAppBindings({{notes, "control,option,N", "false"}});
    shown();
    add("Notes");
    ASSERT_EQ(host.alerts.size(), 1u);
    EXPECT_EQ(host.alerts[0], (Alert{"Already added",
                                     "Notes is already in the list. Edit the existing one instead.",
                                     {"OK"}}));
    EXPECT_EQ(settings.appBindings().size(), 1u);
    EXPECT_EQ(host.reloads, 0);
}

TEST_F(SettingsWindowTest, CancellingTheChooserChangesNothing) {
    shown();
    click(withName<QToolButton>("Add an app"));
    ASSERT_NE(chooser(), nullptr);
    QTest::keyClick(chooser(), Qt::Key_Escape);
    turn();
    EXPECT_EQ(chooser(), nullptr);
    EXPECT_TRUE(settings.appBindings().empty());
    EXPECT_EQ(host.reloads, 0);
}

TEST_F(SettingsWindowTest, RemovingTakesThePlacementsAlong) {
    settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
    settings.setPlacements(
        {{notes, displayId(), "topLeft", "none"}, {paint, displayId(), "none", "left"}});
    shown();
    remove("Notes");
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{paint, "none", "false"}));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{paint, displayId(), "none", "left"}));
    EXPECT_EQ(host.reloads, 1);
    EXPECT_FALSE(withName<QToolButton>("Remove the selected app")->isEnabled());
    EXPECT_TRUE(host.alerts.empty()) << "it is not asked for";
}

TEST_F(SettingsWindowTest, WhatIsNotInstalledIsSaid) {
    settings.setAppBindings({{"/opt/gone/Gone.desktop", "none", "false"}});
    shown();
    EXPECT_TRUE(shows("Gone, None, Not installed"));
}

TEST_F(SettingsWindowTest, ADwellOutOfTheSlidersRangeIsShownAsItIsStored) {
    sim.defaults.setObject(Keys::hotZoneDwellMs, 50);
    shown();
    EXPECT_EQ(slider().minimum(), 100);
    EXPECT_EQ(slider().maximum(), 1500);
    EXPECT_EQ(slider().value(), 100);
    EXPECT_TRUE(shows("0.05 s"));
    sim.defaults.setObject(Keys::hotZoneDwellMs, 350);
    shown();
    EXPECT_EQ(slider().value(), 350);
    EXPECT_TRUE(shows("0.35 s"));
    sim.defaults.setObject(Keys::hotZoneDwellMs, -5);
    shown();
    EXPECT_EQ(slider().value(), 100);
    EXPECT_TRUE(shows("0.00 s"));
}

TEST_F(SettingsWindowTest, ADragIsStoredOnceAtItsEnd) {
    shown();
    const int writes = sim.defaults.writeCount;
    QTest::mousePress(&slider(), Qt::LeftButton, {}, QPoint(30, slider().height() / 2));
    for (const int value : {400, 700, 900}) {
        slider().setValue(value);
        turn();
    }
    EXPECT_TRUE(shows("0.90 s"));
    EXPECT_EQ(sim.defaults.writeCount, writes);
    EXPECT_TRUE(host.appliedDwells.empty());
    QTest::mouseRelease(&slider(), Qt::LeftButton, {}, QPoint(30, slider().height() / 2));
    turn();
    EXPECT_EQ(sim.defaults.writeCount, writes + 1);
    EXPECT_EQ(settings.hotZoneDwellMs(), slider().value());
    EXPECT_THAT(host.appliedDwells, ElementsAre(slider().value()));
}

TEST_F(SettingsWindowTest, ByKeyboardTheSliderMovesOnlyItsLabel) {
    shown();
    const int writes = sim.defaults.writeCount;
    QTest::keyClick(&slider(), Qt::Key_Right);
    turn();
    EXPECT_TRUE(shows("0.31 s"));
    EXPECT_EQ(sim.defaults.writeCount, writes);
}

TEST_F(SettingsWindowTest, AnAnimationThatDoesNotParseIsShownAsSlide) {
    sim.defaults.setObject(Keys::tuckAnimation, "wobble");
    shown();
    EXPECT_EQ(animation().currentText(), QStringLiteral("Slide"));
    sim.defaults.setObject(Keys::tuckAnimation, " Ease_In_Out ");
    shown();
    EXPECT_EQ(animation().currentText(), QStringLiteral("Ease In-Out"));
    std::vector<std::string> titles;
    for (int i = 0; i < animation().count(); ++i) {
        titles.push_back(animation().itemText(i).toStdString());
    }
    EXPECT_THAT(titles, ElementsAre("Slide", "Ease Out", "Ease In-Out", "Spring", "Instant"));
}

TEST_F(SettingsWindowTest, AnAnimationThatIsChosenIsStoredAndUsed) {
    shown();
    animation().setFocus();
    QTest::keyClick(&animation(), Qt::Key_End);
    turn();
    EXPECT_EQ(settings.tuckAnimation(), "instant");
    EXPECT_THAT(host.styles, ElementsAre(TuckAnimationStyle::instant));
}

TEST_F(SettingsWindowTest, AnEdgeThatNothingTucksToIsReportedUntilSomethingDoes) {
    const std::string message =
        "Notes: add a shortcut, a corner or Auto to tuck it outside Settings";
    settings.setPlacements({{notes, displayId(), "none", "left"}, {notes, "GONE", "none", "none"}});
    const auto isReported = [&](const AppBinding& binding) {
        settings.setAppBindings({binding});
        shown();
        // Something that reports.
        QTest::keyClick(&animation(), Qt::Key_Home);
        QTest::keyClick(&animation(), Qt::Key_Down);
        turn();
        return shows(message);
    };
    EXPECT_TRUE(isReported({notes, "none", "false"}));
    EXPECT_FALSE(isReported({notes, "none", " YES "}));
    EXPECT_TRUE(isReported({notes, "none", "y"}));
    EXPECT_FALSE(isReported({notes, "control,option,N", "false"}));
    settings.setPlacements(
        {{notes, displayId(), "none", "left"}, {notes, "GONE", "topLeft", "none"}});
    EXPECT_FALSE(isReported({notes, "none", "false"}));
    settings.setPlacements({});
    EXPECT_FALSE(isReported({notes, "none", "false"}));
}

TEST_F(SettingsWindowTest, DroppedBindingsComeFirstInTheStatusLine) {
    settings.setPlacements({{notes, displayId(), "none", "left"}});
    settings.setAppBindings({{notes, "none", "false"}, {paint, "nonsense", "false"}});
    shown();
    QTest::keyClick(&animation(), Qt::Key_End);
    turn();
    EXPECT_TRUE(shows(std::string(paint) +
                      ": unusable hotkey 'nonsense' · Notes: add a shortcut, a corner or Auto to "
                      "tuck it outside Settings"));
}

TEST_F(SettingsWindowTest, ForgettingADisplayIsAskedFirst) {
    settings.setAppBindings({{notes, "none", "false"}});
    settings.setPlacements(
        {{notes, "GONE", "topLeft", "none"}, {notes, displayId(), "none", "left"}});
    settings.setKnownDisplays({{"GONE", "Projector"}, {displayId(), "Here"}});
    shown();
    EXPECT_TRUE(shows("Projector"));
    click(button("Forget This Display…"));
    ASSERT_EQ(host.alerts.size(), 1u);
    EXPECT_EQ(host.alerts[0],
              (Alert{"Forget this display?",
                     "Every corner and tuck edge configured for it will be removed.",
                     {"Forget", "Cancel"}}));
    EXPECT_EQ(settings.placements().size(), 2u);
    EXPECT_EQ(host.reloads, 0);

    host.answer = [](const Alert&) { return 0; };
    click(button("Forget This Display…"));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{notes, displayId(), "none", "left"}));
    EXPECT_THAT(settings.knownDisplays(), ElementsAre(std::pair(displayId(), "Here")));
    EXPECT_EQ(host.reloads, 1);
    EXPECT_FALSE(shows("Projector"));
}

TEST_F(SettingsWindowTest, LaunchAtLoginIsWhatTheDesktopSays) {
    shown();
    QCheckBox& box = *window().findChild<QCheckBox*>();
    EXPECT_EQ(box.text(), QStringLiteral("Launch at login"));
    EXPECT_FALSE(box.isChecked());
    click(&box);
    EXPECT_EQ(sim.loginItem.status(), LoginItemStatus::enabled);
    click(&box);
    EXPECT_EQ(sim.loginItem.status(), LoginItemStatus::notRegistered);
}

TEST_F(SettingsWindowTest, LaunchAtLoginThatFailsGoesBackAndSaysWhy) {
    sim.loginItem.needsApproval = true;
    shown();
    QCheckBox& box = *window().findChild<QCheckBox*>();
    click(&box);
    EXPECT_FALSE(box.isChecked());
    EXPECT_TRUE(
        shows("macOS is holding this back. Open System Settings → General → Login Items and "
              "allow Quorvel."));
}

TEST_F(SettingsWindowTest, RestoringDefaultsForgetsEverythingAtOnce) {
    settings.setAppBindings({{notes, "control,option,N", "false"}});
    settings.setPlacements({{notes, displayId(), "topLeft", "none"}});
    sim.defaults.setObject(Keys::hotZoneDwellMs, 900);
    shown();
    click(withName<QRadioButton>("Select Notes for removal"));
    click(button("Restore Defaults"));
    EXPECT_TRUE(settings.appBindings().empty());
    EXPECT_TRUE(settings.placements().empty());
    EXPECT_EQ(slider().value(), 300);
    EXPECT_EQ(host.reloads, 1);
    EXPECT_FALSE(withName<QToolButton>("Remove the selected app")->isEnabled());
    EXPECT_TRUE(host.alerts.empty());
}

TEST_F(SettingsWindowTest, AFreeSlotWithoutAppsAsksForTheAppFirst) {
    shown();
    chooseFree(Slot::side(Side::left));
    EXPECT_EQ(sheet(), nullptr);
    chooseFound("paint");
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{paint, "none", "false"}));
    EXPECT_NE(sheet(), nullptr);
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{paint, displayId(), "none", "left"}));
}

TEST_F(SettingsWindowTest, AFreeSlotOffersTheApps) {
    settings.setAppBindings({{paint, "none", "false"}, {notes, "none", "false"}});
    shown();
    chooseFree(Slot::corner(HotZoneCorner::topRight));
    QMenu* const menu = window().findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Paint"));
    EXPECT_EQ(menu->actions()[1]->text(), QStringLiteral("Notes"));
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    turn();
    EXPECT_THAT(settings.placements(),
                ElementsAre(Placement{notes, displayId(), "topRight", "none"}));
    EXPECT_NE(sheet(), nullptr);
}

TEST_F(SettingsWindowTest, WhatCannotBeSavedIsSaidAndNothingIsLost) {
    settings.setAppBindings({{notes, "control,option,N", "false"}});
    shown();
    sim.defaults.failsToSave = true;
    remove("Notes");
    EXPECT_TRUE(shows("The settings could not be saved"));
    EXPECT_EQ(settings.appBindings().size(), 1u);
    EXPECT_TRUE(shows("Notes, ⌃⌥N"));
    sim.defaults.failsToSave = false;
    remove("Notes");
    EXPECT_FALSE(shows("The settings could not be saved"));
    EXPECT_TRUE(settings.appBindings().empty());
}

TEST_F(SettingsWindowTest, RoomToSpareIsBelowTheColumnAndNotBetweenItsSections) {
    sim.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1920, 1080}),
                         SimulatedScreens::screen(2, {1920, 0, 1920, 1080})});
    shown().resize(680, 1600);
    turn();
    std::vector<QWidget*> cards;
    for (QWidget* each : window().findChildren<QWidget*>()) {
        if (dynamic_cast<DisplayCardView*>(each) != nullptr) cards.push_back(each);
    }
    ASSERT_EQ(cards.size(), 2u);
    std::sort(cards.begin(), cards.end(),
              [](const QWidget* a, const QWidget* b) { return a->y() < b->y(); });
    EXPECT_EQ(cards[0]->height(), cards[0]->sizeHint().height());
    EXPECT_EQ(cards[1]->y(), cards[0]->geometry().bottom() + 1 + 20);
}

TEST_F(SettingsWindowTest, ButtonsOfOneNameAreOfOneSize) {
    settings.setAppBindings({{notes, "none", "false"}});
    settings.setPlacements({{notes, displayId(), "topLeft", "none"}});
    shown();
    QPushButton* const inRoster = withName<QPushButton>("Edit Notes");
    QPushButton* const onCard = withName<QPushButton>("Edit Notes — Top left hot corner");
    ASSERT_TRUE(inRoster != nullptr && onCard != nullptr);
    EXPECT_EQ(inRoster->size(), onCard->size());
}

TEST_F(SettingsWindowTest, DrawingsFollowTheColoursOfTheDesktop) {
    const QPalette before = QApplication::palette();
    shown();
    const auto plus = [&] {
        return withName<QToolButton>("Add an app")->icon().pixmap(16, 16).toImage();
    };
    const QImage dark = plus();
    QPalette inverted = before;
    inverted.setColor(QPalette::Window, Qt::black);
    inverted.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(inverted);
    EXPECT_TRUE(QTest::qWaitFor([&] { return plus() != dark; }, 2000));
    QApplication::setPalette(before);
    EXPECT_TRUE(QTest::qWaitFor([&] { return plus() == dark; }, 2000));
}

TEST_F(SettingsWindowTest, TwoHundredProgramsAreRebuiltWithoutDelay) {
    std::vector<AppBinding> many;
    for (int i = 0; i < 200; ++i) {
        many.push_back({"/opt/" + std::to_string(i) + ".desktop", "none", "false"});
    }
    settings.setAppBindings(many);
    shown();
    EXPECT_EQ(window().findChildren<QRadioButton*>().size(), 200);
}

}  // namespace
}  // namespace quorvel
