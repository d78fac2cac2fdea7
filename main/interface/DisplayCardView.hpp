#pragma once

#include <QIcon>
#include <QWidget>
#include <functional>
#include <string>

#include "main/settings/SettingsLayout.hpp"

namespace quorvel {

/// One display in the settings: its name, its picture and the list of what is assigned on it. It
/// only calls the functions it is given, and any of them may take it away.
class DisplayCardView final : public QWidget {
public:
    using IconForApp = std::function<QIcon(const std::string& appPath)>;  ///< null: it has none
    using NameForApp = std::function<std::string(const std::string& appPath)>;
    using OnEdit = std::function<void(const Assignment&)>;
    using OnForget = std::function<void(const std::string& ref)>;
    using OnAssign = std::function<void(const std::string& ref, const Slot&)>;

    DisplayCardView(DisplayCard card, IconForApp iconForApp, NameForApp nameForApp, OnEdit onEdit,
                    OnForget onForget, OnAssign onAssign, QWidget* parent = nullptr);

    const DisplayCard card;
    const OnEdit onEdit;
    const OnForget onForget;

    /// The button of this row was pressed; nothing for a row that there is not.
    void editTapped(int tag);
    void forgetTapped();

private:
    QWidget* heading() const;
    QWidget* picture(IconForApp iconForApp, NameForApp nameForApp, OnAssign onAssign);
    QWidget* list(const NameForApp& nameForApp);
    QLayout* rowView(int index, const std::string& name);
};

}  // namespace quorvel
