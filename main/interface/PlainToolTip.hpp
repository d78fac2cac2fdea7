#pragma once

#include <QHelpEvent>
#include <QString>
#include <QWidget>

namespace quorvel {

/// Shows a text as it stands, whatever it looks like, wrapped so that it fits on the screen. It
/// goes when the cursor leaves `area`, in the coordinates of the widget.
void showPlainToolTip(const QHelpEvent& event, QWidget& widget, const QString& text,
                      const QRect& area);

}  // namespace quorvel
