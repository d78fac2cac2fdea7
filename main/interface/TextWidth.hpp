#pragma once

#include <QFont>
#include <QString>

namespace quorvel {

/// How wide the text is on one line, in logical pixels, rounded up. What was measured before is
/// remembered: shaping is the dearest part of building rows, and each rebuild shows the same names.
int textWidth(const QString& text, const QFont& font);

}  // namespace quorvel
