#pragma once

#include <QLabel>
#include <optional>

#include "main/interface/Style.hpp"

namespace quorvel {

/// With blanks for all that would break the line.
QString onOneLine(QString text);
/// Reads by its own direction, and does not change that of what stands beside it.
QString isolated(const QString& text);

/// One line of plain text, "head" and "tail". Where it does not fit, the head is cut short, then
/// the tail, and the whole text is the tool tip; it never asks for the room of all of it.
class ElidedLabel final : public QLabel {
public:
    ElidedLabel(const QString& head, QString tail, int pixelSize,
                Style::Colour role = Style::Colour::label, QFont::Weight weight = QFont::Normal);

    /// As it is drawn in this width.
    QString shownText(int width) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString line(const QString& shownHead) const;

    QString head;  ///< without line breaks
    QString tail;
    Style::Colour role;
    mutable std::optional<QSize> natural;  ///< of the whole text, once it was asked for
};

}  // namespace quorvel
