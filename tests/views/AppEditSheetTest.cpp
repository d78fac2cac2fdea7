#include "main/interface/AppEditSheet.hpp"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QPointer>

#include "main/interface/AppNames.hpp"
#include "tests/views/AppEditSheetFixture.hpp"

namespace quorvel {
namespace {

using testing::ElementsAre;

// How it looks -----------------------------------------------------------------------------------

TEST_F(AppEditSheetTest, HasAllRowsForADisplay) {
    open(display);
    EXPECT_EQ(sheet->width(), 440);
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    for (const char* text : {"Shortcut", "Click, then press the keys you want.",
                             "Works on every display.", "Hot corner", "Tuck edge"}) {
        EXPECT_TRUE(showsText(text)) << text;
    }
    EXPECT_EQ(cornerOff().text(), QStringLiteral("Off"));
    EXPECT_EQ(autoTuck().text(), QStringLiteral("Auto-tuck"));
    EXPECT_EQ(autoTuck().toolTip(),
              QStringLiteral("Keep the window tucked whenever the app is not active"));
    EXPECT_TRUE(button("Done")->isDefault());
    EXPECT_LT(button("Cancel")->x(), button("Done")->x());
}

TEST_F(AppEditSheetTest, HasNeitherCornerNorEdgeWithoutADisplay) {
    open("");
    EXPECT_TRUE(showsText("Shortcut"));
    EXPECT_FALSE(showsText("Hot corner"));
    EXPECT_FALSE(showsText("Tuck edge"));
    EXPECT_TRUE(sheet->findChildren<QRadioButton*>().isEmpty());
    EXPECT_EQ(sheet->findChild<QWidget*>("edgeState"), nullptr);
    EXPECT_NE(sheet->findChild<QWidget*>("autoTuckCheckbox"), nullptr);
}

TEST_F(AppEditSheetTest, TheCornerButtonsStandWhereTheCornersAre) {
    open(display);
    const auto at = [&](const char* name) { return corner(name)->geometry().center(); };
    EXPECT_LT(at("topLeft").x(), at("topRight").x());
    EXPECT_EQ(at("topLeft").y(), at("topRight").y());
    EXPECT_LT(at("topLeft").y(), at("bottomLeft").y());
    EXPECT_EQ(at("topLeft").x(), at("bottomLeft").x());
    EXPECT_EQ(at("bottomRight").x(), at("topRight").x());
    EXPECT_TRUE(corner("topLeft")->text().isEmpty());
}

TEST_F(AppEditSheetTest, TheTitleNamesTheApplicationAndTheDisplay) {
    open(display);
    EXPECT_EQ(titleText(), "Text <b>Editor</b> on " + displayName);
    open("");
    EXPECT_EQ(titleText(), "Text <b>Editor</b>");
    open("ABSENT");
    EXPECT_EQ(titleText(), "Text <b>Editor</b>");
    settings.setKnownDisplays({{"ABSENT", "Beamer"}});
    open(" ABSENT ");
    EXPECT_EQ(titleText(), "Text <b>Editor</b> on Beamer");
}

TEST(AppNameTest, IsTheCatalogsForEntriesAndTheLastComponentWithoutAppElse) {
    SimulatedDesktop desktop;
    desktop.install(editor, "Editor");
    desktop.install("/opt/run.sh", "Never shown");
    EXPECT_EQ(appName(desktop.catalog, editor), "Editor");
    EXPECT_EQ(appName(desktop.catalog, "/a/gone.desktop"), "gone");
    EXPECT_EQ(appName(desktop.catalog, "/opt/Mail.app"), "Mail");
    EXPECT_EQ(appName(desktop.catalog, "/opt/Mail.app.apple/"), "Maille");
    EXPECT_EQ(appName(desktop.catalog, "/opt/run.sh"), "run.sh");
}

TEST_F(AppEditSheetTest, EveryControlHasANameForAssistiveTechnology) {
    open(display);
    for (QAbstractButton* each : sheet->findChildren<QAbstractButton*>()) {
        const auto* accessible = QAccessible::queryAccessibleInterface(each);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty());
    }
    EXPECT_NE(corner("bottomRight"), nullptr);
}

// Arriving ---------------------------------------------------------------------------------------

TEST_F(AppEditSheetTest, AFreeSideIsClaimedAndShown) {
    open(display, Arrival::assign(Slot::side(Side::left)));
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, display, "none", "left"}));
    EXPECT_EQ(edges().selectedIndex(), 1);
    EXPECT_EQ(halves().selectedIndex(), 0);
    EXPECT_TRUE(halves().isEnabled());
    EXPECT_TRUE(cornerOff().isChecked());
}

