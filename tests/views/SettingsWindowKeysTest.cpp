#include <QScrollArea>
#include <QScrollBar>

#include "tests/views/SettingsWindowFixture.hpp"

// The settings window by keyboard, and where its parts stand.
namespace quorvel {
namespace {

class SettingsWindowKeysTest : public SettingsWindowTest {
protected:
    SettingsWindowKeysTest() {
        settings.setAppBindings({{notes, "none", "false"}, {paint, "none", "false"}});
        settings.setPlacements({{notes, displayId(), "none", "left"}});
        shown();
        window().activateWindow();
        if (!QTest::qWaitForWindowActive(&window())) ADD_FAILURE() << "the window is not active";
    }

    static std::string nameOf(const QWidget* widget) {
        if (widget == nullptr) return "nothing";
        if (!widget->accessibleName().isEmpty()) return widget->accessibleName().toStdString();
        const auto* const button = dynamic_cast<const QAbstractButton*>(widget);
        return button == nullptr ? "no name" : button->text().toStdString();
    }
    std::string focused() { return nameOf(window().focusWidget()); }
    /// Goes once around.
    std::vector<std::string> tabbedThrough(QWidget* first) {
        std::vector<std::string> result;
        first->setFocus();
        do {
            result.push_back(focused());
            QTest::keyClick(window().windowHandle(), Qt::Key_Tab);
        } while (window().focusWidget() != first && result.size() < 50);
        return result;
    }
    ScreenDiagramView& picture() { return *only<ScreenDiagramView>(); }
};

TEST_F(SettingsWindowKeysTest, TabGoesThroughItAsItIsRead) {
    const std::string display = Displays::attached(sim.screens).front().name;
    const std::vector<std::string> wanted{"Select Notes for removal",
                                          "Edit Notes",
                                          "Edit Paint",
                                          "Add an app",
                                          "Remove the selected app",
                                          display,
                                          "Edit Notes — left tuck",
                                          "Corner dwell",
                                          "Animation",
                                          "Launch at login",
                                          "Restore Defaults"};
    click(withName<QRadioButton>("Select Notes for removal"));
    EXPECT_EQ(tabbedThrough(withName<QRadioButton>("Select Notes for removal")), wanted);
    shown();
    EXPECT_EQ(tabbedThrough(withName<QRadioButton>("Select Notes for removal")), wanted)
        << "rebuilt";
}

TEST_F(SettingsWindowKeysTest, TheKeyboardIsWhereItWasWhenTheSheetIsClosed) {
    const char* const names[] = {"Edit Paint", "Edit Notes — left tuck"};
    for (const char* name : names) {
        withName<QPushButton>(name)->setFocus();
        QTest::keyClick(window().focusWidget(), Qt::Key_Space);
        turn();
        ASSERT_NE(sheet(), nullptr);
        QTest::keyClick(sheet(), Qt::Key_Escape);
        turn();
        EXPECT_EQ(focused(), name);
    }
}

TEST_F(SettingsWindowKeysTest, TheKeyboardStaysAtItsPlaceOfThePicture) {
    picture().setFocus(Qt::TabFocusReason);
    const auto place = [this] {
        const auto index = picture().focusedTarget();
        return index ? picture().nameOf(picture().targets()[*index]).toStdString() : "none";
    };
    QTest::keyClick(&picture(), Qt::Key_Down);
    ASSERT_EQ(place(), "Left side, Notes");
    QTest::keyClick(&picture(), Qt::Key_Space);
    turn();
    ASSERT_NE(sheet(), nullptr);
    for (QPushButton* each : sheet()->findChildren<QPushButton*>()) {
        if (each->text() == QStringLiteral("Off")) each->click();
    }
    QTest::keyClick(sheet(), Qt::Key_Escape);
    turn();
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    EXPECT_EQ(place(), "Left side, free");
}

TEST_F(SettingsWindowKeysTest, ARemovalLeavesTheKeyboardBesideItsButton) {
    click(withName<QRadioButton>("Select Notes for removal"));
    withName<QToolButton>("Remove the selected app")->setFocus();
    QTest::keyClick(window().focusWidget(), Qt::Key_Space);
    turn();
    EXPECT_EQ(settings.appBindings().size(), 1u);
    EXPECT_EQ(focused(), "Add an app");
}

TEST_F(SettingsWindowKeysTest, ARebuildScrollsNothing) {
    std::vector<AppBinding> many;
    for (int i = 0; i < 60; ++i) {
        many.push_back({"/opt/" + std::to_string(i) + ".desktop", "none", "false"});
    }
    settings.setAppBindings(many);
    shown();
    QTest::qWait(0);
    QScrollArea& scroll = *window().findChild<QScrollArea*>();
    withName<QPushButton>("Edit 40")->setFocus();
    scroll.ensureWidgetVisible(withName<QPushButton>("Edit 40"));
    const int before = scroll.verticalScrollBar()->value();
    ASSERT_GT(before, 0);
    shown();
    QTest::qWait(0);
    EXPECT_EQ(scroll.verticalScrollBar()->value(), before);
    EXPECT_EQ(focused(), "Edit 40");
}

TEST_F(SettingsWindowKeysTest, TheStatusLineIsCloseBelowItsDivider) {
    QTest::keyClick(&animation(), Qt::Key_End);
    turn();
    const QLabel* status = nullptr;
    for (const QLabel* each : window().findChildren<QLabel*>()) {
        if (each->text().startsWith(QStringLiteral("Notes: "))) status = each;
    }
    ASSERT_NE(status, nullptr);
    const QWidget* divider = nullptr;
    for (QWidget* each : status->parentWidget()->findChildren<QFrame*>()) {
        if (each->parentWidget() == status->parentWidget() && each != status) divider = each;
    }
    ASSERT_NE(divider, nullptr);
    EXPECT_EQ(status->y() - divider->geometry().bottom() - 1, 8);
    EXPECT_EQ(status->x(), 18);
    EXPECT_EQ(status->width(), status->parentWidget()->width() - 36);
    EXPECT_EQ(divider->width(), status->width());
}

}  // namespace
}  // namespace quorvel
