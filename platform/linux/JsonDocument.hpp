#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Value.hpp"

namespace quorvel::native {

/// A JSON object whose members can be read and replaced one by one. What is not replaced keeps its
/// text, character by character, and its place, also where `Value` could not express it.
/// Only the blanks between its tokens go where the whole would be too large with them.
class JsonDocument {
public:
    static constexpr std::size_t largest = std::size_t{8} << 20;
    static constexpr int deepest = 100;

    /// An object without members.
    JsonDocument() = default;

    /// Nothing when the text is no JSON object (or nested deeper than `deepest`); why, in `error`.
    /// Blank text is an object without members.
    static std::optional<JsonDocument> parse(std::string_view text, std::string& error);

    /// Null counts as absent, at every level. An integer beyond 64 bits is a real. Where a key
    /// stands several times the last one counts.
    std::optional<Value> value(std::string_view key) const;
    Value::Dictionary values() const;

    bool contains(std::string_view key) const;

    /// False when JSON cannot express the key or the value; why, in `error`.
    bool set(std::string_view key, const Value& value, std::string& error);
    void remove(std::string_view key);

    /// With an indentation that pleases the eye; without any blanks where it would otherwise be
    /// larger than `largest`. It may be even then.
    std::string text() const;

private:
    struct Member {
        std::string key;
        std::string keyText;
        std::string valueText;
        std::optional<Value> value;
    };

    std::vector<Member> members;
};

}  // namespace quorvel::native
