#include "main/interface/ScreenDiagramPainter.hpp"

#include <cmath>

namespace quorvel {
namespace {

/// Both lengths in points, as the width is.
QPen dashed(const QColor& colour, double width, double on, double off) {
    QPen pen(colour, width, Qt::CustomDashLine, Qt::FlatCap);
    pen.setDashPattern({on / width, off / width});
    return pen;
}

QRectF inset(const QRectF& frame, double by) {
    return frame.adjusted(by, by, -by, -by);
}

}  // namespace

ScreenDiagramPainter::ScreenDiagramPainter(QPainter& painter, const QPalette& palette)
    : painter(painter), palette(palette) {
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

void ScreenDiagramPainter::drawDisplay(const QRectF& frame, bool isAttached) {
    const auto outline = isAttached ? Style::Colour::separator : Style::Colour::tertiaryLabel;
    painter.setPen(QPen(Style::colour(outline, palette), 1.5));
    painter.setBrush(isAttached ? Style::colour(Style::Colour::underPage, palette)
                                : palette.color(QPalette::Window));
    painter.drawRoundedRect(frame, 7, 7);
}

void ScreenDiagramPainter::drawFree(const QRectF& frame) {
    if (frame.isEmpty()) return;
    painter.setPen(dashed(Style::colour(Style::Colour::tertiaryLabel, palette), 1, 3, 3));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(inset(frame, 0.5));
}

void ScreenDiagramPainter::drawAssignment(const Assignment& assignment, const QRectF& frame,
                                          const QIcon& icon) {
    if (frame.isEmpty()) return;
    if (std::holds_alternative<HotZoneCorner>(assignment.slot.position)) {
        drawIcon(icon, frame);
    } else if (std::holds_alternative<Side>(assignment.slot.position)) {
        fill(frame, 3, Style::Colour::green);
    } else {
        painter.setPen(dashed(Style::colour(Style::Colour::orange, palette), 1.5, 4, 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(inset(frame, 0.75), 3, 3);
    }
}

void ScreenDiagramPainter::drawWarning(const QRectF& frame, const QRectF& bounds) {
    painter.setPen(QPen(Style::colour(Style::Colour::red, palette), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(inset(frame, -2) & inset(bounds, 1), 8, 8);
}

void ScreenDiagramPainter::drawFocus(const QRectF& frame, const QRectF& bounds) {
    const QRectF ring = inset(frame, -3) & inset(bounds, 1);
    painter.setBrush(Qt::NoBrush);
    // Seen on every ground: the colour of the window beneath, wider.
    painter.setPen(QPen(palette.color(QPalette::Window), 4));
    painter.drawRoundedRect(ring, 5, 5);
    painter.setPen(QPen(Style::colour(Style::Colour::accent, palette), 2));
    painter.drawRoundedRect(ring, 5, 5);
}

void ScreenDiagramPainter::drawIcon(const QIcon& icon, const QRectF& frame) {
    const int side = qMax(1, static_cast<int>(std::ceil(frame.width())));
    const QPixmap pixmap = icon.pixmap(QSize(side, side), painter.device()->devicePixelRatioF());
    if (pixmap.isNull()) {
        fill(frame, 6, Style::Colour::secondaryLabel);
        return;
    }
    QRectF target(QPointF(), QSizeF(pixmap.size()).scaled(frame.size(), Qt::KeepAspectRatio));
    target.moveCenter(frame.center());
    painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
}

void ScreenDiagramPainter::fill(const QRectF& frame, double radius, Style::Colour role) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Style::colour(role, palette));
    painter.drawRoundedRect(frame, radius, radius);
}

}  // namespace quorvel
