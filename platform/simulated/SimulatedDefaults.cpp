#include "platform/simulated/SimulatedDefaults.hpp"

#include <algorithm>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

std::optional<Value> found(const Value::Dictionary& in, std::string_view key) {
    const auto at = in.find(std::string(key));
    if (at == in.end()) return std::nullopt;
    return at->second;
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
}

bool isDomainName(std::string_view name) {
    return !name.empty() && name.front() != '.' && name.find("..") == std::string_view::npos &&
           std::all_of(name.begin(), name.end(), isNameCharacter);
}

}  // namespace

std::optional<Value> SimulatedDefaults::object(std::string_view key) const {
    if (unreadable) return std::nullopt;
    return found(values, key);
}

bool SimulatedDefaults::apply(const std::vector<DefaultsChange>& changes) {
    const bool isNeeded =
        std::any_of(changes.begin(), changes.end(), [this](const DefaultsChange& change) {
            return change.value || unreadable || found(values, change.key);
        });
    if (!isNeeded) return true;
    if (!canSave(changes)) return false;
    for (const auto& [key, value] : changes) {
        if (value) {
            values.insert_or_assign(key, *value);
        } else {
            values.erase(key);
        }
    }
    ++writeCount;
    return true;
}

bool SimulatedDefaults::areTooLarge(const std::vector<DefaultsChange>& changes) const {
    return std::any_of(changes.begin(), changes.end(), [this](const DefaultsChange& change) {
        return change.value && keysThatAreTooLarge.contains(change.key);
    });
}

Value::Dictionary SimulatedDefaults::persistentDomain(std::string_view domain) const {
    if (!isDomainName(domain)) return {};
    if (domain == domainName) return unreadable ? Value::Dictionary{} : values;
    const auto at = otherDomains.find(std::string(domain));
    return at == otherDomains.end() ? Value::Dictionary{} : at->second;
}

std::optional<Value> SimulatedDefaults::preset(std::string_view key) const {
    return found(presets, key);
}

bool SimulatedDefaults::canSave(const std::vector<DefaultsChange>& changes) {
    std::vector<std::string> keys;
    for (const DefaultsChange& change : changes) keys.push_back(change.key);
    const bool tooLarge = areTooLarge(changes);
    const bool fails = failsToSave || unreadable || tooLarge ||
                       std::any_of(keys.begin(), keys.end(), [this](const std::string& key) {
                           return keysThatFailToSave.contains(key);
                       });
    if (!fails) return true;
    log.line(formatted("Quorvel: could not store %@ in %@ — %@", joined(keys, ", "),
                       "/home/user/.config/" + domainName + "/defaults.json",
                       unreadable ? "Permission denied"
                       : tooLarge ? "too large"
                                  : "No space left on device"));
    return false;
}

}  // namespace quorvel
