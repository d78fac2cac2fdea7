#include "main/interface/DisplayCardView.hpp"

#include <QAccessible>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include "tests/views/DiagramFixture.hpp"

namespace quorvel {
namespace {

class DisplayCardViewTest : public testing::Test {
protected:
    DisplayCardView& show(DisplayCard card) {
        view = std::make_unique<DisplayCardView>(
            std::move(card), [](const std::string&) { return QIcon(); },
            [this](const std::string& path) { return names.contains(path) ? names[path] : path; },
            [this](const Assignment& row) { edited.push_back(row); },
            [this](const std::string& ref) { forgotten.push_back(ref); },
            [this](const std::string& ref, const Slot& slot) {
                assignments.emplace_back(ref, slot);
            });
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        picture()->clearFocus();
        return *view;
    }

    std::vector<std::string> labels() const {
        std::vector<std::string> result;
        for (const QLabel* label : view->findChildren<QLabel*>()) {
            if (!label->text().isEmpty()) result.push_back(label->text().toStdString());
        }
        return result;
    }
    bool hasLabel(const std::string& text) const {
        const auto all = labels();
        return std::find(all.begin(), all.end(), text) != all.end();
    }
    QLabel* labelOf(const QString& text) const {
        for (QLabel* label : view->findChildren<QLabel*>()) {
            if (label->text() == text) return label;
        }
        return nullptr;
    }
    std::vector<QPushButton*> buttons(const char* title) const {
        std::vector<QPushButton*> result;
        for (QPushButton* button : view->findChildren<QPushButton*>()) {
            if (button->text() == QString::fromUtf8(title)) result.push_back(button);
        }
        return result;
    }
    ScreenDiagramView* picture() const {
        for (QWidget* widget : view->findChildren<QWidget*>()) {
            if (auto* const diagram = dynamic_cast<ScreenDiagramView*>(widget)) return diagram;
        }
        return nullptr;
    }

