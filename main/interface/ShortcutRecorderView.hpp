#pragma once

#include <QAbstractButton>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/HotKeys.hpp"

namespace quorvel {

/// A field that records one key combination, by the places of the keys. A click starts it; so does
/// Space, or Return where the keyboard led here. The next key press ends it, and so does everything
/// that takes the keyboard away. While it records, every key press is its own, even those that the
/// window manager holds.
class ShortcutRecorderView final : public QAbstractButton {
public:
    /// `keys` tells the places of keys and outlives the view.
    explicit ShortcutRecorderView(HotKeys& keys);
    ~ShortcutRecorderView() override;

    /// Gets what was pressed, once the recording has ended. Not called for a recording that ended
    /// without a key press.
    std::function<void(const ShortcutCapture&)> onCapture;

    /// What is shown while not recording; empty at first.
    void setDisplayText(const QString& text);
    const QString& displayText() const { return shownText; }

    bool isRecording() const { return recording; }

    QSize sizeHint() const override { return {140, 30}; }

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent*) override {}
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void startRecording();
    void endRecording();
    void record(const QKeyEvent& event);
    void tellName();

    HotKeys& keys;
    QString shownText;
    bool recording = false;
    bool returnStarts = false;
    /// The key that ended a recording, as long as it may be held: its repetition is nobody's.
    std::optional<std::uint32_t> endingKey;
};

}  // namespace quorvel
