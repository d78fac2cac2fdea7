#include <QAccessible>
#include <QLineEdit>

#include "tests/views/DiagramFixture.hpp"

namespace quorvel {
namespace {

const std::vector<Assignment> taken{
    assigned("/firefox", topLeftCorner, std::nullopt, "Clash"),
    assigned("/editor", leftSide, TuckEdge::topLeft),
    assigned("/terminal", leftSide, TuckEdge::bottomLeft),
    assigned("/chat", Slot::bottomHide(), TuckEdge::bottom),
};

class ScreenDiagramKeysTest : public DiagramFixture {
protected:
    void show(const std::vector<Assignment>& rows) {
        DiagramFixture::show(rows);
        view.setFocus(Qt::TabFocusReason);
        ASSERT_TRUE(view.hasFocus());
    }

    std::string focused() const {
        const auto index = view.focusedTarget();
        return index ? view.nameOf(view.targets()[*index]).toStdString() : "none";
    }
    std::string after(Qt::Key key) {
        QTest::keyClick(&view, key);
        return focused();
    }
};

TEST_F(ScreenDiagramKeysTest, TabEntersThePictureAtItsTopLeftAndLeavesIt) {
    QLineEdit before(&window);
    QWidget::setTabOrder(&before, &view);
    show({});
    before.setFocus();
    EXPECT_EQ(focused(), "none");
    QTest::keyClick(&before, Qt::Key_Tab);
    EXPECT_EQ(focused(), "Top left corner, free");
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_TRUE(before.hasFocus());
}

TEST_F(ScreenDiagramKeysTest, ArrowsGoAroundAsThePictureIsSeen) {
    show({});
    EXPECT_EQ(after(Qt::Key_Right), "Top right corner, free");
    EXPECT_EQ(after(Qt::Key_Down), "Right side, free");
    EXPECT_EQ(after(Qt::Key_Left), "Left side, free");
    EXPECT_EQ(after(Qt::Key_Down), "Bottom left corner, free");
    EXPECT_EQ(after(Qt::Key_Right), "Bottom, free");
    EXPECT_EQ(after(Qt::Key_Right), "Bottom right corner, free");
    EXPECT_EQ(after(Qt::Key_Right), "Bottom right corner, free") << "there is no further one";
    EXPECT_EQ(after(Qt::Key_Left), "Bottom, free");
    EXPECT_EQ(after(Qt::Key_Up), "Left side, free");
    EXPECT_EQ(after(Qt::Key_Up), "Top left corner, free");
}

TEST_F(ScreenDiagramKeysTest, ArrowsStopAtBothHalvesOfASide) {
    show(taken);
    EXPECT_EQ(after(Qt::Key_Down), "Left side, upper half, </editor>");
    EXPECT_EQ(after(Qt::Key_Down), "Left side, lower half, </terminal>");
    EXPECT_EQ(after(Qt::Key_Down), "Bottom left corner, free");
}

TEST_F(ScreenDiagramKeysTest, ArrowsPassOverWhatNoClickReaches) {
    show({assigned("/first", topLeftCorner), assigned("/second", topLeftCorner),
          assigned("/whole", leftSide, TuckEdge::left),
          assigned("/half", leftSide, TuckEdge::topLeft)});
    EXPECT_EQ(focused(), "Top left corner, </first>");
    EXPECT_EQ(after(Qt::Key_Down), "Left side, </whole>");
    EXPECT_EQ(after(Qt::Key_Down), "Bottom left corner, free");
}

TEST_F(ScreenDiagramKeysTest, SpaceAndReturnDoWhatAClickDoes) {
    show(taken);
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(calls, (std::vector<Call>{{topLeftCorner, taken[0]}}));
    after(Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClick(&view, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(calls[1], (Call{topRightCorner, std::nullopt}));
    EXPECT_EQ(calls.size(), 3U);
    QTest::keyClick(&view, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(calls.size(), 3U);
}

TEST_F(ScreenDiagramKeysTest, ARingIsAroundThePlaceOnlyWhileThePictureHasTheKeyboard) {
    show({});
    const QRgb accent = styled(Style::Colour::accent);
    EXPECT_EQ(pixel(35, 91), accent) << "right of the corner";
    after(Qt::Key_Right);
    EXPECT_NE(pixel(35, 91), accent);
    EXPECT_EQ(pixel(145, 91), accent) << "left of the other one";
    view.clearFocus();
    EXPECT_NE(pixel(145, 91), accent);
}

TEST_F(ScreenDiagramKeysTest, KeysKeepToTheCardThatIsShown) {
    show(taken);
    after(Qt::Key_Down);
    DisplayCard bare = cardWith({});
    bare.freeSlots.clear();
    view.setCard(bare);
    EXPECT_EQ(after(Qt::Key_Down), "none");
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_TRUE(calls.empty());
    EXPECT_FALSE(view.grab().isNull());
    view.setCard(cardWith({}));
    EXPECT_EQ(focused(), "Top left corner, free");
}

class ScreenDiagramAccessibleTest : public ScreenDiagramKeysTest {
protected:
    QAccessibleInterface& picture() { return *QAccessible::queryAccessibleInterface(&view); }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (int i = 0; i < picture().childCount(); ++i) {
            result.push_back(picture().child(i)->text(QAccessible::Name).toStdString());
        }
        return result;
    }
};

TEST_F(ScreenDiagramAccessibleTest, EveryPlaceIsAButtonWithAName) {
    show(taken);
    EXPECT_EQ(picture().text(QAccessible::Name), QStringLiteral("Built-in Display"));
    EXPECT_EQ(names(),
              (std::vector<std::string>{
                  "Top left corner, </firefox>", "Left side, upper half, </editor>",
                  "Left side, lower half, </terminal>", "Bottom, </chat>", "Top right corner, free",
                  "Bottom left corner, free", "Bottom right corner, free", "Right side, free"}));
    for (int i = 0; i < picture().childCount(); ++i) {
        QAccessibleInterface* const place = picture().child(i);
        EXPECT_TRUE(place->isValid());
        EXPECT_EQ(place->role(), QAccessible::Button);
        EXPECT_EQ(place->parent(), &picture());
        EXPECT_EQ(picture().indexOfChild(place), i);
        EXPECT_EQ(picture().child(i), place) << "the same at every call";
    }
    EXPECT_EQ(picture().child(0)->text(QAccessible::Description), QStringLiteral("Clash"));
    EXPECT_EQ(picture().child(8), nullptr);
}

TEST_F(ScreenDiagramAccessibleTest, APlaceIsWhereItIsOnTheScreen) {
    window.move(40, 30);
    show(taken);
    const QRect corner = picture().child(0)->rect();
    EXPECT_EQ(corner, QRect(view.mapToGlobal(QPoint(6, 6)), QSize(26, 26)));
    EXPECT_EQ(picture().childAt(corner.center().x(), corner.center().y()), picture().child(0));
    const QPoint middle = view.mapToGlobal(at(90, 60));
    EXPECT_EQ(picture().childAt(middle.x(), middle.y()), nullptr);
}

TEST_F(ScreenDiagramAccessibleTest, PressingAPlaceDoesWhatAClickDoes) {
    show(taken);
    QAccessibleActionInterface* const actions = picture().child(1)->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(calls, (std::vector<Call>{{leftSide, taken[1]}}));
}

TEST_F(ScreenDiagramAccessibleTest, FocusIsThatOfThePlace) {
    show(taken);
    EXPECT_EQ(picture().focusChild(), picture().child(0));
    after(Qt::Key_Right);
    EXPECT_EQ(picture().focusChild(), picture().child(4));
    EXPECT_TRUE(picture().child(4)->state().focused);
    EXPECT_FALSE(picture().child(0)->state().focused);
    picture().child(7)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(focused(), "Right side, free");
}

TEST_F(ScreenDiagramAccessibleTest, APlaceThatIsGoneIsNotValid) {
    show(taken);
    QAccessibleInterface* const last = picture().child(7);
    DisplayCard smaller = cardWith({});
    view.setCard(smaller);
    EXPECT_EQ(picture().childCount(), 7);
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(picture().indexOfChild(last), -1);
    EXPECT_TRUE(last->text(QAccessible::Name).isEmpty());
    last->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(calls.empty());
}

TEST_F(ScreenDiagramAccessibleTest, WithoutNamesAnAppIsCalledByItsFile) {
    view.nameForApp = nullptr;
    show({assigned("/usr/share/applications/firefox.desktop", topLeftCorner)});
    EXPECT_EQ(names()[0], "Top left corner, firefox");
}

}  // namespace
}  // namespace quorvel
