#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Defaults.hpp"

namespace quorvel {

/// Preferences in memory, with their contents and the order of the removals open to a test.
class MemoryDefaults : public Defaults {
public:
    std::map<std::string, Value, std::less<>> values;
    std::map<std::string, Value, std::less<>> presets;
    std::map<std::string, Value::Dictionary, std::less<>> otherDomains;
    std::vector<std::string> removals;  ///< every key that a removal was asked for, in order
    bool refusesWrites = false;
    int writeCount = 0;

    std::optional<Value> object(std::string_view key) const override { return in(values, key); }

    bool apply(const std::vector<DefaultsChange>& changes) override {
        for (const DefaultsChange& change : changes) {
            if (!change.value) removals.push_back(change.key);
        }
        if (refusesWrites) return false;
        ++writeCount;
        for (const auto& [key, value] : changes) {
            if (value) {
                values.insert_or_assign(key, *value);
            } else {
                values.erase(key);
            }
        }
        return true;
    }

    bool areTooLarge(const std::vector<DefaultsChange>&) const override { return false; }

    Value::Dictionary persistentDomain(std::string_view domain) const override {
        return in(otherDomains, domain).value_or(Value::Dictionary{});
    }

    std::optional<Value> preset(std::string_view key) const override { return in(presets, key); }

private:
    template <class Map>
    static std::optional<typename Map::mapped_type> in(const Map& map, std::string_view key) {
        const auto found = map.find(key);
        if (found == map.end()) return std::nullopt;
        return found->second;
    }
};

}  // namespace quorvel
