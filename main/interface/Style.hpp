#pragma once

#include <QColor>
#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QString>
#include <QWidget>

/// What the windows have in common. Sizes are device-independent pixels; colours follow the
/// desktop's palette, light or dark.
namespace quorvel::Style {

enum class Colour {
    label,
    secondaryLabel,
    tertiaryLabel,
    separator,
    underPage,
    red,
    green,
    orange,
    accent
};

bool isDark(const QPalette& palette);

QColor colour(Colour role, const QPalette& palette);

/// The desktop's font in this size.
QFont font(int pixelSize, QFont::Weight weight = QFont::Normal);

/// A label of plain text, whatever its text looks like; it follows changes of the palette.
QLabel* label(const QString& text, int pixelSize, Colour role = Colour::label,
              QFont::Weight weight = QFont::Normal);

/// Of 11 pixels in the secondary colour, wrapped to at most this width into lines of about the same
/// length.
QLabel* caption(const QString& text, int maxWidth = 400);

/// A push button of the small size, no wider than its title needs.
QPushButton* smallButton(const QString& title);

/// Of a dialog that can only be closed: neither minimised nor maximised.
Qt::WindowFlags sheetFlags();

/// A horizontal line.
QWidget* separator();

}  // namespace quorvel::Style
