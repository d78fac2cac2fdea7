#pragma once

#include <QMenu>
#include <QMessageBox>
#include <memory>

#include "main/interface/FrontWindow.hpp"
#include "main/interface/SettingsWindowController.hpp"
#include "main/interface/ToolkitApplication.hpp"
#include "main/shell/InterfaceEntry.hpp"

namespace quorvel {

/// The windows of the program, on Qt.
class QtInterface final : public Interface {
public:
    /// Null where the toolkit does not start.
    static std::unique_ptr<QtInterface> create(const InterfaceHost& host);
    ~QtInterface() override;

    int runAlert(const Alert& alert) override;
    void dismissAlert() override;
    void showSettings(SettingsHost& host) override;
    void popUpMenu(const Menu& menu) override;
    void showPrompt(const std::string& reason, std::function<void()> closed) override;

private:
    QtInterface(const InterfaceHost& host, std::unique_ptr<ToolkitApplication> application);

    const InterfaceHost& host;
    // The application is the last to go.
    std::unique_ptr<ToolkitApplication> application;
    FrontWindow front;
    QMessageBox* alertBox = nullptr;  ///< while an alert is up
    std::unique_ptr<QMessageBox> prompt;
    std::unique_ptr<QMenu> menu;
    std::unique_ptr<SettingsWindowController> settingsWindowController;
};

}  // namespace quorvel
