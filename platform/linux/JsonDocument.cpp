#include "platform/linux/JsonDocument.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <utility>

namespace quorvel::native {
namespace {

// Records keep the order of their fields.
using Json = nlohmann::ordered_json;

/// Makes a value of what the parser meets. Where a name stands several times in an object, the last
/// one counts. Names are found in constant time: a damaged or foreign file may hold very many.
class ValueBuilder {
public:
    /// Nothing for null.
    std::optional<Value> result;

    bool null() { return add(std::nullopt); }
    bool boolean(bool boolean) { return add(Value(boolean)); }
    bool number_integer(std::int64_t number) { return add(Value(number)); }
    bool number_unsigned(std::uint64_t number) {
        constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
        return number > largest ? add(Value(static_cast<double>(number)))
                                : add(Value(static_cast<std::int64_t>(number)));
    }
    bool number_float(double number, const std::string&) { return add(Value(number)); }
    bool string(std::string& text) { return add(Value(std::move(text))); }
    bool binary(Json::binary_t&) { return false; }
    bool parse_error(std::size_t, const std::string&, const Json::exception&) { return false; }

    bool start_array(std::size_t) {
        open.emplace_back();
        return true;
    }
    bool end_array() {
        Value::Array array = std::move(open.back().items);
        open.pop_back();
        return add(Value(std::move(array)));
    }
    bool start_object(std::size_t) {
        open.emplace_back().isObject = true;
        return true;
    }
    bool key(std::string& name) {
        Open& object = open.back();
        const auto [place, isNew] = object.places.emplace(name, object.fields.size());
        if (isNew) object.fields.emplace_back(std::move(name), std::nullopt);
        object.current = place->second;
        return true;
    }
    bool end_object() {
        Value::Dictionary dictionary;
        for (auto& [name, value] : open.back().fields) {
            if (value) dictionary.append(std::move(name), std::move(*value));
        }
        open.pop_back();
        return add(Value(std::move(dictionary)));
    }

private:
    struct Open {
        bool isObject = false;
        Value::Array items;
        std::vector<std::pair<std::string, std::optional<Value>>> fields;
        std::unordered_map<std::string, std::size_t> places;
        std::size_t current = 0;
    };

    bool add(std::optional<Value> value) {
        if (open.empty()) {
            result = std::move(value);
        } else if (open.back().isObject) {
            open.back().fields[open.back().current].second = std::move(value);
        } else if (value) {
            open.back().items.push_back(std::move(*value));
        }
        return true;
    }

    std::vector<Open> open;
};

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
        // The names differ already, and looking each up would take long in a large dictionary.
        json.get_ref<Json::object_t&>().emplace_back(key, std::move(*element));
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

/// Takes the blanks between the tokens out of valid JSON.
void compact(std::string& json) {
    bool isInString = false;
    bool isEscaped = false;
    std::erase_if(json, [&](char c) {
        if (!isInString) {
            isInString = c == '"';
            return c == ' ' || c == '\t' || c == '\r' || c == '\n';
        }
        isInString = c != '"' || isEscaped;
        isEscaped = c == '\\' && !isEscaped;
        return false;
    });
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
        ValueBuilder builder;
        Json::sax_parse(member.valueText, &builder);
        member.value = std::move(builder.result);
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
    std::unordered_map<std::string_view, const Member*> last;
    for (const Member& member : members) last[member.key] = &member;
    Value::Dictionary dictionary;
    for (const Member& member : members) {
        if (member.value && last[member.key] == &member) {
            dictionary.append(member.key, *member.value);
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
    text += "\n}\n";
    if (text.size() > largest) compact(text);
    return text;
}

}  // namespace quorvel::native
