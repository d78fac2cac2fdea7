#include "main/interface/SegmentedControl.hpp"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

#include "main/interface/Style.hpp"
#include "main/interface/UserChoice.hpp"

namespace quorvel {
namespace {

constexpr double radius = 6;
constexpr int segmentHeight = 26;
constexpr int padding = 14;

/// Draws its part of the one shape that the row is.
class Segment final : public QPushButton {
public:
    Segment(const QString& title, SegmentedControl& row) : QPushButton(title), row(row) {
        setCheckable(true);
        // Tells assistive technology that it is one of several choices.
        setAutoExclusive(true);
        setAutoDefault(false);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * padding, segmentHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor accent = Style::colour(Style::Colour::accent, palette());
        const QColor outline = Style::colour(Style::Colour::separator, palette());

        // The shape of the whole row; what lies outside this segment is cut off.
        QPainterPath shape;
        shape.addRoundedRect(QRectF(row.rect()).translated(-pos()).adjusted(0.5, 0.5, -0.5, -0.5),
                             radius, radius);
        painter.fillPath(shape, ground(accent));
        painter.setPen(outline);
        painter.drawPath(shape);
        if (x() > 0) painter.drawLine(QPointF(0.5, 1), QPointF(0.5, segmentHeight - 1));

        if (hasFocus()) {
            // Inside, where it is seen on the accent colour as well as beside it.
            painter.setPen(
                QPen(isChecked() ? palette().color(QPalette::HighlightedText) : accent, 1.5));
            painter.drawRoundedRect(QRectF(rect()).adjusted(3, 3, -3, -3), radius - 2, radius - 2);
        }
        painter.setPen(ink());
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
    }

private:
    QColor ground(const QColor& accent) const {
        if (isChecked()) {
            return isEnabled() ? accent : Style::colour(Style::Colour::separator, palette());
        }
        const QColor button = palette().color(QPalette::Button);
        if (isDown()) return button.darker(115);
        return underMouse() && isEnabled() ? button.lighter(108) : button;
    }

    QColor ink() const {
        if (!isEnabled()) return palette().color(QPalette::Disabled, QPalette::ButtonText);
        return palette().color(isChecked() ? QPalette::HighlightedText : QPalette::ButtonText);
    }

    const SegmentedControl& row;
};

}  // namespace

void letTabReachTheChosen(const QButtonGroup& group) {
    for (QAbstractButton* const button : group.buttons()) {
        button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

SegmentedControl::SegmentedControl(const QString& name, const QStringList& titles) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (int index = 0; index < titles.size(); ++index) {
        auto* const segment = new Segment(titles[index], *this);
        layout->addWidget(segment);
        buttons.addButton(segment, index);
        onChosen(*segment, *this, [this, index] {
            if (onChange) onChange(index);
        });
    }
    setSelectedIndex(0);
}

void SegmentedControl::setSelectedIndex(int index) {
    if (QAbstractButton* const button = buttons.button(index)) showSwitched(*button, true);
    letTabReachTheChosen(buttons);
}

}  // namespace quorvel
