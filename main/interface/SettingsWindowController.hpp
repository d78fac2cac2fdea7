#pragma once

#include <QWidget>
#include <memory>

#include "main/interface/FrontWindow.hpp"

namespace quorvel {

/// Owns the settings window. It stays as it is while it is closed.
class SettingsWindowController {
public:
    explicit SettingsWindowController(FrontWindow front);

    /// Shows the window in front of all others, with the keyboard.
    void show();

private:
    FrontWindow front;
    std::unique_ptr<QWidget> window;
};

}  // namespace quorvel
