#pragma once

#include <optional>
#include <string>

namespace quorvel {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// The desktop's list of programs that open at login, as far as it concerns this program.
class LoginItemService {
public:
    virtual ~LoginItemService() = default;

    /// Absolute path of the program that opens at login; empty when the system does not tell.
    virtual std::string programPath() const = 0;

    virtual LoginItemStatus status() const = 0;

    /// Both return nothing on success, else why they failed.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

}  // namespace quorvel
