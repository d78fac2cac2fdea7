#include "main/interface/PlainToolTip.hpp"

#include <QTextBoundaryFinder>
#include <QToolTip>

namespace quorvel {
namespace {

/// A run of letters without a blank is wrapped nowhere: gives it places. Cuts short what nobody
/// would read to its end.
QString breakable(const QString& text) {
    constexpr int longestRun = 40;
    constexpr qsizetype longestText = 1000;
    constexpr QChar zeroWidthSpace(0x200B);
    QString result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype from = 0;
    int run = 0;
    while (finder.toNextBoundary() > 0) {
        const QString grapheme = text.mid(from, finder.position() - from);
        from = finder.position();
        if (from > longestText) return result + QStringLiteral("…");
        result += grapheme;
        run = grapheme.front().isSpace() ? 0 : run + 1;
        if (run < longestRun) continue;
        result += zeroWidthSpace;
        run = 0;
    }
    return result;
}

}  // namespace

void showPlainToolTip(const QHelpEvent& event, QWidget& widget, const QString& text,
                      const QRect& area) {
    const QString body =
        breakable(text).toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    QToolTip::showText(event.globalPos(), QStringLiteral("<qt>%1</qt>").arg(body), &widget, area);
}

}  // namespace quorvel
