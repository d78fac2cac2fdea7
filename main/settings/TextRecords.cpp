#include "main/settings/TextRecords.hpp"

#include <algorithm>
#include <array>

#include "platform/Text.hpp"

namespace quorvel {

std::optional<TextRecord> textRecord(const Value& value) {
    const Value::Dictionary* dictionary = value.dictionary();
    if (!dictionary) return std::nullopt;
    TextRecord record;
    for (const auto& [name, field] : *dictionary) {
        const std::string* text = field.text();
        if (!text) return std::nullopt;
        record.emplace(name, *text);
    }
    return record;
}

std::vector<TextRecord> textRecords(const std::optional<Value>& value) {
    const Value::Array* array = value ? value->array() : nullptr;
    if (!array) return {};
    std::vector<TextRecord> records;
    records.reserve(array->size());
    for (const Value& element : *array) {
        std::optional<TextRecord> record = textRecord(element);
        if (!record) return {};
        records.push_back(std::move(*record));
    }
    return records;
}

std::string fieldOf(const TextRecord& record, std::string_view name, std::string_view fallback) {
    const auto field = record.find(name);
    return field == record.end() ? std::string(fallback) : field->second;
}

bool saysYes(std::string_view text) {
    constexpr std::array<std::string_view, 4> words{"true", "yes", "1", "on"};
    return std::find(words.begin(), words.end(), lowercased(trimmed(text))) != words.end();
}

bool hasAppPath(const TextRecord& record) {
    return !trimmed(fieldOf(record, "appPath", "")).empty();
}

}  // namespace quorvel
