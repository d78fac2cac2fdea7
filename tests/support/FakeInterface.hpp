#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "main/shell/Interface.hpp"

namespace quorvel {

/// The windows of the program as a record of what was asked of them. The user answers alerts by
/// `answer`; without one they press the last button.
class FakeInterface final : public Interface {
public:
    std::vector<Alert> alerts;
    int settingsShown = 0;
    std::vector<std::string> prompts;
    std::vector<Menu> menus;
    bool alertIsUp = false;

    /// Called while the alert is up; returns the index of the button that is pressed.
    std::function<int(const Alert&)> answer;

    int runAlert(const Alert& alert) override {
        alerts.push_back(alert);
        alertIsUp = true;
        dismissed = false;
        const int last = static_cast<int>(alert.buttons.size()) - 1;
        const int pressed = answer ? answer(alert) : last;
        alertIsUp = false;
        return alertFirstButtonReturn + (dismissed ? last : pressed);
    }

    void dismissAlert() override { dismissed = true; }
    void showSettings(SettingsHost&) override { ++settingsShown; }
    void popUpMenu(const Menu& menu) override { menus.push_back(menu); }
    void showPrompt(const std::string& reason, std::function<void()>) override {
        prompts.push_back(reason);
    }

private:
    bool dismissed = false;
};

}  // namespace quorvel
