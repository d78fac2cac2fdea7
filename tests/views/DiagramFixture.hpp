#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <memory>

#include "main/interface/ScreenDiagramView.hpp"
#include "main/interface/Style.hpp"
#include "tests/support/Printers.hpp"

namespace quorvel {

inline Assignment assigned(std::string appPath, Slot slot,
                           std::optional<TuckEdge> edge = std::nullopt,
                           std::optional<std::string> warning = std::nullopt) {
    return {std::move(appPath), slot, edge, std::move(warning)};
}

/// An attached display with these rows and what they leave free.
inline DisplayCard cardWith(std::vector<Assignment> rows) {
    auto unoccupied = SettingsLayout::free(rows);
    return {"display-1",      "Built-in Display", true,
            Size{2560, 1600}, std::move(rows),    std::move(unoccupied)};
}

inline const Slot topLeftCorner = Slot::corner(HotZoneCorner::topLeft);
inline const Slot topRightCorner = Slot::corner(HotZoneCorner::topRight);
inline const Slot bottomLeftCorner = Slot::corner(HotZoneCorner::bottomLeft);
inline const Slot bottomRightCorner = Slot::corner(HotZoneCorner::bottomRight);
inline const Slot leftSide = Slot::side(Side::left);
inline const Slot rightSide = Slot::side(Side::right);

/// A picture of 180 × 110 that notes what is clicked.
class DiagramFixture : public testing::Test {
protected:
    struct Call {
        Slot slot;
        std::optional<Assignment> assignment;

        bool operator==(const Call&) const = default;
    };

    DiagramFixture() {
        view.setFixedSize(180, 110);
        view.nameForApp = [](const std::string& path) { return "<" + path + ">"; };
        view.onSlot = [this](const Slot& slot, const std::optional<Assignment>& assignment) {
            calls.push_back({slot, assignment});
        };
    }

    void show(const std::vector<Assignment>& rows) { show(cardWith(rows)); }
    void show(DisplayCard card) {
        view.setCard(std::move(card));
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        view.clearFocus();
    }

    /// With y growing upwards, as the geometry has it.
    QPoint at(double x, double y) const { return QPointF(x, view.height() - y).toPoint(); }
    void click(double x, double y) { QTest::mouseClick(&view, Qt::LeftButton, {}, at(x, y)); }

    void pointAt(double x, double y) {
        const QPointF position = at(x, y);
        QMouseEvent event(QEvent::MouseMove, position, view.mapToGlobal(position), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &event);
    }

    QRgb pixel(double x, double y) { return view.grab().toImage().pixel(at(x, y)); }
    QRgb styled(Style::Colour role) const { return Style::colour(role, view.palette()).rgb(); }

    QWidget window;
    ScreenDiagramView& view = *new ScreenDiagramView(&window);
    std::vector<Call> calls;
};

}  // namespace quorvel
