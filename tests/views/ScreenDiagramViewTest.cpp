#include "main/interface/ScreenDiagramView.hpp"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QToolTip>

#include "tests/views/DiagramFixture.hpp"

namespace quorvel {
namespace {

const Rect usual{1, 1, 178, 108};

Rect frame(const Slot& slot, std::optional<TuckEdge> edge = std::nullopt, Rect in = usual) {
    return ScreenDiagramView::frame(slot, in, edge);
}

TEST(ScreenDiagramGeometryTest, CornersOfTheUsualPictureAreTwentySixAndFiveInside) {
    EXPECT_EQ(frame(bottomLeftCorner), (Rect{6, 6, 26, 26}));
    EXPECT_EQ(frame(bottomRightCorner), (Rect{148, 6, 26, 26}));
    EXPECT_EQ(frame(topLeftCorner), (Rect{6, 78, 26, 26}));
    EXPECT_EQ(frame(topRightCorner), (Rect{148, 78, 26, 26}));
}

TEST(ScreenDiagramGeometryTest, SidesOfTheUsualPictureAreSevenWideAndThirtySixTall) {
    EXPECT_EQ(frame(leftSide), (Rect{1, 37, 7, 36}));
    EXPECT_EQ(frame(rightSide), (Rect{172, 37, 7, 36}));
    EXPECT_EQ(frame(Slot::side(Side::bottom)), frame(rightSide)) << "whatever is not the left one";
    EXPECT_EQ(frame(leftSide, TuckEdge::left), frame(leftSide));
}

TEST(ScreenDiagramGeometryTest, HalfEdgesShareTheirSideAndDoNotOverlap) {
    EXPECT_EQ(frame(leftSide, TuckEdge::topLeft), (Rect{1, 55, 7, 18}));
    EXPECT_EQ(frame(leftSide, TuckEdge::bottomLeft), (Rect{1, 37, 7, 18}));
    EXPECT_EQ(frame(rightSide, TuckEdge::topRight), (Rect{172, 55, 7, 18}));
    EXPECT_EQ(frame(rightSide, TuckEdge::bottomRight), (Rect{172, 37, 7, 18}));
    EXPECT_FALSE(
        frame(leftSide, TuckEdge::topLeft).intersects(frame(leftSide, TuckEdge::bottomLeft)));
}

TEST(ScreenDiagramGeometryTest, TheBottomIsElevenTallAtEveryScale) {
    EXPECT_EQ(frame(Slot::bottomHide()), (Rect{37, 6, 106, 11}));
    EXPECT_EQ(frame(Slot::bottomHide(), std::nullopt, {1, 1, 178, 46}), (Rect{19, 3.5, 142, 11}));
}

TEST(ScreenDiagramGeometryTest, TheScaleFollowsTheShorterExtent) {
    EXPECT_EQ(frame(topLeftCorner, std::nullopt, {1, 1, 178, 46}), (Rect{3.5, 31.5, 13, 13}));
    EXPECT_EQ(frame(topLeftCorner, std::nullopt, {1, 1, 46, 178}), (Rect{3.5, 163.5, 13, 13}));
    EXPECT_EQ(frame(topLeftCorner, std::nullopt, {0, 0, 800, 600}), (Rect{5, 569, 26, 26}))
        << "never above one";
}

TEST(ScreenDiagramGeometryTest, OnAVerySmallPictureTheScaleStopsAtAQuarter) {
    const Rect tiny{1, 1, 8, 8};
    EXPECT_EQ(frame(bottomLeftCorner, std::nullopt, tiny), (Rect{2.25, 2.25, 6.5, 6.5}));
    EXPECT_EQ(frame(leftSide, std::nullopt, tiny).width, 1.75);
    EXPECT_EQ(ScreenDiagramView::hitSlop(tiny), 0.625);
}

TEST(ScreenDiagramGeometryTest, NothingEverHasANegativeExtent) {
    for (const Rect in : {Rect{1, 1, 8, 8}, Rect{1, 1, 0, 0}, Rect{0, 0, 178, 1}}) {
        for (const Slot& slot : {leftSide, rightSide, Slot::bottomHide(), topLeftCorner}) {
            EXPECT_GE(frame(slot, TuckEdge::topLeft, in).height, 0);
            EXPECT_GE(frame(slot, TuckEdge::topLeft, in).width, 0);
        }
    }
}

TEST(ScreenDiagramGeometryTest, TheSlopFollowsTheScale) {
    EXPECT_EQ(ScreenDiagramView::hitSlop(usual), 2.5);
    EXPECT_EQ(ScreenDiagramView::hitSlop({1, 1, 178, 46}), 1.25);
}

class ScreenDiagramViewTest : public DiagramFixture {};

TEST_F(ScreenDiagramViewTest, AClickOnAFreePlaceNamesItAndNothingElse) {
    show(std::vector<Assignment>{});
    click(161, 91);
    EXPECT_EQ(calls, (std::vector<Call>{{topRightCorner, std::nullopt}}));
    click(90, 11);
    EXPECT_EQ(calls.back(), (Call{Slot::bottomHide(), std::nullopt}));
}

TEST_F(ScreenDiagramViewTest, AClickOnATakenPlaceHandsItsAssignmentOver) {
    const Assignment row = assigned("/firefox", bottomLeftCorner);
    show({row});
    click(19, 19);
    EXPECT_EQ(calls, (std::vector<Call>{{bottomLeftCorner, row}}));
}

TEST_F(ScreenDiagramViewTest, AClickTwoPointsOutsideACornerStillHitsItAndThreePointsDoNot) {
    show(std::vector<Assignment>{});
    click(19, 76);
    EXPECT_EQ(calls, (std::vector<Call>{{topLeftCorner, std::nullopt}}));
    click(34, 91);
    EXPECT_EQ(calls.size(), 2U);
    click(19, 75);
    click(35, 91);
    EXPECT_EQ(calls.size(), 2U);
}

TEST_F(ScreenDiagramViewTest, ClicksReachEachHalfOfASide) {
    const Assignment upper = assigned("/upper", leftSide, TuckEdge::topLeft);
    const Assignment lower = assigned("/lower", leftSide, TuckEdge::bottomLeft);
    show({upper, lower});
    click(4, 65);
    click(4, 45);
    EXPECT_EQ(calls, (std::vector<Call>{{leftSide, upper}, {leftSide, lower}}));
}

TEST_F(ScreenDiagramViewTest, TakenPlacesWinOverFreeOnesAndEarlierRowsOverLaterOnes) {
    DisplayCard card =
        cardWith({assigned("/first", topLeftCorner), assigned("/second", topLeftCorner)});
    card.freeSlots.insert(card.freeSlots.begin(), topLeftCorner);
    show(card);
    click(19, 91);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].assignment->appPath, "/first");
}