TEST_F(AppEditSheetTest, EachSlotIsClaimedInItsOwnSpelling) {
    const std::pair<Slot, Placement> cases[] = {
        {Slot::corner(HotZoneCorner::topLeft), {editor, display, "topLeft", "none"}},
        {Slot::corner(HotZoneCorner::topRight), {editor, display, "topRight", "none"}},
        {Slot::corner(HotZoneCorner::bottomLeft), {editor, display, "bottomLeft", "none"}},
        {Slot::corner(HotZoneCorner::bottomRight), {editor, display, "bottomRight", "none"}},
        {Slot::side(Side::right), {editor, display, "none", "right"}},
        {Slot::side(Side::bottom), {editor, display, "none", "bottom"}},
        {Slot::bottomHide(), {editor, display, "none", "bottom"}}};
    for (const auto& [slot, expected] : cases) {
        settings.setPlacements({});
        open(display, Arrival::assign(slot));
        EXPECT_THAT(settings.placements(), ElementsAre(expected));
    }
}

TEST_F(AppEditSheetTest, ClaimingKeepsTheRestOfThePlacementAndAllOthers) {
    const Placement otherDisplay{editor, "OTHER", "topLeft", "right"};
    const Placement otherApp{mail, display, "topLeft", "left"};
    settings.setPlacements({otherDisplay, otherApp, {editor, display, "topRight", "left"}});
    open(display, Arrival::assign(Slot::bottomHide()));
    EXPECT_THAT(
        settings.placements(),
        ElementsAre(otherDisplay, otherApp, Placement{editor, display, "topRight", "bottom"}));
}

TEST_F(AppEditSheetTest, EditingStoresNothingByItself) {
    open(display, Arrival::edit(Slot::side(Side::left)));
    open("", Arrival::assign(Slot::side(Side::left)));
    EXPECT_EQ(writes(), 0);
}

// The end ----------------------------------------------------------------------------------------

TEST_F(AppEditSheetTest, CancelKeepsTheChanges) {
    open(display);
    choose(edges(), "Left");
    button("Cancel")->click();
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_EQ(doneCount, 1);
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, display, "none", "left"}));
}

TEST_F(AppEditSheetTest, EveryWayToCloseItIsTheSameAndCountsOnce) {
    const std::function<void()> ways[] = {
        [&] { button("Done")->click(); },
        [&] { QTest::keyClick(sheet->windowHandle(), Qt::Key_Return); },
        [&] { QTest::keyClick(sheet->windowHandle(), Qt::Key_Escape); }, [&] { sheet->close(); },
        [&] { sheet->reject(); }};
    for (const auto& way : ways) {
        doneCount = 0;
        open(display);
        way();
        EXPECT_FALSE(sheet->isVisible());
        EXPECT_EQ(doneCount, 1);
        sheet->reject();
        sheet.reset();
        EXPECT_EQ(doneCount, 1);
    }
}

TEST_F(AppEditSheetTest, ASheetThatIsDeletedOnceItIsClosedTouchesNothingAnymore) {
    QPointer<AppEditSheet> closed = &open(display);
    closed->setAttribute(Qt::WA_DeleteOnClose);
    sheet.release();
    closed->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(closed.isNull());
    EXPECT_EQ(doneCount, 1);
}

TEST_F(AppEditSheetTest, ClosingItWhileItRecordsLetsTheKeyboardGo) {
    open(display);
    QTest::mouseClick(&recorder(), Qt::LeftButton);
    ASSERT_NE(QWidget::keyboardGrabber(), nullptr);
    sheet->close();
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    open(display);
    QTest::mouseClick(&recorder(), Qt::LeftButton);
    sheet.reset();
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    EXPECT_EQ(doneCount, 1);
}

