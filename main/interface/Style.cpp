#include "main/interface/Style.hpp"

#include <QApplication>
#include <QEvent>
#include <QFrame>

namespace quorvel::Style {
namespace {

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](float x, float y) {
        return static_cast<float>(x * (1 - share) + y * share);
    };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                            mix(a.blueF(), b.blueF()));
}

class ColouredLabel final : public QLabel {
public:
    ColouredLabel(const QString& text, Colour role) : QLabel(text), role(role) {
        setTextFormat(Qt::PlainText);
        setColour();
    }

protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        // That of the application: one's own changes by what is done here.
        if (event->type() == QEvent::ApplicationPaletteChange) setColour();
    }

private:
    void setColour() {
        if (role == Colour::label) return;
        QPalette own = palette();
        own.setColor(QPalette::WindowText, colour(role, QApplication::palette()));
        setPalette(own);
    }

    Colour role;
};

}  // namespace

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
            return mixed(text, ground, 0.5);
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
    result->setMaximumWidth(maxWidth);
    result->setMinimumWidth(qMin(maxWidth, result->fontMetrics().horizontalAdvance(text) + 2));
    return result;
}

QWidget* separator() {
    auto* const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setFixedHeight(1);
    QPalette palette = line->palette();
    palette.setColor(QPalette::WindowText, colour(Colour::separator, QApplication::palette()));
    line->setPalette(palette);
    return line;
}

}  // namespace quorvel::Style
