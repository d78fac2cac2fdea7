#include <QFrame>
#include <QWheelEvent>

#include "tests/views/SettingsWindowFixture.hpp"

// What the controls of the settings window say, choose and leave alone.
namespace quorvel {
namespace {

using testing::ElementsAre;

class SettingsWindowActionsTest : public SettingsWindowTest {
protected:
    const std::string message =
        "Notes: add a shortcut, a corner or Auto to tuck it outside Settings";

    void storeOnlyAnEdge() {
        settings.setAppBindings({{notes, "none", "false"}});
        settings.setPlacements({{notes, displayId(), "none", "left"}});
    }
    void closeSheet() {
        ASSERT_NE(sheet(), nullptr);
        QTest::keyClick(sheet(), Qt::Key_Escape);
        turn();
    }
    int dividers() {
        int count = 0;
        for (const QFrame* each : window().findChildren<QFrame*>()) {
            if (each->frameShape() == QFrame::HLine && each->isVisibleTo(&window())) ++count;
        }
        return count;
    }
};

TEST_F(SettingsWindowActionsTest, EachShowBringsTheSameWindowToTheFront) {
    shown();
    shown();
    ASSERT_EQ(broughtToFront.size(), 2u);
    EXPECT_EQ(broughtToFront[0], window().winId());
    EXPECT_EQ(broughtToFront[1], window().winId());
}

TEST_F(SettingsWindowActionsTest, AddingAnAppReportsBelowADividerThatGoesWithTheReport) {
    settings.setPlacements({{notes, displayId(), "none", "left"}});
    shown();
    const int before = dividers();
    add("not");
    EXPECT_TRUE(shows(message));
    EXPECT_EQ(dividers(), before + 1);
    click(button("Restore Defaults"));
    EXPECT_EQ(dividers(), before);
}

TEST_F(SettingsWindowActionsTest, ClosingTheSheetReports) {
    storeOnlyAnEdge();
    shown();
    click(withName<QPushButton>("Edit Notes"));
    EXPECT_FALSE(shows(message));
    closeSheet();
    EXPECT_TRUE(shows(message));
}

TEST_F(SettingsWindowActionsTest, ForgettingADisplayDoesNotReport) {
    storeOnlyAnEdge();
    settings.setPlacements(
        {{notes, displayId(), "none", "left"}, {notes, "GONE", "topLeft", "none"}});
    host.answer = [](const Alert&) { return 0; };
    shown();
    click(button("Forget This Display…"));
    EXPECT_EQ(settings.placements().size(), 1u);
    EXPECT_FALSE(shows(message));
}

TEST_F(SettingsWindowActionsTest, LaunchAtLoginReports) {
    storeOnlyAnEdge();
    shown();
    click(window().findChild<QCheckBox*>());
    EXPECT_TRUE(shows(message));
}

TEST_F(SettingsWindowActionsTest, EditInTheListIsForItsAppOnEveryDisplay) {
    settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
    shown();
    click(withName<QPushButton>("Edit Paint"));
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->windowTitle(), QStringLiteral("Paint"));
    EXPECT_EQ(sheet()->findChild<QWidget*>("edgeState"), nullptr);
    closeSheet();
}

TEST_F(SettingsWindowActionsTest, OnlyOneRowIsSelectedAndAClickOnItKeepsIt) {
    settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
    shown();
    auto* const first = withName<QRadioButton>("Select Notes for removal");
    auto* const second = withName<QRadioButton>("Select Paint for removal");
    click(first);
    click(second);
    EXPECT_FALSE(first->isChecked());
    EXPECT_TRUE(second->isChecked());
    click(second);
    EXPECT_TRUE(second->isChecked());
    click(withName<QToolButton>("Remove the selected app"));
    EXPECT_THAT(settings.appBindings(), ElementsAre(AppBinding{notes, "none", "false"}));
}

TEST_F(SettingsWindowActionsTest, ASelectionThatIsOutOfTheListIsForgotten) {
    settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
    shown();
    click(withName<QRadioButton>("Select Paint for removal"));
    settings.setAppBindings({{notes, "none", "false"}});
    shown();
    EXPECT_FALSE(withName<QToolButton>("Remove the selected app")->isEnabled());
    settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
    shown();
    EXPECT_FALSE(withName<QRadioButton>("Select Paint for removal")->isChecked());
}

TEST_F(SettingsWindowActionsTest, AnAppWhoseShortcutCannotBeUsedIsListedButOnNoCard) {
    settings.setAppBindings({{notes, "nonsense", "false"}});
    settings.setPlacements({{notes, displayId(), "none", "left"}});
    shown();
    EXPECT_NE(withName<QPushButton>("Edit Notes"), nullptr);
    EXPECT_EQ(withName<QPushButton>("Edit Notes — left tuck"), nullptr);
}

TEST_F(SettingsWindowActionsTest, NamesInTheMenuHaveNoKeysOfTheirOwn) {
    sim.install(paint, "Cut & <b>Paste</b>");
    settings.setAppBindings({{paint, "none", "false"}});
    shown();
    chooseFree(topLeftCorner);
    QMenu* const menu = window().findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Cut && <b>Paste</b>"));
    menu->close();
}

TEST_F(SettingsWindowActionsTest, OtherButtonsAndTheWheelLeaveTheSliderAlone) {
    shown();
    const int writes = sim.defaults.writeCount;
    const QPoint middle = slider().rect().center();
    QTest::mouseClick(&slider(), Qt::RightButton, {}, middle);
    QWheelEvent wheel(middle, slider().mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&slider(), &wheel);
    turn();
    EXPECT_EQ(slider().value(), 300);
    EXPECT_EQ(sim.defaults.writeCount, writes);
}

}  // namespace
}  // namespace quorvel
