#pragma once

#include <gmock/gmock.h>

#include <QTest>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "main/interface/AppEditSheet.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/support/FakeSettingsHost.hpp"
#include "tests/views/KeyPresses.hpp"

namespace quorvel {

using Arrival = AppEditSheet::Arrival;

inline const std::string editor = "/usr/share/applications/editor.desktop";
inline const std::string mail = "/opt/Mail.app";

/// A sheet for an installed application with a shortcut, over one display.
class AppEditSheetTest : public testing::Test {
protected:
    AppEditSheetTest() {
        desktop.install(editor, "Text <b>Editor</b>");
        display = *desktop.screens.screens().front().uuid;
        displayName = desktop.screens.screens().front().localizedName;
        settings.setAppBindings({{mail, "command,M"}, {editor, "control,option,K"}});
        writesBefore = desktop.defaults.writeCount;
    }

    AppEditSheet& open(const std::string& displayRef, Arrival arrival = Arrival::edit(),
                       const std::string& appPath = editor) {
        sheet = std::make_unique<AppEditSheet>(
            settings, appPath, displayRef, std::move(arrival), host,
            AppEditSheet::Platform{desktop.screens, desktop.hotKeys, desktop.applications,
                                   desktop.catalog},
            icons, [this] { ++doneCount; });
        sheet->show();
        if (!QTest::qWaitForWindowActive(sheet.get())) ADD_FAILURE() << "not active";
        return *sheet;
    }

    template <class Widget>
    Widget* find(const char* name) {
        return static_cast<Widget*>(sheet->findChild<QWidget*>(QString::fromUtf8(name)));
    }
    SegmentedControl& edges() { return *find<SegmentedControl>("edgeState"); }
    SegmentedControl& halves() { return *find<SegmentedControl>("edgeHalfControl"); }
    ShortcutRecorderView& recorder() { return *find<ShortcutRecorderView>("recorder"); }
    QCheckBox& autoTuck() { return *find<QCheckBox>("autoTuckCheckbox"); }
    QPushButton& tuckNow() { return *find<QPushButton>("tuckNowButton"); }
    std::string status() { return find<QLabel>("status")->text().toStdString(); }
    std::string titleText() { return find<QLabel>("title")->text().toStdString(); }
    QRadioButton& cornerOff() { return *find<QRadioButton>("cornerOff"); }
    QRadioButton* corner(const char* name) {
        for (QRadioButton* button : sheet->findChildren<QRadioButton*>()) {
            if (button->accessibleName() == QString::fromUtf8(name) + " corner") return button;
        }
        return nullptr;
    }
    QPushButton* button(const char* title) {
        for (QPushButton* button : sheet->findChildren<QPushButton*>()) {
            if (button->text() == QString::fromUtf8(title)) return button;
        }
        return nullptr;
    }
    bool showsText(const char* text) {
        for (const QLabel* label : sheet->findChildren<QLabel*>()) {
            if (label->text() == QString::fromUtf8(text)) return true;
        }
        return false;
    }
    void choose(SegmentedControl& control, const char* title) {
        for (QPushButton* segment : control.findChildren<QPushButton*>()) {
            if (segment->text() == QString::fromUtf8(title)) {
                QTest::mouseClick(segment, Qt::LeftButton);
            }
        }
    }
    void record(Qt::KeyboardModifiers modifiers, const std::string& keyName) {
        QTest::mouseClick(&recorder(), Qt::LeftButton);
        pressKey(recorder(), Qt::Key_unknown, modifiers, scanCodeOf(keyName));
    }
    std::string storedHotKey(const std::string& appPath = editor) {
        for (const AppBinding& binding : settings.appBindings()) {
            if (binding.appPath == appPath) return binding.hotKey;
        }
        return "no binding";
    }
    int writes() const { return desktop.defaults.writeCount - writesBefore; }

    SimulatedDesktop desktop;
    Settings settings{desktop.defaults};
    FakeSettingsHost host;
    AppIcons icons{desktop.catalog, desktop.files};
    std::string display;
    std::string displayName;
    int doneCount = 0;
    int writesBefore = 0;
    std::unique_ptr<AppEditSheet> sheet;
};

}  // namespace quorvel
