#include "platform/linux/JsonDocument.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace quorvel::native {
namespace {

// Records keep the order of their fields.
using Json = nlohmann::ordered_json;

std::optional<Value> fromJson(const Json& json) {
    switch (json.type()) {
        case Json::value_t::boolean:
            return Value(json.get<bool>());
        case Json::value_t::number_integer:
            return Value(json.get<std::int64_t>());
        case Json::value_t::number_unsigned: {
            const auto number = json.get<std::uint64_t>();
            if (number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
                return Value(static_cast<double>(number));
            }
            return Value(static_cast<std::int64_t>(number));
        }
        case Json::value_t::number_float:
            return Value(json.get<double>());
        case Json::value_t::string:
            return Value(json.get<std::string>());
        case Json::value_t::array: {
            Value::Array array;
            for (const Json& item : json) {
                if (auto value = fromJson(item)) array.push_back(std::move(*value));
            }
            return Value(std::move(array));
        }
        case Json::value_t::object: {
            Value::Dictionary dictionary;
            for (const auto& [key, item] : json.items()) {
                if (auto value = fromJson(item)) dictionary.append(key, std::move(*value));
            }
            return Value(std::move(dictionary));
        }
        default:
            return std::nullopt;
    }
}

/// Nothing for a number that JSON has no words for.
std::optional<Json> toJson(const Value& value) {
    if (const bool* boolean = value.boolean()) return Json(*boolean);
    if (const std::int64_t* integer = value.integer()) return Json(*integer);
    if (const double* real = value.real()) {
        return std::isfinite(*real) ? std::optional<Json>(*real) : std::nullopt;
    }
    if (const std::string* text = value.text()) return Json(*text);
    if (const Value::Array* array = value.array()) {
        Json json = Json::array();
        for (const Value& item : *array) {
            auto element = toJson(item);
            if (!element) return std::nullopt;
            json.push_back(std::move(*element));
        }
        return json;
    }
    Json json = Json::object();
    for (const auto& [key, item] : *value.dictionary()) {
        auto element = toJson(item);
        if (!element) return std::nullopt;
        json[key] = std::move(*element);
    }
    return json;
}

/// Nothing when a text in it is not UTF-8.
std::optional<std::string> dumped(const Json& json) {
    try {
        return json.dump(2);
    } catch (const Json::type_error&) {
        return std::nullopt;
    }
}

/// Moves through JSON without judging it; of text that is no JSON it only promises to end.
class Scanner {
public:
    explicit Scanner(std::string_view text) : text(text) {}

    bool atEnd() const { return at >= text.size(); }

    void skipSpace() {
        while (!atEnd() && std::string_view(" \t\r\n").find(text[at]) != std::string_view::npos) {
            ++at;
        }
    }

    bool accept(char c) {
        skipSpace();
        if (atEnd() || text[at] != c) return false;
        ++at;
        return true;
    }

    /// The next string or other value, with its quotes or brackets.
    std::string_view token() {
        skipSpace();
        const std::size_t begin = at;
        int depth = 0;
        while (!atEnd()) {
            const char c = text[at];
            if (c == '"') {
                skipString();
            } else if (c == '[' || c == '{') {
                deepestSeen = std::max(deepestSeen, ++depth);
                ++at;
            } else if (c == ']' || c == '}') {
                if (depth == 0) break;
                --depth;
                ++at;
            } else if (depth == 0 &&
                       std::string_view(",: \t\r\n").find(c) != std::string_view::npos) {
                break;
            } else {
                ++at;
                continue;
            }
            if (depth == 0) break;
        }
        return text.substr(begin, at - begin);
    }

    int deepest() const { return deepestSeen; }

private:
    void skipString() {
        for (++at; !atEnd() && text[at] != '"'; ++at) {
            if (text[at] == '\\') ++at;
        }
        at = std::min(at + 1, text.size());
    }

    std::string_view text;
    std::size_t at = 0;
    int deepestSeen = 0;
};

}  // namespace

std::optional<JsonDocument> JsonDocument::parse(std::string_view text, std::string& error) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    JsonDocument document;
    Scanner outline(text);
    outline.skipSpace();
    if (outline.atEnd()) return document;
    outline.token();
    if (outline.deepest() > deepest) {
        error = "nested too deeply";
        return std::nullopt;
    }
    // The parser takes a zero byte for the end of the text; for us it is no part of JSON.
    outline.skipSpace();
    if (!outline.atEnd() || text.find('\0') != std::string_view::npos || !Json::accept(text)) {
        error = "not valid JSON";
        return std::nullopt;
    }

    Scanner scanner(text);
    if (!scanner.accept('{')) {
        error = "not a JSON object";
        return std::nullopt;
    }
    while (!scanner.accept('}')) {
        Member member;
        member.keyText = scanner.token();
        scanner.accept(':');
        member.valueText = scanner.token();
        scanner.accept(',');
        member.key = Json::parse(member.keyText).get<std::string>();
        member.value = fromJson(Json::parse(member.valueText));
        document.members.push_back(std::move(member));
    }
    return document;
}

std::optional<Value> JsonDocument::value(std::string_view key) const {
    const auto found = std::find_if(members.rbegin(), members.rend(),
                                    [&](const Member& member) { return member.key == key; });
    return found != members.rend() ? found->value : std::nullopt;
}

Value::Dictionary JsonDocument::values() const {
    Value::Dictionary dictionary;
    for (const Member& member : members) {
        if (member.value) {
            dictionary.insert_or_assign(member.key, *member.value);
        } else {
            dictionary.erase(member.key);
        }
    }
    return dictionary;
}

bool JsonDocument::contains(std::string_view key) const {
    return std::any_of(members.begin(), members.end(),
                       [&](const Member& member) { return member.key == key; });
}

bool JsonDocument::set(std::string_view key, const Value& value, std::string& error) {
    const auto json = toJson(value);
    if (!json) {
        error = "a number that is not finite cannot be stored";
        return false;
    }
    const auto keyText = dumped(Json(std::string(key)));
    const auto valueText = dumped(*json);
    if (!keyText || !valueText) {
        error = "a text that is not UTF-8 cannot be stored";
        return false;
    }
    Scanner scanner(*valueText);
    scanner.token();
    if (scanner.deepest() >= deepest) {
        error = "nested too deeply";
        return false;
    }
    Member member{std::string(key), *keyText, {}, value};
    // One level further in than where it was written out.
    for (const char c : *valueText) {
        member.valueText += c;
        if (c == '\n') member.valueText += "  ";
    }

    const auto hasKey = [&](const Member& other) { return other.key == key; };
    const auto place = std::find_if(members.begin(), members.end(), hasKey);
    if (place == members.end()) {
        members.push_back(std::move(member));
        return true;
    }
    *place = std::move(member);
    members.erase(std::remove_if(place + 1, members.end(), hasKey), members.end());
    return true;
}

void JsonDocument::remove(std::string_view key) {
    std::erase_if(members, [&](const Member& member) { return member.key == key; });
}

std::string JsonDocument::text() const {
    if (members.empty()) return "{}\n";
    std::string text = "{";
    for (const Member& member : members) {
        text += &member == &members.front() ? "\n  " : ",\n  ";
        text += member.keyText + ": " + member.valueText;
    }
    return text + "\n}\n";
}

}  // namespace quorvel::native
