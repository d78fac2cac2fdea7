#include "main/interface/ScreenDiagramView.hpp"

#include <QAccessible>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "main/interface/PlainToolTip.hpp"
#include "main/interface/ScreenDiagramAccessible.hpp"
#include "main/interface/ScreenDiagramPainter.hpp"

namespace quorvel {
namespace {

using Target = ScreenDiagramView::Target;

double scaleOf(const Rect& in) {
    return std::clamp((std::min(in.width, in.height) - 10) / 72, 0.25, 1.0);
}

bool isRight(HotZoneCorner corner) {
    return corner == HotZoneCorner::bottomRight || corner == HotZoneCorner::topRight;
}

bool isTop(HotZoneCorner corner) {
    return corner == HotZoneCorner::topLeft || corner == HotZoneCorner::topRight;
}

enum class Half { none, upper, lower };

Half halfOf(std::optional<TuckEdge> edge) {
    if (!edge || !edge->isCorner()) return Half::none;
    return *edge == TuckEdge::topLeft || *edge == TuckEdge::topRight ? Half::upper : Half::lower;
}

Rect sideFrame(Side side, const Rect& in, std::optional<TuckEdge> edge, double reserved,
               double thickness) {
    Rect strip{side == Side::left ? in.minX() : in.maxX() - thickness, in.minY() + reserved,
               thickness, std::max(0.0, in.height - 2 * reserved)};
    const Half half = halfOf(edge);
    if (half == Half::none) return strip;
    strip.height /= 2;
    if (half == Half::upper) strip.y += strip.height;
    return strip;
}

/// For the keys: columns from the left, rows from the top. Positions alone would lead from a corner
/// to the strip at its side, which lies further out.
struct Cell {
    double column = 0;
    double row = 0;
};

Cell cellOf(const Target& target) {
    if (const auto* const corner = std::get_if<HotZoneCorner>(&target.slot.position)) {
        return {isRight(*corner) ? 2.0 : 0.0, isTop(*corner) ? 0.0 : 2.0};
    }
    if (const auto* const side = std::get_if<Side>(&target.slot.position)) {
        const auto edge = target.assignment == nullptr ? std::nullopt : target.assignment->edge;
        const Half half = halfOf(edge);
        const double row = half == Half::upper ? 0.8 : half == Half::lower ? 1.2 : 1.0;
        return {*side == Side::left ? 0.0 : 2.0, row};
    }
    return {1, 2};
}

bool covers(const Rect& above, const Rect& below) {
    return above.minX() <= below.minX() && above.minY() <= below.minY() &&
           above.maxX() >= below.maxX() && above.maxY() >= below.maxY();
}

/// Whether a click never reaches it: earlier ones win.
bool isCovered(const std::vector<Target>& targets, std::size_t index) {
    return std::any_of(
        targets.begin(), targets.begin() + static_cast<std::ptrdiff_t>(index),
        [&](const Target& above) { return covers(above.frame, targets[index].frame); });
}

/// Of those that a click reaches, the one for which `rank` is least; it ranks nothing that is out
/// of the question.
template <class Rank>
std::optional<std::size_t> best(const std::vector<Target>& targets, Rank rank) {
    std::optional<std::size_t> found;
    decltype(rank(Cell{})) least;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const auto ranked = rank(cellOf(targets[i]));
        if (!ranked || isCovered(targets, i)) continue;
        if (found && *least <= *ranked) continue;
        found = i;
        least = ranked;
    }
    return found;
}

using Rank = std::optional<std::tuple<double, double>>;

std::optional<std::size_t> firstToRead(const std::vector<Target>& targets) {
    return best(targets, [](Cell cell) { return Rank({cell.row, cell.column}); });
}

/// The nearest row or column across comes first, then the nearest along.
std::optional<std::size_t> next(const std::vector<Target>& targets, Cell from, int key) {
    return best(targets, [&](Cell to) {
        const bool isHorizontal = key == Qt::Key_Left || key == Qt::Key_Right;
        const double right = to.column - from.column;
        const double down = to.row - from.row;
        const double sign = key == Qt::Key_Right || key == Qt::Key_Down ? 1 : -1;
        const double along = sign * (isHorizontal ? right : down);
        const double across = std::abs(isHorizontal ? down : right);
        return along > 0 ? Rank({across, along}) : std::nullopt;
    });
}

QString placeName(const Target& target) {
    if (const auto* const corner = std::get_if<HotZoneCorner>(&target.slot.position)) {
        const std::string_view name = label(*corner);
        return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
               QStringLiteral(" corner");
    }
    const auto* const side = std::get_if<Side>(&target.slot.position);
    if (side == nullptr) return QStringLiteral("Bottom");
    const QString name = *side == Side::left    ? QStringLiteral("Left side")
                         : *side == Side::right ? QStringLiteral("Right side")
                                                : QStringLiteral("Bottom side");
    const auto edge = target.assignment == nullptr ? std::nullopt : target.assignment->edge;
    switch (halfOf(edge)) {
        case Half::upper:
            return name + QStringLiteral(", upper half");
        case Half::lower:
            return name + QStringLiteral(", lower half");
        case Half::none:
            break;
    }
    return name;
}

bool isArrow(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

bool isPress(int key) {
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

ScreenDiagramView::ScreenDiagramView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    QAccessible::installFactory(makeScreenDiagramAccessible);
}

void ScreenDiagramView::setCard(std::optional<DisplayCard> shown) {
    shownCard = std::move(shown);
    current = hasFocus() ? firstToRead(targets()) : std::nullopt;
    setAccessibleName(shownCard ? QString::fromStdString(shownCard->name) : QString());
    update();
    QAccessibleEvent event(this, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

Rect ScreenDiagramView::frame(const Slot& slot, const Rect& in, std::optional<TuckEdge> edge) {
    const double scale = scaleOf(in);
    const double square = 26 * scale;
    const double margin = 5 * scale;
    const double reserved = square + 2 * margin;
    if (const auto* const corner = std::get_if<HotZoneCorner>(&slot.position)) {
        return {isRight(*corner) ? in.maxX() - margin - square : in.minX() + margin,
                isTop(*corner) ? in.maxY() - margin - square : in.minY() + margin, square, square};
    }
    if (const auto* const side = std::get_if<Side>(&slot.position)) {
        return sideFrame(*side, in, edge, reserved, 7 * scale);
    }
    return {in.minX() + reserved, in.minY() + margin, std::max(0.0, in.width - 2 * reserved), 11};
}

double ScreenDiagramView::hitSlop(const Rect& in) {
    return std::min(2.5 * scaleOf(in), 3.0);
}

std::vector<Target> ScreenDiagramView::targets() const {
    std::vector<Target> result;
    if (!shownCard) return result;
    const Rect in = drawingRect();
    for (const Assignment& row : shownCard->rows) {
        result.push_back({row.slot, &row, frame(row.slot, in, row.edge)});
    }
    for (const Slot& slot : shownCard->freeSlots) {
        result.push_back({slot, nullptr, frame(slot, in)});
    }
    return result;
}

std::optional<std::size_t> ScreenDiagramView::targetAt(const QPointF& position) const {
    const Point point{position.x(), height() - position.y()};
    const double slop = hitSlop(drawingRect());
    const auto all = targets();
    const auto hit = std::find_if(all.begin(), all.end(), [&](const Target& target) {
        return target.frame.grown(slop).contains(point);
    });
    if (hit == all.end()) return std::nullopt;
    return static_cast<std::size_t>(hit - all.begin());
}

QRectF ScreenDiagramView::onWidget(const Rect& rect) const {
    return {rect.x, height() - rect.maxY(), rect.width, rect.height};
}

QString ScreenDiagramView::nameOf(const Target& target) const {
    const QString place = placeName(target) + QStringLiteral(", ");
    if (target.assignment == nullptr) return place + QStringLiteral("free");
    const std::string& path = target.assignment->appPath;
    if (nameForApp) return place + QString::fromStdString(nameForApp(path));
    return place + QFileInfo(QString::fromStdString(path)).completeBaseName();
}

void ScreenDiagramView::activate(std::size_t index) {
    const auto all = targets();
    if (index >= all.size() || !onSlot) return;
    const Slot slot = all[index].slot;
    const auto assignment =
        all[index].assignment == nullptr ? std::nullopt : std::optional(*all[index].assignment);
    // Copied: this view may be gone before it returns.
    const auto act = onSlot;
    act(slot, assignment);
}

std::optional<std::size_t> ScreenDiagramView::focusedTarget() const {
    return hasFocus() ? current : std::nullopt;
}

void ScreenDiagramView::focusTarget(std::size_t index) {
    if (index >= targets().size()) return;
    current = index;
    if (hasFocus()) {
        tellFocus();
    } else {
        setFocus(Qt::OtherFocusReason);
    }
}

std::optional<Slot> ScreenDiagramView::currentSlot() const {
    if (!current) return std::nullopt;
    return targets()[*current].slot;
}

void ScreenDiagramView::setCurrentSlot(const Slot& slot) {
    const auto all = targets();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Target& target) { return target.slot == slot; });
    if (found == all.end()) return;
    current = static_cast<std::size_t>(found - all.begin());
    if (hasFocus()) tellFocus();
}

bool ScreenDiagramView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto& help = *static_cast<QHelpEvent*>(event);
    const auto hit = targetAt(help.pos());
    if (!hit) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    const Target target = targets()[*hit];
    QString text = nameOf(target);
    if (target.assignment != nullptr && target.assignment->warning) {
        text += QLatin1Char('\n') + QString::fromStdString(*target.assignment->warning);
    }
    showPlainToolTip(help, *this, text, onWidget(target.frame).toAlignedRect());
    return true;
}

void ScreenDiagramView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    ScreenDiagramPainter drawing(painter, palette());
    const Rect in = drawingRect();
    drawing.drawDisplay(onWidget(in), !shownCard || shownCard->isAttached);
    const auto all = targets();
    for (const Target& target : all) {
        const QRectF frame = onWidget(target.frame);
        if (target.assignment == nullptr) {
            drawing.drawFree(frame);
            continue;
        }
        const bool hasIcon =
            iconForApp && std::holds_alternative<HotZoneCorner>(target.assignment->slot.position);
        drawing.drawAssignment(*target.assignment, frame,
                               hasIcon ? iconForApp(target.assignment->appPath) : QIcon());
        if (target.assignment->warning) drawing.drawWarning(frame, rect());
    }
    if (!hasFocus()) return;
    drawing.drawFocus(current ? onWidget(all[*current].frame) : onWidget(in), rect());
}

