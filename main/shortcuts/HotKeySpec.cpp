#include "main/shortcuts/HotKeySpec.hpp"

#include <algorithm>
#include <set>

#include "platform/Text.hpp"

namespace quorvel {

constinit const std::array<ModifierKey, 4> modifierOrder{{{"control", 0x1000, 0x40000, "⌃"},
                                                          {"option", 0x800, 0x80000, "⌥"},
                                                          {"shift", 0x200, 0x20000, "⇧"},
                                                          {"command", 0x100, 0x100000, "⌘"}}};

const std::map<std::string, std::string, std::less<>>& modifierAliases() {
    static const std::map<std::string, std::string, std::less<>> aliases{
        {"COMMAND", "command"}, {"CMD", "command"},     {"OPTION", "option"}, {"ALT", "option"},
        {"OPT", "option"},      {"CONTROL", "control"}, {"CTRL", "control"},  {"SHIFT", "shift"},
    };
    return aliases;
}

const std::map<std::string, std::uint32_t, std::less<>>& virtualKeyCodes() {
    static const std::map<std::string, std::uint32_t, std::less<>> codes{
        // clang-format off
        {"A", 0},              {"B", 11},            {"C", 8},             {"D", 2},
        {"E", 14},             {"F", 3},             {"G", 5},             {"H", 4},
        {"I", 34},             {"J", 38},            {"K", 40},            {"L", 37},
        {"M", 46},             {"N", 45},            {"O", 31},            {"P", 35},
        {"Q", 12},             {"R", 15},            {"S", 1},             {"T", 17},
        {"U", 32},             {"V", 9},             {"W", 13},            {"X", 7},
        {"Y", 16},             {"Z", 6},             {"0", 29},            {"1", 18},
        {"2", 19},             {"3", 20},            {"4", 21},            {"5", 23},
        {"6", 22},             {"7", 26},            {"8", 28},            {"9", 25},
        {"SPACE", 49},         {"RETURN", 36},       {"TAB", 48},          {"ESCAPE", 53},
        {"F1", 122},           {"F2", 120},          {"F3", 99},           {"F4", 118},
        {"F5", 96},            {"F6", 97},           {"F7", 98},           {"F8", 100},
        {"F9", 101},           {"F10", 109},         {"F11", 103},         {"F12", 111},
        {"SEMICOLON", 41},     {"QUOTE", 39},        {"COMMA", 43},        {"PERIOD", 47},
        {"SLASH", 44},         {"BACKSLASH", 42},    {"MINUS", 27},        {"EQUALS", 24},
        {"LEFTBRACKET", 33},   {"RIGHTBRACKET", 30}, {"GRAVE", 50},        {"LEFT", 123},
        {"RIGHT", 124},        {"DOWN", 125},        {"UP", 126},          {"DELETE", 51},
        {"FORWARDDELETE", 117}, {"HOME", 115},       {"END", 119},         {"PAGEUP", 116},
        {"PAGEDOWN", 121},
        // clang-format on
    };
    return codes;
}

const std::map<std::uint32_t, std::string>& keyNamesByCode() {
    static const std::map<std::uint32_t, std::string> names = [] {
        std::map<std::uint32_t, std::string> inverse;
        for (const auto& [name, code] : virtualKeyCodes()) inverse.emplace(code, name);
        return inverse;
    }();
    return names;
}

const std::map<std::string, std::string, std::less<>>& keyDisplayNames() {
    static const std::map<std::string, std::string, std::less<>> names{
        // clang-format off
        {"SPACE", "Space"},    {"RETURN", "↩"},      {"TAB", "⇥"},
        {"ESCAPE", "⎋"},       {"SEMICOLON", ";"},   {"QUOTE", "'"},
        {"COMMA", ","},        {"PERIOD", "."},      {"SLASH", "/"},
        {"BACKSLASH", "\\"},   {"MINUS", "-"},       {"EQUALS", "="},
        {"LEFTBRACKET", "["},  {"RIGHTBRACKET", "]"}, {"GRAVE", "`"},
        {"LEFT", "←"},         {"RIGHT", "→"},       {"DOWN", "↓"},
        {"UP", "↑"},           {"DELETE", "⌫"},      {"FORWARDDELETE", "⌦"},
        {"HOME", "↖"},         {"END", "↘"},         {"PAGEUP", "⇞"},
        {"PAGEDOWN", "⇟"},
        // clang-format on
    };
    return names;
}

namespace {

/// The words between the commas, upper-cased, without the blank ones.
std::vector<std::string> words(std::string_view text) {
    std::vector<std::string> result;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        std::string word = uppercased(trimmedOfSpaces(text.substr(begin, end - begin)));
        if (!word.empty()) result.push_back(std::move(word));
        begin = end + 1;
    }
    return result;
}

/// A spec of the modifiers that `isHeld` accepts; nothing when it accepts none.
template <class IsHeld>
std::optional<HotKeySpec> specOf(std::string keyName, IsHeld isHeld) {
    HotKeySpec spec{std::move(keyName), {}};
    for (const ModifierKey& modifier : modifierOrder) {
        if (isHeld(modifier)) spec.modifiers.emplace_back(modifier.name);
    }
    if (spec.modifiers.empty()) return std::nullopt;
    return spec;
}

bool has(const HotKeySpec& spec, const ModifierKey& modifier) {
    return std::find(spec.modifiers.begin(), spec.modifiers.end(), modifier.name) !=
           spec.modifiers.end();
}

}  // namespace

std::optional<HotKeySpec> HotKeySpec::parse(std::string_view text) {
    std::vector<std::string> pieces = words(text);
    if (pieces.empty() || !virtualKeyCodes().contains(pieces.back())) return std::nullopt;
    std::string key = std::move(pieces.back());
    pieces.pop_back();

    std::set<std::string_view> found;
    for (const std::string& piece : pieces) {
        const auto alias = modifierAliases().find(piece);
        // Words of other desktops ("hyper") are no reason to refuse the rest.
        if (alias != modifierAliases().end()) found.insert(alias->second);
    }
    return specOf(std::move(key), [&](const ModifierKey& m) { return found.contains(m.name); });
}

std::optional<HotKeySpec> HotKeySpec::from(std::uint32_t keyCode, std::uint32_t cocoaFlags) {
    const auto name = keyNamesByCode().find(keyCode);
    if (name == keyNamesByCode().end()) return std::nullopt;
    return specOf(name->second,
                  [&](const ModifierKey& m) { return (cocoaFlags & m.cocoa) == m.cocoa; });
}

std::string HotKeySpec::canonicalText() const {
    std::vector<std::string> parts = modifiers;
    parts.push_back(keyName);
    return joined(parts, ",");
}

std::string HotKeySpec::display() const {
    std::string text;
    for (const ModifierKey& modifier : modifierOrder) {
        if (has(*this, modifier)) text += modifier.symbol;
    }
    const auto shown = keyDisplayNames().find(keyName);
    return text + (shown != keyDisplayNames().end() ? shown->second : keyName);
}

std::uint32_t HotKeySpec::carbonMask() const {
    std::uint32_t mask = 0;
    for (const ModifierKey& modifier : modifierOrder) {
        if (has(*this, modifier)) mask |= modifier.carbon;
    }
    return mask;
}

}  // namespace quorvel
