#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Value.hpp"

namespace quorvel {

/// The persistent preferences of this program (its own domain) and read access to those of others.
/// Nothing is cached: a read gives what is stored at that moment, also when another program wrote
/// it. A write touches its own key only and is durable when it returns.
class Defaults {
public:
    virtual ~Defaults() = default;

    /// The stored value; nothing when the key is absent or the domain cannot be read.
    virtual std::optional<Value> object(std::string_view key) const = 0;

    /// False when it could not be stored; then nothing has changed and a line has been logged.
    virtual bool setObject(std::string_view key, const Value& value) = 0;

    /// Removing an absent key succeeds without a write.
    virtual bool removeObject(std::string_view key) = 0;

    /// All of another domain; empty when it is absent, unreadable, or no valid domain name.
    virtual Value::Dictionary persistentDomain(std::string_view domain) const = 0;

    /// An administrator's preset for a key; nothing when there is none.
    virtual std::optional<Value> preset(std::string_view key) const = 0;
};

}  // namespace quorvel
