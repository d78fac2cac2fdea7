#include "main/interface/TextWidth.hpp"

#include <QFontMetricsF>
#include <QHash>
#include <cmath>

namespace quorvel {

int textWidth(const QString& text, const QFont& font) {
    if (text.isEmpty()) return 0;
    // More than the largest list has, so that names that nobody shows any more do not pile up.
    constexpr qsizetype most = 2000;
    static QHash<std::pair<QFont, QString>, int> measured;
    const std::pair key(font, text);
    if (const auto known = measured.constFind(key); known != measured.cend()) return *known;
    if (measured.size() >= most) measured.clear();
    const int width = static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text)));
    measured.insert(key, width);
    return width;
}

}  // namespace quorvel