// By keyboard, and with what is out of the ordinary
// ------------------------------------------------

TEST_F(AppEditSheetTest, ArrowKeysChooseCornersAndEdges) {
    open(display);
    cornerOff().setFocus();
    QTest::keyClick(&cornerOff(), Qt::Key_Right);
    ASSERT_EQ(settings.placements().size(), 1U);
    EXPECT_NE(settings.placements().front().corner, "none");
    auto* const off = edges().findChildren<QPushButton*>().front();
    off->setFocus();
    QTest::keyClick(off, Qt::Key_Right);
    EXPECT_EQ(settings.placements().front().tuckEdge, "left");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(settings.placements().front().tuckEdge, "right");
}

TEST_F(AppEditSheetTest, TabReachesEveryControlAsItIsRead) {
    settings.setPlacements({{editor, display, "topLeft", "left"}});
    open(display);
    const std::vector<QWidget*> wanted{button("Done"),
                                       &recorder(),
                                       corner("topLeft"),
                                       edges().findChildren<QPushButton*>()[1],
                                       halves().findChildren<QPushButton*>()[0],
                                       &autoTuck(),
                                       &tuckNow(),
                                       button("Cancel"),
                                       button("Done")};
    std::vector<QWidget*> reached;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        reached.push_back(QApplication::focusWidget());
        QTest::keyClick(sheet->windowHandle(), Qt::Key_Tab);
    }
    EXPECT_EQ(reached, wanted);
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(AppEditSheetTest, AnUninstalledApplicationIsStillEdited) {
    open(display);
    const auto saysSo = [&] {
        for (const QLabel* label : sheet->findChildren<QLabel*>()) {
            if (label->accessibleName() == QStringLiteral("Application not found")) return true;
        }
        return false;
    };
    EXPECT_FALSE(saysSo());
    const QRect icon(20, 20, 28, 28);
    const QImage before = sheet->grab(icon).toImage();
    desktop.files.remove(editor);
    desktop.catalog.remove(editor);
    choose(edges(), "Left");
    EXPECT_EQ(settings.placements().size(), 1U);
    EXPECT_NE(sheet->grab(icon).toImage(), before);
    EXPECT_TRUE(saysSo());
}

TEST_F(AppEditSheetTest, LongNamesWidenNothingAndMessagesTakeTwoLinesAtMost) {
    const std::string path = "/opt/" + std::string(300, 'w');
    settings.setAppBindings({{path, "none"}});
    settings.setPlacements({{path, display, "none", "left"}});
    open(display, Arrival::edit(), path);
    const int height = sheet->height();
    tuckNow().click();
    QTest::qWait(0);
    EXPECT_EQ(status(), std::string(300, 'w') + " is not running.");
    EXPECT_EQ(sheet->width(), 440);
    const int line = find<QLabel>("status")->fontMetrics().lineSpacing();
    EXPECT_EQ(find<QLabel>("status")->height(), 2 * line);
    EXPECT_EQ(sheet->height(), height + line);
}

TEST_F(AppEditSheetTest, EveryTextIsInsideAndNoneCoversAnother) {
    open(display);
    QTest::qWait(0);
    QRegion taken;
    for (const QLabel* label : sheet->findChildren<QLabel*>()) {
        const QRect at(label->mapTo(sheet.get(), QPoint()), label->size());
        EXPECT_GE(at.width(), label->text().isEmpty() ? 0 : 20) << label->text().toStdString();
        EXPECT_GE(at.height(), label->text().isEmpty() ? 0 : 10) << label->text().toStdString();
        EXPECT_TRUE(sheet->rect().contains(at)) << label->text().toStdString();
        EXPECT_FALSE(taken.intersects(at)) << label->text().toStdString();
        taken += at;
    }
}

TEST_F(AppEditSheetTest, EveryTextIsPlain) {
    open(display);
    for (const QLabel* label : sheet->findChildren<QLabel*>()) {
        if (label->text().isEmpty()) continue;
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }
}

}  // namespace
}  // namespace quorvel
