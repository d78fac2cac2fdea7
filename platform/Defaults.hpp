#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Value.hpp"

namespace quorvel {

/// What becomes of one key of a preferences domain.
struct DefaultsChange {
    std::string key;
    std::optional<Value> value;  ///< what it is set to; nothing removes the key

    bool operator==(const DefaultsChange&) const = default;
};

/// The persistent preferences of this program (its own domain) and read access to those of others.
/// Nothing is cached: a read gives what is stored at that moment, also when another program wrote
/// it. A write touches its own keys only and is durable when it returns.
class Defaults {
public:
    virtual ~Defaults() = default;

    /// The stored value; nothing when the key is absent or the domain cannot be read.
    virtual std::optional<Value> object(std::string_view key) const = 0;

    /// All of them in order, at once: whatever happens meanwhile, either all are stored or none.
    /// False when they could not be; then nothing has changed and a line has been logged. Where
    /// there is nothing but absent keys to remove it succeeds without a write.
    virtual bool apply(const std::vector<DefaultsChange>& changes) = 0;

    /// Whether `apply` would refuse because the domain would become too large: then trying again
    /// is of no use.
    virtual bool areTooLarge(const std::vector<DefaultsChange>& changes) const = 0;

    /// One change, as `apply`.
    bool setObject(std::string_view key, const Value& value) {
        return apply({{std::string(key), value}});
    }
    bool removeObject(std::string_view key) { return apply({{std::string(key), std::nullopt}}); }

    /// All of another domain; empty when it is absent, unreadable, or no valid domain name.
    virtual Value::Dictionary persistentDomain(std::string_view domain) const = 0;

    /// An administrator's preset for a key; nothing when there is none.
    virtual std::optional<Value> preset(std::string_view key) const = 0;
};

}  // namespace quorvel
