#include "main/interface/SettingsWindowController.hpp"

#include <utility>

namespace quorvel {

SettingsWindowController::SettingsWindowController(FrontWindow front)
    : front(std::move(front)), window(std::make_unique<QWidget>()) {
    window->setWindowTitle(QStringLiteral("Quorvel"));
    window->resize(620, 600);
}

void SettingsWindowController::show() {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    front.bring(*window);
}

}  // namespace quorvel
