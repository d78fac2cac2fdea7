#include "main/interface/IndicatorStyle.hpp"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include "main/interface/Style.hpp"

namespace quorvel {

void IndicatorStyle::install() {
    if (QApplication::style()->name() == QStringLiteral("fusion")) {
        QApplication::setStyle(new IndicatorStyle);
    }
}

void IndicatorStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isRadio = element == PE_IndicatorRadioButton;
    if (!isRadio && element != PE_IndicatorCheckBox) return;
    const bool showsFocus =
        option->state.testFlag(State_HasFocus) && option->state.testFlag(State_KeyboardFocusChange);
    if (showsFocus || !Style::isDark(option->palette)) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (!option->state.testFlag(State_Enabled)) painter->setOpacity(0.4);
    painter->setPen(Style::colour(Style::Colour::tertiaryLabel, option->palette));
    painter->setBrush(Qt::NoBrush);
    const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isRadio) {
        painter->drawEllipse(frame);
    } else {
        painter->drawRect(frame);
    }
    painter->restore();
}

}  // namespace quorvel
