#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "main/interface/AppEditSheet.hpp"
#include "main/interface/AppIcons.hpp"
#include "main/interface/FrontWindow.hpp"
#include "main/interface/WrappedLabel.hpp"
#include "main/settings/Placement.hpp"
#include "main/settings/Settings.hpp"
#include "main/shell/SettingsHost.hpp"
#include "platform/Desktop.hpp"

namespace quorvel {

/// Owns the settings window: the applications, a card for each display, what is common to all, and
/// a line that says what is amiss. Every control writes to the store at once, then the program
/// reloads and the column is built anew from the store, which is the only truth.
class SettingsWindowController final : public QObject {
public:
    /// The host outlives it.
    SettingsWindowController(const Desktop& desktop, SettingsHost& controller, FrontWindow front);
    ~SettingsWindowController() override;

    /// Builds the window the first time, and brings it to the front with what is stored now. It
    /// stays as it is while it is closed.
    void show();

    /// Null before the first `show`.
    QWidget* settingsWindow() const { return window.get(); }

private:
    // What the controls do.
    void addBindingTapped() { addBinding(nullptr); }
    void removeSelectedBinding();
    void rosterSelectionChanged(std::size_t index);
    void rosterEditTapped(std::size_t index);
    void dwellChanged(int value);
    void dwellReleased();
    void animationChanged();
    void loginChanged();
    void restoreDefaults();
    void assignMenuItemChosen(const std::string& appPath);
    void forgetDisplay(const std::string& displayRef);

    void buildWindow();
    void buildSharedControls();
    /// As the palette says.
    void colourButtons();
    void rebuildSections();
    void addSection(QWidget* section);
    /// Where the keyboard is, in a form that outlives a rebuild.
    struct FocusPlace {
        QString name;
        std::ptrdiff_t position = 0;    ///< among all that Tab stops at
        std::ptrdiff_t occurrence = 0;  ///< among those of the same name
        std::optional<Slot> slot;       ///< in the picture of a display
    };
    std::optional<FocusPlace> focusPlace() const;
    void restoreFocus(const FocusPlace& place);
    /// What Tab stops at in the sections, as they are read.
    std::vector<QWidget*> tabStops() const;
    QWidget* appsPane(const std::vector<AppBinding>& bindings);
    QLayout* rosterRow(const AppBinding& app, std::size_t index);
    void addCards(const std::vector<AppBinding>& bindings);
    QWidget* generalPane();
    QWidget* titledPane(const QString& title, const QString& subtitle, const QString& icon,
                        QWidget* body);
    void loadGeneralControls();

    /// `then` receives the path of what was added.
    void addBinding(std::function<void(const std::string& appPath)> then);
    void appendBinding(const std::string& appPath);
    void presentSheet(const std::string& appPath, const std::string& displayRef,
                      const AppEditSheet::Arrival& arrival);
    void present(QDialog& sheet) const;
    void presentAssignMenu(const std::string& displayRef, const Slot& slot);

    void reportBindingHealth();
    void report(const QString& text);
    /// What could not be stored is said with the next report.
    void stored(bool succeeded) { writeFailed = writeFailed || !succeeded; }

    bool eventFilter(QObject* watched, QEvent* event) override;

    void displaysChanged();
    void keepOnScreen();

    Desktop desktop;
    SettingsHost& controller;
    FrontWindow front;
    Settings settings;
    AppIcons icons;

    std::unique_ptr<QWidget> window;
    QToolButton* addButton = nullptr;
    QToolButton* removeButton = nullptr;
    QScrollArea* scroll = nullptr;
    QVBoxLayout* sectionStack = nullptr;
    std::optional<std::size_t> selectedBindingIndex;  ///< of the stored bindings
    std::vector<QRadioButton*> rosterSelectionButtons;
    std::optional<std::pair<std::string, Slot>> pendingAssignTarget;  ///< while the menu is open
    QSlider* dwellSlider = nullptr;
    QLabel* dwellValue = nullptr;
    QComboBox* animationPopup = nullptr;
    QCheckBox* loginCheckbox = nullptr;
    WrappedLabel* status = nullptr;
    QWidget* statusDivider = nullptr;

    std::vector<QWidget*> sections;  ///< in the stack, from the top
    bool writeFailed = false;

    Lifetime life;
    Subscription screenObserver;
};

}  // namespace quorvel
