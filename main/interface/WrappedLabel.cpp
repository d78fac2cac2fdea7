#include "main/interface/WrappedLabel.hpp"

#include <QPainter>
#include <QTextLayout>

#include "main/interface/PlainToolTip.hpp"

namespace quorvel {

WrappedLabel::WrappedLabel(int maxLines, int pixelSize, Style::Colour role, QFont::Weight weight,
                           Qt::TextElideMode elide)
    : maxLines(maxLines), role(role), elide(elide) {
    setTextFormat(Qt::PlainText);
    setFont(Style::font(pixelSize, weight));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    // What tells layouts that the height depends on the width.
    setWordWrap(maxLines > 1);
}

QSize WrappedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().lineSpacing()};
}

QSize WrappedLabel::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

int WrappedLabel::heightForWidth(int width) const {
    const auto lines = static_cast<int>(linesWithin(width).size());
    return qMax(1, lines) * fontMetrics().lineSpacing();
}

bool WrappedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && linesWithin(width()).join(QString()).contains(u'…') &&
        !text().contains(u'…')) {
        showPlainToolTip(*static_cast<QHelpEvent*>(event), *this, text(), rect());
        return true;
    }
    return QLabel::event(event);
}

void WrappedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(Style::colour(role, palette()));
    const int lineHeight = fontMetrics().lineSpacing();
    const QStringList lines = linesWithin(width());
    const auto count = static_cast<int>(lines.size());
    int top = (height() - count * lineHeight) / 2;
    for (const QString& line : lines) {
        painter.drawText(QRect(0, top, width(), lineHeight),
                         Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, line);
        top += lineHeight;
    }
}

QStringList WrappedLabel::linesWithin(int width) const {
    // A name may hold line breaks; none of them is meant as one.
    QString whole = text();
    whole.replace(u'\n', u' ');
    QStringList lines;
    QTextLayout layout(whole, font(), this);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == maxLines) {
            lines << fontMetrics().elidedText(whole.mid(line.textStart()), elide, width);
            break;
        }
        lines << whole.mid(line.textStart(), line.textLength());
    }
    layout.endLayout();
    return lines;
}

}  // namespace quorvel
