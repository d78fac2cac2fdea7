#pragma once

#include <QAbstractButton>
#include <QSignalBlocker>

namespace quorvel {

/// Calls `act(isOn)` whenever the user switches the button. Not by `clicked`, which stays away when
/// it is an assistive program that switches it.
template <class Action>
void onSwitched(QAbstractButton& button, QObject& receiver, Action act) {
    QObject::connect(&button, &QAbstractButton::toggled, &receiver, act);
}

/// The same for one of an exclusive group: `act()` whenever it is chosen.
template <class Action>
void onChosen(QAbstractButton& button, QObject& receiver, Action act) {
    onSwitched(button, receiver, [act](bool isOn) {
        if (isOn) act();
    });
}

/// Shows what is so; no choice of the user.
inline void showSwitched(QAbstractButton& button, bool isOn) {
    const QSignalBlocker quiet(&button);
    button.setChecked(isOn);
}

}  // namespace quorvel