TEST_F(ScreenDiagramViewTest, AClickBesideEverythingOrWithAnotherButtonDoesNothing) {
    show(std::vector<Assignment>{});
    click(90, 60);
    QTest::mouseClick(&view, Qt::RightButton, {}, at(19, 91));
    EXPECT_TRUE(calls.empty());
}

TEST_F(ScreenDiagramViewTest, AReleaseThatBeganElsewhereDoesNothing) {
    show(std::vector<Assignment>{});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, at(19, 91));
    EXPECT_TRUE(calls.empty());
}

TEST_F(ScreenDiagramViewTest, WithoutACardThereIsNothingToClickAndItStillDraws) {
    window.show();
    click(19, 91);
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(view.targets().empty());
    EXPECT_EQ(pixel(90, 60), styled(Style::Colour::underPage));
}

TEST_F(ScreenDiagramViewTest, AClickAndAKeyMayTakeThePictureAway) {
    show(std::vector<Assignment>{});
    for (const bool byKey : {false, true}) {
        QPointer<ScreenDiagramView> doomed = new ScreenDiagramView(&window);
        doomed->setFixedSize(180, 110);
        doomed->setCard(cardWith({}));
        doomed->onSlot = [&doomed](const Slot&, const std::optional<Assignment>&) {
            delete doomed.data();
        };
        doomed->show();
        if (byKey) {
            doomed->setFocus(Qt::TabFocusReason);
            QTest::keyClick(window.windowHandle(), Qt::Key_Space);
        } else {
            QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, at(19, 91));
        }
        EXPECT_TRUE(doomed.isNull());
    }
}

TEST_F(ScreenDiagramViewTest, TheHandPointsOnlyWhereAClickHits) {
    show({assigned("/left", leftSide, TuckEdge::topLeft)});
    const auto shapeAt = [this](double x, double y) {
        pointAt(x, y);
        return view.cursor().shape();
    };
    EXPECT_EQ(shapeAt(19, 76), Qt::PointingHandCursor) << "with the slop";
    EXPECT_EQ(shapeAt(90, 60), Qt::ArrowCursor);
    EXPECT_EQ(shapeAt(4, 65), Qt::PointingHandCursor);
    EXPECT_EQ(shapeAt(4, 45), Qt::ArrowCursor) << "the other half is not free";
}

