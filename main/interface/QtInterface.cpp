#include "main/interface/QtInterface.hpp"

#include <QCursor>
#include <utility>

#include "main/interface/AlertBox.hpp"
#include "main/interface/PopUpMenu.hpp"

namespace quorvel {

std::unique_ptr<QtInterface> QtInterface::create(const InterfaceHost& host) {
    auto application = ToolkitApplication::start(host);
    if (!application) return nullptr;
    return std::unique_ptr<QtInterface>(new QtInterface(host, std::move(application)));
}

QtInterface::QtInterface(const InterfaceHost& host, std::unique_ptr<ToolkitApplication> application)
    : host(host), application(std::move(application)), front(host.bringToFront) {}

QtInterface::~QtInterface() = default;

int QtInterface::runAlert(const Alert& alert) {
    const auto box = makeAlertBox(alert);
    front.bring(*box);
    alertBox = box.get();
    box->exec();
    alertBox = nullptr;
    return alertResponse(*box);
}

void QtInterface::dismissAlert() {
    if (alertBox != nullptr) alertBox->reject();
}

void QtInterface::showSettings(SettingsHost& controller) {
    if (!settingsWindowController) {
        settingsWindowController =
            std::make_unique<SettingsWindowController>(host.desktop, controller, front);
    }
    settingsWindowController->show();
}

void QtInterface::popUpMenu(const Menu& shown) {
    menu = makePopUpMenu(shown);
    menu->popup(QCursor::pos());
}

void QtInterface::showPrompt(const std::string& reason, std::function<void()> closed) {
    prompt = makeAlertBox({"Quorvel cannot move the windows of other programs", reason, {"OK"}});
    QObject::connect(prompt.get(), &QMessageBox::finished, prompt.get(), std::move(closed));
    prompt->show();
    front.bring(*prompt);
}

}  // namespace quorvel