void ScreenDiagramView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    isPressed = true;
}

void ScreenDiagramView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (!std::exchange(isPressed, false)) return;
    if (const auto hit = targetAt(event->position())) activate(*hit);
}

void ScreenDiagramView::mouseMoveEvent(QMouseEvent* event) {
    if (targetAt(event->position())) {
        setCursor(Qt::PointingHandCursor);
    } else {
        unsetCursor();
    }
}

void ScreenDiagramView::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isPlain && isArrow(event->key())) {
        moveFocus(event->key());
    } else if (isPlain && isPress(event->key())) {
        if (current && !event->isAutoRepeat()) activate(*current);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void ScreenDiagramView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (!current) current = firstToRead(targets());
    tellFocus();
}

Rect ScreenDiagramView::drawingRect() const {
    return {1, 1, std::max(0, width() - 2) * 1.0, std::max(0, height() - 2) * 1.0};
}

void ScreenDiagramView::moveFocus(int key) {
    const auto all = targets();
    const auto reached = current ? next(all, cellOf(all[*current]), key) : firstToRead(all);
    if (!reached) return;
    current = reached;
    tellFocus();
}

void ScreenDiagramView::tellFocus() {
    update();
    if (!current) return;
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(static_cast<int>(*current));
    QAccessible::updateAccessibility(&event);
}

}  // namespace quorvel