TEST_F(ScreenDiagramViewTest, TheTopOfThePictureIsAtTheTop) {
    view.iconForApp = [](const std::string&) {
        QPixmap red(26, 26);
        red.fill(Qt::red);
        return QIcon(red);
    };
    show({assigned("/app", topLeftCorner)});
    EXPECT_EQ(view.grab().toImage().pixel(19, 19), QColor(Qt::red).rgb());
    EXPECT_NE(view.grab().toImage().pixel(19, 91), QColor(Qt::red).rgb());
}

TEST_F(ScreenDiagramViewTest, AnAppWithoutAnIconIsASquare) {
    for (const bool isAsked : {false, true}) {
        if (isAsked) {
            view.iconForApp = [](const std::string&) { return QIcon("/no/such/file.png"); };
        }
        show({assigned("/app", topLeftCorner)});
        EXPECT_EQ(pixel(19, 91), styled(Style::Colour::secondaryLabel));
    }
}

TEST_F(ScreenDiagramViewTest, ASideIsGreenAndTheBottomIsDashedOrange) {
    show({assigned("/side", rightSide, TuckEdge::bottomRight),
          assigned("/bottom", Slot::bottomHide(), TuckEdge::bottom)});
    const QRgb green = styled(Style::Colour::green);
    EXPECT_EQ(pixel(175, 45), green);
    EXPECT_NE(pixel(175, 65), green) << "only the lower half";
    EXPECT_EQ(pixel(90, 11), styled(Style::Colour::underPage)) << "an outline only";
    const QImage image = view.grab().toImage();
    int orange = 0;
    for (int x = 37; x < 143; ++x) {
        if (image.pixel(x, 93) == styled(Style::Colour::orange)) {
            ++orange;
        }
    }
    EXPECT_GT(orange, 30);
    EXPECT_LT(orange, 80) << "dashed";
}

TEST_F(ScreenDiagramViewTest, AWarningIsARedOutlineAroundThePlace) {
    const QRgb red = styled(Style::Colour::red);
    show({assigned("/app", topLeftCorner, std::nullopt, "Clash")});
    EXPECT_EQ(pixel(34, 91), red);
    show({assigned("/app", topLeftCorner)});
    EXPECT_NE(pixel(34, 91), red);
}

TEST_F(ScreenDiagramViewTest, ADisplayThatIsNotConnectedHasTheGroundOfTheWindow) {
    DisplayCard card = cardWith({});
    card.isAttached = false;
    show(card);
    EXPECT_EQ(pixel(90, 60), view.palette().color(QPalette::Window).rgb());
}

TEST_F(ScreenDiagramViewTest, ToolTipsSayWhatIsThere) {
    show({assigned("/app", topLeftCorner, std::nullopt, "Clash")});
    const auto tipAt = [this](double x, double y) {
        QHelpEvent event(QEvent::ToolTip, at(x, y), view.mapToGlobal(at(x, y)));
        QCoreApplication::sendEvent(&view, &event);
        return QToolTip::text().toStdString();
    };
    EXPECT_EQ(tipAt(19, 91), "<qt>Top left corner, &lt;/app&gt;<br>Clash</qt>");
    EXPECT_EQ(tipAt(4, 55), "<qt>Left side, free</qt>");
}

TEST_F(ScreenDiagramViewTest, AToolTipOfAVeryLongNameStaysOnTheScreen) {
    view.nameForApp = [](const std::string&) { return std::string(3000, 'w'); };
    show({assigned("/app", topLeftCorner)});
    QHelpEvent event(QEvent::ToolTip, at(19, 91), view.mapToGlobal(at(19, 91)));
    QCoreApplication::sendEvent(&view, &event);
    int tips = 0;
    for (const QWidget* shown : QApplication::topLevelWidgets()) {
        if (!shown->inherits("QTipLabel") || !shown->isVisible()) continue;
        ++tips;
        EXPECT_LE(shown->width(), view.screen()->geometry().width());
        EXPECT_LE(shown->height(), view.screen()->geometry().height());
    }
    EXPECT_EQ(tips, 1);
    QToolTip::hideText();
}

TEST_F(ScreenDiagramViewTest, VeryLowAndVeryTallPicturesDrawAndAreClicked) {
    for (const QSize size : {QSize(180, 50), QSize(180, 313), QSize(1, 1), QSize(180, 3)}) {
        view.setFixedSize(size);
        show({assigned("/app", leftSide, TuckEdge::topLeft)});
        EXPECT_FALSE(view.grab().isNull());
    }
    view.setFixedSize(180, 50);
    calls.clear();
    const Rect corner = ScreenDiagramView::frame(topRightCorner, {1, 1, 178, 48});
    click(corner.x + corner.width / 2, corner.y + corner.height / 2);
    EXPECT_EQ(calls, (std::vector<Call>{{topRightCorner, std::nullopt}}));
}

}  // namespace
}  // namespace quorvel
