#include "main/shell/LoginItem.hpp"

#include "platform/Text.hpp"

namespace quorvel::LoginItem {
namespace {

std::optional<LoginItemError> asError(const std::optional<std::string>& reason) {
    if (!reason) return std::nullopt;
    return LoginItemError{reason};
}

}  // namespace

bool isInStableLocation(const LoginItemService& service, const Files& files) {
    const std::string path = service.programPath();
    if (path.find("/AppTranslocation/") != std::string::npos) return false;
    return !files.isOnReadOnlyVolume(path).value_or(false);
}

std::optional<LoginItemError> setEnabled(bool enabled, LoginItemService& service) {
    const LoginItemStatus before = service.status();
    if (!enabled) {
        if (before == LoginItemStatus::notRegistered) return std::nullopt;
        return asError(service.unregisterItem());
    }
    if (before != LoginItemStatus::enabled) {
        if (auto error = asError(service.registerItem())) return error;
    }
    if (service.status() == LoginItemStatus::requiresApproval) {
        return LoginItemError{
            "macOS is holding this back. Open System Settings → General → Login Items and allow "
            "Quorvel."};
    }
    return std::nullopt;
}

void registerOnFirstLaunch(const Settings& settings, LoginItemService& service, const Files& files,
                           Log& log) {
    if (settings.boolForKey(Keys::didOfferLoginItem)) return;
    if (!isInStableLocation(service, files)) {
        log.line(formatted("Quorvel: not registering for login yet — running from %@",
                           service.programPath()));
        return;
    }
    if (!settings.defaults->setObject(Keys::didOfferLoginItem, true)) return;
    if (const auto error = setEnabled(true, service)) {
        log.line(formatted("Quorvel: could not register to open at login — %@",
                           error->errorDescription.value_or("")));
    } else {
        log.line("Quorvel: registered to open at login");
    }
}

}  // namespace quorvel::LoginItem
