#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QString>
#include <string>

#include "main/shortcuts/HotKeySpec.hpp"

namespace quorvel {

/// Where the simulated keyboard has this key.
inline quint32 scanCodeOf(const std::string& keyName) {
    return virtualKeyCodes().at(keyName) + 8;
}

/// A place of the keyboard that no shortcut can name.
inline constexpr quint32 unnamedScanCode = 5000;

struct PressResult {
    bool wasOverridden = false;  ///< no menu command gets it
    bool wasAccepted = false;    ///< nor does the window around
};

/// Presses a key as the window server tells it: first asking whether somebody needs it more than
/// the shortcuts, then as a press, and a release.
inline PressResult pressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers,
                            quint32 scanCode, bool isAutoRepeat = false) {
    const auto send = [&](QEvent::Type type) {
        QKeyEvent event(type, key, modifiers, scanCode, 0, 0, QString(), isAutoRepeat);
        event.setAccepted(type != QEvent::ShortcutOverride);
        QApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    };
    PressResult result;
    result.wasOverridden = send(QEvent::ShortcutOverride);
    result.wasAccepted = send(QEvent::KeyPress);
    if (!isAutoRepeat) send(QEvent::KeyRelease);
    return result;
}

}  // namespace quorvel
