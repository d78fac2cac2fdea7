#pragma once

#include <set>

#include "platform/Defaults.hpp"
#include "platform/Log.hpp"

namespace quorvel {

/// Preferences in memory. A test plays the other programs and the administrator by changing the
/// fields at any time.
class SimulatedDefaults final : public Defaults {
public:
    explicit SimulatedDefaults(Log& log) : log(log) {}

    /// This program's own domain.
    std::string domainName = "com.tessivane.quorvel";
    Value::Dictionary values;

    /// Those of other programs, by name.
    std::map<std::string, Value::Dictionary> otherDomains;
    Value::Dictionary presets;

    // Faults: the first fails every write, the others those of these keys only.
    bool failsToSave = false;
    std::set<std::string, std::less<>> keysThatFailToSave;
    /// No write of one of these ever finds room.
    std::set<std::string, std::less<>> keysThatAreTooLarge;
    /// What is stored may not be read; writing would lose the other keys, so that fails too.
    bool unreadable = false;

    /// Writes that reached the store.
    int writeCount = 0;

    std::optional<Value> object(std::string_view key) const override;
    bool apply(const std::vector<DefaultsChange>& changes) override;
    bool areTooLarge(const std::vector<DefaultsChange>& changes) const override;
    Value::Dictionary persistentDomain(std::string_view domain) const override;
    std::optional<Value> preset(std::string_view key) const override;

private:
    bool canSave(const std::vector<DefaultsChange>& changes);

    Log& log;
};

}  // namespace quorvel