    std::map<std::string, std::string> names{{"/firefox", "Firefox"}};
    std::vector<Assignment> edited;
    std::vector<std::string> forgotten;
    std::vector<std::pair<std::string, Slot>> assignments;
    std::unique_ptr<DisplayCardView> view;
};

DisplayCard absent(std::vector<Assignment> rows) {
    DisplayCard card = cardWith(std::move(rows));
    card.isAttached = false;
    card.aspect = std::nullopt;
    return card;
}

TEST_F(DisplayCardViewTest, AnAttachedDisplayIsItsNameItsPictureAndItsRows) {
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    EXPECT_EQ(labels(),
              (std::vector<std::string>{"Built-in Display", "Firefox — Top left hot corner"}));
    EXPECT_TRUE(buttons("Forget This Display…").empty());
    EXPECT_EQ(view->graphicsEffect(), nullptr);
    ASSERT_NE(picture(), nullptr);
    EXPECT_EQ(picture()->card(), view->card);
    EXPECT_EQ(picture()->size(), QSize(180, 110)) << "176 × 1600 / 2560";
}

TEST_F(DisplayCardViewTest, ADisplayThatIsNotConnectedSaysSoCanBeForgottenAndIsPale) {
    show(absent({assigned("/firefox", topLeftCorner)}));
    EXPECT_TRUE(hasLabel("Not connected"));
    const auto* const effect = dynamic_cast<QGraphicsOpacityEffect*>(view->graphicsEffect());
    ASSERT_NE(effect, nullptr);
    EXPECT_DOUBLE_EQ(effect->opacity(), 0.62);
    EXPECT_EQ(picture()->size(), QSize(180, 110));
    ASSERT_EQ(buttons("Forget This Display…").size(), 1U);
    buttons("Forget This Display…")[0]->click();
    EXPECT_EQ(forgotten, std::vector<std::string>{"display-1"});
}

TEST_F(DisplayCardViewTest, APaleCardIsDrawnPaleAndTakesTheKeyboardAsAnyOther) {
    show(absent({}));
    const QPoint corner = picture()->mapTo(view.get(), QPoint(35, 19));
    const QRgb idle = view->grab().toImage().pixel(corner);
    picture()->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(picture()->hasFocus());
    const QRgb focused = view->grab().toImage().pixel(corner);
    EXPECT_NE(idle, focused);
    EXPECT_NE(focused, view->palette().color(QPalette::Highlight).rgb());
    QTest::keyClick(picture(), Qt::Key_Space);
    EXPECT_EQ(assignments.size(), 1U);
    QTest::keyClick(picture(), Qt::Key_Tab);
    EXPECT_TRUE(buttons("Forget This Display…")[0]->hasFocus());
}

TEST_F(DisplayCardViewTest, WithoutRowsItSaysWhatToDo) {
    show(cardWith({}));
    EXPECT_TRUE(
        hasLabel("Nothing here yet. Click a corner or edge on the picture to assign an app."));
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    EXPECT_FALSE(
        hasLabel("Nothing here yet. Click a corner or edge on the picture to assign an app."));
}

TEST_F(DisplayCardViewTest, EveryPlaceHasItsWords) {
    const std::vector<std::pair<Assignment, std::string>> cases{
        {assigned("/firefox", bottomLeftCorner), "Bottom left hot corner"},
        {assigned("/firefox", bottomRightCorner), "Bottom right hot corner"},
        {assigned("/firefox", topLeftCorner), "Top left hot corner"},
        {assigned("/firefox", topRightCorner), "Top right hot corner"},
        {assigned("/firefox", leftSide, TuckEdge::left), "left tuck"},
        {assigned("/firefox", rightSide, TuckEdge::right), "right tuck"},
        {assigned("/firefox", Slot::side(Side::bottom), TuckEdge::bottom), "bottom tuck"},
        {assigned("/firefox", leftSide, TuckEdge::topLeft), "top-left tuck"},
        {assigned("/firefox", leftSide, TuckEdge::bottomLeft), "bottom-left tuck"},
        {assigned("/firefox", rightSide, TuckEdge::topRight), "top-right tuck"},
        {assigned("/firefox", rightSide, TuckEdge::bottomRight), "bottom-right tuck"},
        {assigned("/firefox", Slot::bottomHide(), TuckEdge::bottom), "hides"},
    };
    for (const auto& [row, words] : cases) {
        show(cardWith({row}));
        EXPECT_TRUE(hasLabel("Firefox — " + words)) << words;
    }
}

TEST_F(DisplayCardViewTest, EachEditButtonEditsItsRow) {
    const std::vector<Assignment> rows{assigned("/firefox", topLeftCorner),
                                       assigned("/editor", leftSide, TuckEdge::left)};
    show(cardWith(rows));
    const auto edits = buttons("Edit");
    ASSERT_EQ(edits.size(), 2U);
    EXPECT_EQ(edits[1]->accessibleName(), QStringLiteral("Edit /editor — left tuck"));
    edits[1]->click();
    edits[0]->click();
    EXPECT_EQ(edited, (std::vector<Assignment>{rows[1], rows[0]}));
}

TEST_F(DisplayCardViewTest, ARowThatThereIsNotIsNotEdited) {
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    view->editTapped(1);
    view->editTapped(-1);
    EXPECT_TRUE(edited.empty());
}

TEST_F(DisplayCardViewTest, ThePictureEditsWhatIsTakenAndAssignsWhatIsFree) {
    const Assignment row = assigned("/firefox", topLeftCorner);
    show(cardWith({row}));
    QTest::mouseClick(picture(), Qt::LeftButton, {}, QPoint(19, 19));
    EXPECT_EQ(edited, std::vector<Assignment>{row});
    QTest::mouseClick(picture(), Qt::LeftButton, {}, QPoint(19, 91));
    ASSERT_EQ(assignments.size(), 1U);
    EXPECT_EQ(assignments[0], std::pair(std::string("display-1"), bottomLeftCorner));
    EXPECT_EQ(edited.size(), 1U);
}

TEST_F(DisplayCardViewTest, AWarningIsASignWithTheWarningAsItsToolTip) {
    const std::string warning = "Top left is claimed by <b>two</b> apps";
    show(cardWith({assigned("/firefox", topLeftCorner, std::nullopt, warning),
                   assigned("/editor", topRightCorner)}));
    std::vector<QLabel*> signs;
    for (QLabel* label : view->findChildren<QLabel*>()) {
        if (!label->pixmap().isNull()) signs.push_back(label);
    }
    ASSERT_EQ(signs.size(), 1U);
    EXPECT_EQ(signs[0]->toolTip().toStdString(), warning);
    const QAccessibleInterface& sign = *QAccessible::queryAccessibleInterface(signs[0]);
    EXPECT_EQ(sign.text(QAccessible::Description).toStdString(), warning);
    EXPECT_EQ(sign.text(QAccessible::Name), QStringLiteral("Warning"));
    EXPECT_EQ(sign.role(), QAccessible::Graphic);
    EXPECT_EQ(signs[0]->grab().toImage().pixel(4, 10),
              Style::colour(Style::Colour::red, view->palette()).rgb());
    EXPECT_EQ(buttons("Edit")[0]->accessibleDescription().toStdString(), warning);
    EXPECT_TRUE(buttons("Edit")[1]->accessibleDescription().isEmpty());
}

TEST_F(DisplayCardViewTest, VeryLongNamesAreCutShortAndShownInFullAsToolTips) {
    const std::string longName(300, 'w');
    names["/firefox"] = longName;
    DisplayCard card = absent({assigned("/firefox", bottomRightCorner, std::nullopt, longName)});
    card.name = longName;
    show(card);
    EXPECT_LE(view->minimumSizeHint().width(), 560);
    view->resize(560, view->height());
    QTest::qWait(0);
    EXPECT_EQ(view->width(), 560);
    const QString full =
        QString::fromStdString(longName) + QStringLiteral(" — Bottom right hot corner");
    const QLabel* const row = labelOf(full);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->toolTip(), full);
    const QLabel* const heading = labelOf(QString::fromStdString(longName));
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(heading->toolTip(), QString::fromStdString(longName));
    for (const QPushButton* button : view->findChildren<QPushButton*>()) {
        EXPECT_LE(button->mapTo(view.get(), QPoint(button->width(), 0)).x(), 560);
    }
}

TEST_F(DisplayCardViewTest, ANarrowCardStillHasRoomForItsButtons) {
    show(cardWith({assigned("/firefox", bottomRightCorner, std::nullopt, "Clash")}));
    view->resize(340, view->height());
    QTest::qWait(0);
    ASSERT_EQ(view->width(), 340);
    const QPushButton* const edit = buttons("Edit")[0];
    EXPECT_LE(edit->mapTo(view.get(), QPoint(edit->width(), 0)).x(), 340);
    const QString full = QStringLiteral("Firefox — Bottom right hot corner");
    EXPECT_EQ(labelOf(full)->toolTip(), full);
}

TEST_F(DisplayCardViewTest, NamesThatFitHaveNoToolTip) {
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    EXPECT_TRUE(labelOf(QStringLiteral("Firefox — Top left hot corner"))->toolTip().isEmpty());
}

TEST_F(DisplayCardViewTest, StrangeNamesKeepEveryRowOneLineTall) {
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    const int usual = view->minimumSizeHint().height();
    for (const char* name : {"متصفح الويب", "דפדפן 2", "🦊👩‍👩‍👧‍👦",
                             "a\nb\nc\u2028d", "", "<h1>x</h1>", "\u202Eabc", "\xFF\xFE"}) {
        names["/firefox"] = name;
        DisplayCard card = cardWith({assigned("/firefox", topLeftCorner)});
        card.name = name;
        show(card);
        EXPECT_LE(view->minimumSizeHint().height(), usual) << name;
        EXPECT_FALSE(view->grab().isNull());
    }
}

TEST_F(DisplayCardViewTest, ThePictureHasTheShapeOfTheDisplay) {
    const std::vector<std::pair<std::optional<Size>, int>> cases{
        {Size{1920, 1080}, 99},  {Size{5120, 1440}, 50},
        {Size{1080, 1920}, 313}, {std::nullopt, 110},
        {Size{0, 0}, 110},       {Size{0, 1080}, 110},
        {Size{1920, 0}, 110},    {Size{1920, std::numeric_limits<double>::quiet_NaN()}, 110},
    };
    for (const auto& [aspect, height] : cases) {
        DisplayCard card = cardWith({});
        card.aspect = aspect;
        show(card);
        EXPECT_EQ(picture()->size(), QSize(180, height));
        EXPECT_EQ(picture()->mapTo(view.get(), QPoint(0, 0)).x(), 0);
    }
}

TEST_F(DisplayCardViewTest, ThePictureAndTheListStandSideBySideAtTheTop) {
    show(cardWith({assigned("/firefox", topLeftCorner)}));
    const QRect shown(picture()->mapTo(view.get(), QPoint()), picture()->size());
    const QWidget* const row =
        labelOf(QStringLiteral("Firefox — Top left hot corner"))->parentWidget();
    const QPoint list = row->mapTo(view.get(), QPoint());
    EXPECT_EQ(list, shown.topRight() + QPoint(1 + 14, 0));
    const QWidget* const heading = labelOf(QStringLiteral("Built-in Display"));
    EXPECT_EQ(shown.top(), heading->mapTo(view.get(), QPoint(0, heading->height())).y() + 6);
}

TEST_F(DisplayCardViewTest, TwoHundredRowsAreAllThere) {
    std::vector<Assignment> rows;
    for (int i = 0; i < 200; ++i) {
        rows.push_back(assigned("/app" + std::to_string(i), topLeftCorner, std::nullopt, "Clash"));
    }
    show(absent(rows));
    const auto edits = buttons("Edit");
    ASSERT_EQ(edits.size(), 200U);
    edits[199]->click();
    EXPECT_EQ(edited, std::vector<Assignment>{rows[199]});
    const QLabel* const last = labelOf(QStringLiteral("/app199 — Top left hot corner"));
    EXPECT_GE(last->height(), last->fontMetrics().height());
    EXPECT_FALSE(view->grab().isNull());
    picture()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(picture(), Qt::Key_Down);
    QTest::keyClick(picture(), Qt::Key_Space);
    EXPECT_EQ(assignments.size(), 1U);
}

TEST_F(DisplayCardViewTest, ForgettingMayTakeTheCardAway) {
    QPointer<QWidget> doomed = new DisplayCardView(
        absent({}), {}, {}, {}, [&](const std::string&) { delete doomed.data(); }, {});
    static_cast<DisplayCardView*>(doomed.data())->forgetTapped();
    EXPECT_TRUE(doomed.isNull());
}

TEST_F(DisplayCardViewTest, WithoutAnyFunctionNothingIsDone) {
    DisplayCardView bare(absent({assigned("/firefox", topLeftCorner)}), {}, {}, {}, {}, {});
    bare.editTapped(0);
    bare.forgetTapped();
    bare.show();
    EXPECT_FALSE(bare.grab().isNull());
}

}  // namespace
}  // namespace quorvel
