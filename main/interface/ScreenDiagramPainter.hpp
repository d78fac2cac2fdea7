#pragma once

#include <QIcon>
#include <QPainter>

#include "main/interface/Style.hpp"
#include "main/settings/SettingsLayout.hpp"

namespace quorvel {

/// Draws what the picture of a display is made of, in the coordinates of the widget.
class ScreenDiagramPainter {
public:
    ScreenDiagramPainter(QPainter& painter, const QPalette& palette);

    void drawDisplay(const QRectF& frame, bool isAttached);
    void drawFree(const QRectF& frame);
    void drawAssignment(const Assignment& assignment, const QRectF& frame, const QIcon& icon);
    /// All of it inside `bounds`.
    void drawWarning(const QRectF& frame, const QRectF& bounds);
    void drawFocus(const QRectF& frame, const QRectF& bounds);

private:
    void drawIcon(const QIcon& icon, const QRectF& frame);
    void fill(const QRectF& frame, double radius, Style::Colour role);

    QPainter& painter;
    const QPalette& palette;
};

}  // namespace quorvel
