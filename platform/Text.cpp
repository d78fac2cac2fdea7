#include "platform/Text.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace quorvel {
namespace {

struct Character {
    char32_t code = 0;
    std::size_t length = 1;
};

/// Neither space nor sign, so that nothing here ever drops a malformed byte.
constexpr Character malformed{0xFFFD, 1};

/// The character at `at`; a byte that begins no well-formed sequence stands alone.
Character characterAt(std::string_view text, std::size_t at) {
    struct Form {
        unsigned leadMask;
        unsigned leadBits;
        char32_t least;  // smaller codes have a shorter form
    };
    constexpr std::array<Form, 4> forms{
        {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

    const unsigned lead = static_cast<unsigned char>(text[at]);
    const auto form = std::find_if(forms.begin(), forms.end(), [lead](const Form& candidate) {
        return (lead & candidate.leadMask) == candidate.leadBits;
    });
    if (form == forms.end()) return malformed;
    const auto length = static_cast<std::size_t>(form - forms.begin()) + 1;
    if (at + length > text.size()) return malformed;
    char32_t code = lead & ~form->leadMask;
    for (std::size_t i = at + 1; i < at + length; ++i) {
        const unsigned next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0u) != 0x80u) return malformed;
        code = (code << 6) | (next & 0x3Fu);
    }
    if (code < form->least) return malformed;
    // A surrogate, or a code beyond the last, is no space or sign either.
    return {code, length};
}

bool isLineBreak(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isSpace(char32_t c) {
    return c == ' ' || c == '\t' || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200B) ||
           c == 0x202F || c == 0x205F || c == 0x3000;
}

struct Range {
    char32_t first;
    char32_t last;
};

// Where above ASCII the signs, digits, spaces and pictures are that people type. What lies
// elsewhere counts as a letter, an accent on a letter too, so no foreign word ever turns into a
// known one.
constexpr std::array<Range, 21> nonLetters{
    {{0x80, 0xA9},      {0xAB, 0xB4},     {0xB6, 0xB9},     {0xBB, 0xBF},     {0xD7, 0xD7},
     {0xF7, 0xF7},      {0x660, 0x66D},   {0x6F0, 0x6F9},   {0x966, 0x96F},   {0x2000, 0x2070},
     {0x2080, 0x208F},  {0x20A0, 0x20FF}, {0x2190, 0x2BFF}, {0x2E00, 0x2E2E}, {0x3000, 0x3004},
     {0x3007, 0x3020},  {0xFE00, 0xFE6F}, {0xFF01, 0xFF20}, {0xFF3B, 0xFF40}, {0xFF5B, 0xFF65},
     {0x1F000, 0x1FAFF}}};

bool isLetter(char32_t c) {
    if (c < 0x80) return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    for (const Range& range : nonLetters) {
        if (c >= range.first && c <= range.last) return false;
    }
    return true;
}

template <class Drop>
std::string trimmedWhere(std::string_view text, Drop drop) {
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Character c = characterAt(text, at);
        if (!drop(c.code)) {
            begin = std::min(begin, at);
            end = at + c.length;
        }
        at += c.length;
    }
    return begin < end ? std::string(text.substr(begin, end - begin)) : std::string();
}

template <class Fold>
std::string folded(std::string_view text, Fold fold) {
    std::string result(text);
    for (char& c : result) c = fold(c);
    return result;
}

}  // namespace

std::string trimmed(std::string_view text) {
    return trimmedWhere(text, [](char32_t c) { return isSpace(c) || isLineBreak(c); });
}

std::string trimmedOfSpaces(std::string_view text) {
    return trimmedWhere(text, isSpace);
}

std::string lowercased(std::string_view text) {
    return folded(text,
                  [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
}

std::string uppercased(std::string_view text) {
    return folded(text,
                  [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
}

std::string lettersOnly(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const Character c = characterAt(text, at);
        if (isLetter(c.code)) result += text.substr(at, c.length);
        at += c.length;
    }
    return lowercased(result);
}

std::string lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    if (path == "/") return "/";
    const std::size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string nameWithoutExtension(std::string_view path) {
    std::string name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot > 0 && dot + 1 < name.size()) name.resize(dot);
    return name;
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string result;
    for (const std::string& part : parts) {
        if (&part != &parts.front()) result += separator;
        result += part;
    }
    return result;
}

namespace detail {

std::string asText(double number) {
    std::array<char, 400> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.0f", number);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string substitute(std::string_view pattern, const std::vector<std::string>& arguments) {
    constexpr std::array<std::string_view, 4> marks{"%@", "%d", "%u", "%.0f"};
    std::string result;
    auto next = arguments.begin();
    while (!pattern.empty()) {
        std::size_t taken = 0;
        for (const std::string_view mark : marks) {
            if (next != arguments.end() && pattern.starts_with(mark)) taken = mark.size();
        }
        if (taken == 0) {
            result += pattern.front();
            pattern.remove_prefix(1);
        } else {
            result += *next++;
            pattern.remove_prefix(taken);
        }
    }
    return result;
}

}  // namespace detail
}  // namespace quorvel
