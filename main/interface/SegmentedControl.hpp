#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace quorvel {

/// Makes Tab lead to the button of an exclusive group that is on, and to no other one of it. For
/// whenever the program itself has switched them: the toolkit follows the user only.
void letTabReachTheChosen(const QButtonGroup& group);

/// A row of joined buttons, exactly one of which is chosen: by click, or by the arrow keys.
class SegmentedControl final : public QWidget {
public:
    /// The name is for those who cannot see what the control is about.
    SegmentedControl(const QString& name, const QStringList& titles);

    /// Called when the user has chosen; not for `setSelectedIndex`.
    std::function<void(int index)> onChange;

    int selectedIndex() const { return buttons.checkedId(); }
    void setSelectedIndex(int index);

private:
    QButtonGroup buttons;
};

}  // namespace quorvel
