#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace quorvel::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Up to the separator, and what comes behind it.
inline std::pair<std::string_view, std::string_view> cut(std::string_view text, char separator) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) return {text, {}};
    return {text.substr(0, end), text.substr(end + 1)};
}

inline std::vector<std::string_view> parts(std::string_view text, char separator) {
    std::vector<std::string_view> result;
    while (!text.empty()) {
        const auto [part, rest] = cut(text, separator);
        result.push_back(part);
        text = rest;
    }
    return result;
}

inline void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace quorvel::fuzz
