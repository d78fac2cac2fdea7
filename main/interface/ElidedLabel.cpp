#include "main/interface/ElidedLabel.hpp"

#include <QPainter>
#include <utility>

#include "main/interface/PlainToolTip.hpp"
#include "main/interface/TextWidth.hpp"

namespace quorvel {

QString onOneLine(QString text) {
    for (QChar& character : text) {
        const bool breaksLine = character.category() == QChar::Other_Control ||
                                character == QChar::LineSeparator ||
                                character == QChar::ParagraphSeparator;
        if (breaksLine) character = QLatin1Char(' ');
    }
    return text;
}

QString isolated(const QString& text) {
    return QChar(0x2068) + text + QChar(0x2069);
}

ElidedLabel::ElidedLabel(const QString& head, QString tail, int pixelSize, Style::Colour role,
                         QFont::Weight weight)
    : QLabel(head + tail), head(onOneLine(head)), tail(std::move(tail)), role(role) {
    setTextFormat(Qt::PlainText);
    setFont(Style::font(pixelSize, weight));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QString ElidedLabel::shownText(int width) const {
    const QString whole = line(head);
    if (sizeHint().width() <= width) return whole;
    const int room = width - textWidth(tail, font());
    const QString shownHead = fontMetrics().elidedText(head, Qt::ElideRight, room);
    if (room <= 0 || shownHead.isEmpty()) {
        return fontMetrics().elidedText(whole, Qt::ElideRight, width);
    }
    return line(shownHead);
}

QSize ElidedLabel::sizeHint() const {
    // Layouts ask many times over.
    if (!natural) natural = QSize(textWidth(line(head), font()), fontMetrics().height());
    return *natural;
}

QSize ElidedLabel::minimumSizeHint() const {
    constexpr int shortest = 60;
    const QSize whole = sizeHint();
    return {qMin(shortest, whole.width()), whole.height()};
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty()) return QLabel::event(event);
    showPlainToolTip(*static_cast<QHelpEvent*>(event), *this, toolTip(), rect());
    return true;
}

void ElidedLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) natural.reset();
    QLabel::changeEvent(event);
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    setToolTip(width() < sizeHint().width() ? text() : QString());
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(Style::colour(role, palette()));
    painter.drawText(rect(),
                     static_cast<int>(Qt::AlignLeading | Qt::AlignVCenter) |
                         static_cast<int>(Qt::TextSingleLine),
                     shownText(width()));
}

QString ElidedLabel::line(const QString& shownHead) const {
    if (tail.isEmpty() && !head.isRightToLeft()) return shownHead;
    // Or a name that runs from right to left would carry the tail along.
    return isolated(shownHead) + tail;
}

}  // namespace quorvel
