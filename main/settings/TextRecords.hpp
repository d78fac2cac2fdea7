#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Value.hpp"

namespace quorvel {

/// One stored record: field name → text.
using TextRecord = std::map<std::string, std::string, std::less<>>;

/// A dictionary of texts; nothing for any other value, or when one entry is no text.
std::optional<TextRecord> textRecord(const Value& value);

/// An array of text dictionaries, in order; empty for anything else, or when one element is
/// malformed.
std::vector<TextRecord> textRecords(const std::optional<Value>& value);

/// The text of a field, exactly as stored; `fallback` where the record does not have it.
std::string fieldOf(const TextRecord& record, std::string_view name, std::string_view fallback);

/// Whether a stored text switches something on: "true", "yes", "1" or "on", in any case and
/// spacing.
bool saysYes(std::string_view text);

/// Whether the record names an application: its path has more than white space.
bool hasAppPath(const TextRecord& record);

}  // namespace quorvel
