#pragma once

#include "platform/Trust.hpp"

namespace quorvel {

class SimulatedTrust final : public Trust {
public:
    bool granted = true;
    std::string reasonWhenMissing = "No window manager is running that lets windows be moved.";
    bool hasSettingsPane = false;

    /// Messages shown so far, and whether the last one is still up.
    int promptCount = 0;
    bool promptIsShown = false;
    int settingsPaneCount = 0;

    bool isTrusted() const override { return granted; }
    std::string reason() const override { return granted ? std::string() : reasonWhenMissing; }
    bool isTrustedWithPrompt() override {
        if (!granted && !promptIsShown) {
            promptIsShown = true;
            ++promptCount;
        }
        return granted;
    }
    bool openSettingsPane() override {
        if (hasSettingsPane) ++settingsPaneCount;
        return hasSettingsPane;
    }
};

}  // namespace quorvel
