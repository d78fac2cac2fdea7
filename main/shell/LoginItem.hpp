#pragma once

#include <optional>
#include <string>

#include "main/settings/Settings.hpp"
#include "platform/Files.hpp"
#include "platform/Log.hpp"
#include "platform/LoginItemService.hpp"

namespace quorvel {

struct LoginItemError {
    std::optional<std::string> errorDescription;  ///< for the user to read

    bool operator==(const LoginItemError&) const = default;
};

/// Whether this program opens at login: offered once by itself, then as the user wants it.
namespace LoginItem {

/// False where the program will not be found again at the next login, as on a mounted image.
bool isInStableLocation(const LoginItemService& service, const Files& files);

/// Nothing on success. An error does not mean that nothing was done: the program may be registered
/// and switched off by the user.
std::optional<LoginItemError> setEnabled(bool enabled, LoginItemService& service);

/// At the first launch from a stable place, and never again after that; an outcome is one line in
/// the log. Where the store refuses to note it, nothing is registered, so that what the user
/// undoes is not done again at every launch.
void registerOnFirstLaunch(const Settings& settings, LoginItemService& service, const Files& files,
                           Log& log);

}  // namespace LoginItem
}  // namespace quorvel
