#include "main/interface/Style.hpp"

#include <QApplication>
#include <QEvent>
#include <QFrame>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <vector>

#include "main/interface/TextWidth.hpp"

namespace quorvel::Style {
namespace {

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](float x, float y) {
        return static_cast<float>(x * (1 - share) + y * share);
    };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                            mix(a.blueF(), b.blueF()));
}

/// How many lines words of these widths take.
int linesIn(int width, const std::vector<int>& words, int blank) {
    int lines = 1;
    int used = 0;
    for (const int word : words) {
        const int needed = used == 0 ? word : used + blank + word;
        if (used > 0 && needed > width) ++lines;
        used = used > 0 && needed > width ? word : needed;
    }
    return lines;
}

/// The least width in which the text takes no more lines than in `maxWidth`: no last line of one
/// word.
int balancedWidth(const QString& text, const QFontMetrics& metrics, int maxWidth) {
    const int onOneLine = metrics.horizontalAdvance(text) + 2;
    if (onOneLine <= maxWidth) return onOneLine;
    std::vector<int> words;
    int longest = 0;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        words.push_back(metrics.horizontalAdvance(word) + 1);
        longest = qMax(longest, words.back());
    }
    const int blank = metrics.horizontalAdvance(QLatin1Char(' '));
    const int lines = linesIn(maxWidth, words, blank);
    int width = maxWidth;
    while (width > longest && linesIn(width - 1, words, blank) <= lines) --width;
    // Words are measured apart here.
    return qMin(maxWidth, width + 2);
}

class ColouredLabel final : public QLabel {
public:
    ColouredLabel(const QString& text, Colour role) : QLabel(text), role(role) {
        setTextFormat(Qt::PlainText);
        setColour();
    }

protected:
    bool event(QEvent* event) override {
        // Of a change of the application's, only windows are told as such.
        const auto type = event->type();
        if (type == QEvent::ApplicationPaletteChange || type == QEvent::PaletteChange) setColour();
        return QLabel::event(event);
    }

private:
    void setColour() {
        const QColor wanted = colour(role, QApplication::palette());
        if (role == Colour::label || palette().color(QPalette::WindowText) == wanted) return;
        QPalette own = palette();
        own.setColor(QPalette::WindowText, wanted);
        setPalette(own);
    }

    Colour role;
};

/// Styles make room for the titles of dialogs; this has what its own title takes.
class SmallButton final : public QPushButton {
public:
    explicit SmallButton(const QString& title) : QPushButton(title) {
        setFont(Style::font(11));
        setAutoDefault(false);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    // Without the style, as often as it can be: lists have hundreds, and layouts ask many times.
    QSize sizeHint() const override {
        constexpr int padding = 24;
        return {textWidth(text(), font()) + padding, heightFor(*this)};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

private:
    static int heightFor(const SmallButton& button) {
        static QFont measuredFont;
        static QPointer<const QStyle> measuredStyle;
        static int height = 0;
        if (measuredFont != button.font() || measuredStyle != button.style()) {
            measuredFont = button.font();
            measuredStyle = button.style();
            height = button.QPushButton::sizeHint().height();
        }
        return height;
    }
};

class Line final : public QFrame {
public:
    Line() { setFrameShape(QFrame::HLine); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), colour(Colour::separator, palette()));
    }
};

}  // namespace

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor colour(Colour role, const QPalette& palette) {
    const QColor text = palette.color(QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Window);
    const bool dark = isDark(palette);
    switch (role) {
        case Colour::label:
            return text;
        case Colour::secondaryLabel:
            return mixed(text, ground, 0.35);
        case Colour::tertiaryLabel:
            // Still 4.5 : 1 on either ground.
            return mixed(text, ground, 0.43);
        case Colour::separator:
            return mixed(text, ground, 0.8);
        case Colour::underPage:
            return mixed(text, ground, 0.92);
        case Colour::red:
            return dark ? QColor(0xFF, 0x6B, 0x61) : QColor(0xC4, 0x1E, 0x16);
        case Colour::green:
            return dark ? QColor(0x4C, 0xC9, 0x62) : QColor(0x2E, 0xA0, 0x43);
        case Colour::orange:
            return dark ? QColor(0xFF, 0xA0, 0x33) : QColor(0xD9, 0x73, 0x06);
        case Colour::accent:
            return palette.color(QPalette::Highlight);
    }
    return text;
}

QFont font(int pixelSize, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QLabel* label(const QString& text, int pixelSize, Colour role, QFont::Weight weight) {
    auto* const label = new ColouredLabel(text, role);
    label->setFont(font(pixelSize, weight));
    return label;
}

QLabel* caption(const QString& text, int maxWidth) {
    QLabel* const result = label(text, 11, Colour::secondaryLabel);
    result->setWordWrap(true);
    const int width = balancedWidth(text, result->fontMetrics(), maxWidth);
    result->setMaximumWidth(width);
    result->setMinimumWidth(width);
    return result;
}

QPushButton* smallButton(const QString& title) {
    return new SmallButton(title);
}

Qt::WindowFlags sheetFlags() {
    return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowCloseButtonHint;
}

QWidget* separator() {
    auto* const line = new Line;
    line->setFixedHeight(1);
    return line;
}

}  // namespace quorvel::Style
