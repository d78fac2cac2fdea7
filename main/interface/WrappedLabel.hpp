#pragma once

#include <QLabel>
#include <QStringList>

#include "main/interface/Style.hpp"

namespace quorvel {

/// Plain text on as many lines as it needs, up to a limit; of what does not fit "…" stands for the
/// end, or for the middle of the last line, and the tool tip shows the whole. It never widens its
/// window. Always at least one line high.
class WrappedLabel final : public QLabel {
public:
    WrappedLabel(int maxLines, int pixelSize, Style::Colour role,
                 QFont::Weight weight = QFont::Normal, Qt::TextElideMode elide = Qt::ElideRight);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return maxLines > 1; }
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QStringList linesWithin(int width) const;

    int maxLines;
    Style::Colour role;
    Qt::TextElideMode elide;
};

}  // namespace quorvel
