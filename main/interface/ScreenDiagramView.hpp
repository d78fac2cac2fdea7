#pragma once

#include <QIcon>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "main/settings/SettingsLayout.hpp"

namespace quorvel {

/// The picture of a display: its corners, its side edges and its bottom, taken or free, each one to
/// click. Its geometry has y growing upwards; it is turned over for painting and for the mouse.
class ScreenDiagramView final : public QWidget {
public:
    /// A place that can be clicked.
    struct Target {
        Slot slot;
        const Assignment* assignment = nullptr;  ///< into the card; null for a free place
        Rect frame;
    };

    explicit ScreenDiagramView(QWidget* parent = nullptr);

    std::function<QIcon(const std::string& appPath)> iconForApp;        ///< may be absent
    std::function<std::string(const std::string& appPath)> nameForApp;  ///< may be absent
    /// What a click on a place does; it may take the view away.
    std::function<void(const Slot&, const std::optional<Assignment>&)> onSlot;

    void setCard(std::optional<DisplayCard> shown);
    const std::optional<DisplayCard>& card() const { return shownCard; }

    /// Where a place is in the picture of the display that fills `in`.
    static Rect frame(const Slot& slot, const Rect& in,
                      std::optional<TuckEdge> edge = std::nullopt);
    /// How far outside its frame a place can still be hit.
    static double hitSlop(const Rect& in);

    /// In the order in which they are hit.
    std::vector<Target> targets() const;
    std::optional<std::size_t> targetAt(const QPointF& position) const;
    /// In the coordinates of the widget.
    QRectF onWidget(const Rect& rect) const;
    /// "Top left corner, Firefox", "Left side, free".
    QString nameOf(const Target& target) const;
    /// As a click does.
    void activate(std::size_t index);

    /// Where the keys are, while the picture has the keyboard.
    std::optional<std::size_t> focusedTarget() const;
    void focusTarget(std::size_t index);
    /// Where the keys are, or would be as soon as the picture gets the keyboard.
    std::optional<Slot> currentSlot() const;
    void setCurrentSlot(const Slot& slot);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    Rect drawingRect() const;
    void moveFocus(int key);
    void tellFocus();

    std::optional<DisplayCard> shownCard;
    std::optional<std::size_t> current;  ///< of the targets
    bool isPressed = false;
};

}  // namespace quorvel
