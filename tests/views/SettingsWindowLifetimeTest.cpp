#include "tests/views/SettingsWindowFixture.hpp"

// What comes and goes under the settings window, and the window itself.
namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SettingsWindowLifetimeTest : public SettingsWindowTest {
protected:
    void store() {
        settings.setAppBindings({{notes, "none", "false"}});
        settings.setPlacements({{notes, displayId(), "none", "left"}});
    }
    void openSheet() {
        shown();
        click(withName<QPushButton>("Edit Notes — left tuck"));
        ASSERT_NE(sheet(), nullptr);
    }
    void closeSheet() {
        QTest::keyClick(sheet(), Qt::Key_Escape);
        turn();
    }
};

TEST_F(SettingsWindowLifetimeTest, ItsEndTakesAlongWhatIsOpen) {
    store();
    openSheet();
    QTest::mouseClick(sheet()->findChild<QWidget*>("recorder"), Qt::LeftButton);
    ASSERT_NE(QWidget::keyboardGrabber(), nullptr);
    owned.reset();
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    EXPECT_EQ(host.reloads, 0);
}

TEST_F(SettingsWindowLifetimeTest, ItsEndTakesAnOpenMenuAlong) {
    store();
    shown();
    chooseFree(topLeftCorner);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    owned.reset();
    turn();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(SettingsWindowLifetimeTest, ItsEndTakesAnOpenChooserAlong) {
    shown();
    chooseFree(topLeftCorner);
    ASSERT_NE(chooser(), nullptr);
    owned.reset();
    turn();
    EXPECT_THAT(settings.appBindings(), IsEmpty());
}

TEST_F(SettingsWindowLifetimeTest, AMenuThatIsPutAwayChoosesNothingAndIsDeleted) {
    store();
    shown();
    chooseFree(topLeftCorner);
    QTest::keyClick(window().findChild<QMenu*>(), Qt::Key_Escape);
    turn();
    EXPECT_EQ(window().findChild<QMenu*>(), nullptr);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(settings.placements().size(), 1u);
}

TEST_F(SettingsWindowLifetimeTest, ShowingItAgainLeavesTheOpenSheetAlone) {
    store();
    openSheet();
    AppEditSheet* const before = sheet();
    EXPECT_EQ(&shown(), &window());
    EXPECT_EQ(sheet(), before);
    EXPECT_TRUE(before->isVisible());
    closeSheet();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(host.reloads, 1);
}

TEST_F(SettingsWindowLifetimeTest, ADisplayThatIsUnpluggedUnderItsSheetIsEditedToTheEnd) {
    store();
    const std::string ref = displayId();
    openSheet();
    sim.screens.arrange({});
    for (QRadioButton* each : sheet()->findChildren<QRadioButton*>()) {
        if (each->accessibleName() == QStringLiteral("topRight corner")) each->click();
    }
    closeSheet();
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{notes, ref, "topRight", "left"}));
    EXPECT_TRUE(shows("Not connected"));
}

TEST_F(SettingsWindowLifetimeTest, AnAppThatIsRemovedUnderItsSheetComesBackByNothing) {
    store();
    openSheet();
    settings.setAppBindings({});
    for (QAbstractButton* each : sheet()->findChildren<QAbstractButton*>()) {
        if (each->text() == QStringLiteral("Auto-tuck")) each->click();
    }
    closeSheet();
    EXPECT_THAT(settings.appBindings(), IsEmpty());
    EXPECT_TRUE(shows("No apps yet. Add one, then click a corner or edge on a display below."));
}

TEST_F(SettingsWindowLifetimeTest, TheQuestionMayOutliveTheCardThatAsksIt) {
    store();
    settings.setPlacements({{notes, "GONE", "topLeft", "none"}});
    shown();
    host.answer = [this](const Alert&) {
        shown();
        return 0;
    };
    click(button("Forget This Display…"));
    EXPECT_THAT(settings.placements(), IsEmpty());
    EXPECT_FALSE(shows("GONE"));
}

TEST_F(SettingsWindowLifetimeTest, ClosingItKeepsItAndItsSelection) {
    store();
    shown();
    click(withName<QRadioButton>("Select Notes for removal"));
    window().close();
    turn();
    EXPECT_FALSE(window().isVisible());
    shown();
    EXPECT_TRUE(withName<QRadioButton>("Select Notes for removal")->isChecked());
}

}  // namespace
}  // namespace quorvel
