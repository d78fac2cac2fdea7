#pragma once

#include "platform/LoginItemService.hpp"

namespace quorvel {

class SimulatedLoginItem : public LoginItemService {
public:
    std::string program = "/opt/quorvel/Quorvel";
    LoginItemStatus current = LoginItemStatus::notRegistered;

    /// The user switched the program off in the desktop's own start-up settings.
    bool needsApproval = false;
    std::optional<std::string> registrationError;
    std::optional<std::string> unregistrationError;

    int registerCount = 0;
    int unregisterCount = 0;

    std::string programPath() const override { return program; }
    LoginItemStatus status() const override { return current; }

    std::optional<std::string> registerItem() override {
        ++registerCount;
        if (registrationError) return registrationError;
        current = needsApproval ? LoginItemStatus::requiresApproval : LoginItemStatus::enabled;
        return std::nullopt;
    }

    std::optional<std::string> unregisterItem() override {
        ++unregisterCount;
        if (unregistrationError) return unregistrationError;
        current = LoginItemStatus::notRegistered;
        return std::nullopt;
    }
};

}  // namespace quorvel
