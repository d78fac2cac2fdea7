#include "main/interface/RosterLabel.hpp"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <utility>

#include "main/interface/ElidedLabel.hpp"
#include "main/interface/PlainToolTip.hpp"
#include "main/interface/Style.hpp"
#include "main/interface/TextWidth.hpp"

namespace quorvel {
namespace {

constexpr int iconSize = 18;
constexpr int gap = 8;
constexpr int shortestName = 60;

QString absence() {
    return QStringLiteral("Not installed");
}

}  // namespace

RosterLabel::RosterLabel(Content content) : shown(std::move(content)) {
    shown.name = onOneLine(shown.name);
    setTextFormat(Qt::PlainText);
    setText(shown.name + QStringLiteral(", ") + shown.shortcut +
            (shown.isInstalled ? QString() : QStringLiteral(", ") + absence()));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    measure();
}

/// Once: layouts ask many times over.
void RosterLabel::measure() {
    nameWidth = textWidth(shown.name, Style::font(13));
    shortcutWidth = textWidth(shown.shortcut, Style::font(11));
    absenceWidth = shown.isInstalled ? 0 : textWidth(absence(), Style::font(10));
}

int RosterLabel::widthBesideName() const {
    return iconSize + gap + gap + shortcutWidth + (absenceWidth > 0 ? gap + absenceWidth : 0);
}

QSize RosterLabel::sizeHint() const {
    return {widthBesideName() + nameWidth + 1, iconSize};
}

QSize RosterLabel::minimumSizeHint() const {
    return {widthBesideName() + qMin(nameWidth, shortestName) + 1, iconSize};
}

bool RosterLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    if (width() < sizeHint().width()) {
        showPlainToolTip(*static_cast<QHelpEvent*>(event), *this, shown.name, rect());
    }
    return true;
}

void RosterLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) measure();
    QLabel::changeEvent(event);
}

void RosterLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    int at = 0;
    const auto next = [&](int length) {
        const QRect place(at, 0, length, height());
        at += length + gap;
        return QStyle::visualRect(layoutDirection(), rect(), place);
    };
    const auto draw = [&](const QString& text, int length, int pixelSize, Style::Colour role) {
        painter.setFont(Style::font(pixelSize));
        painter.setPen(Style::colour(role, palette()));
        painter.drawText(next(length),
                         static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) |
                             static_cast<int>(Qt::TextSingleLine),
                         text);
    };
    shown.icon.paint(&painter, next(iconSize));
    const int room = qMin(nameWidth + 1, width() - widthBesideName());
    const QString name = QFontMetrics(Style::font(13)).elidedText(shown.name, Qt::ElideRight, room);
    draw(isolated(name), room, 13, Style::Colour::label);
    draw(shown.shortcut, shortcutWidth, 11, Style::Colour::secondaryLabel);
    if (!shown.isInstalled) draw(absence(), absenceWidth, 10, Style::Colour::red);
}

}  // namespace quorvel
