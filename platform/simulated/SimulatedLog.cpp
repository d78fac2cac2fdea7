#include "platform/simulated/SimulatedLog.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace quorvel {
namespace {

std::string escaped(std::string_view message) {
    std::string result;
    for (const char c : message) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            result += c;
        } else if (c == '\n') {
            result += "\\n";
        } else if (c == '\r') {
            result += "\\r";
        } else if (c == '\t') {
            result += "\\t";
        } else {
            std::array<char, 5> code{};
            std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned>(byte));
            result += code.data();
        }
    }
    return result;
}

}  // namespace

bool SimulatedLog::contains(std::string_view line) const {
    return count(line) > 0;
}

std::size_t SimulatedLog::count(std::string_view line) const {
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
}

std::size_t SimulatedLog::countStartingWith(std::string_view beginning) const {
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(),
                      [&](const std::string& line) { return line.starts_with(beginning); }));
}

std::vector<std::string> SimulatedLog::taken() {
    return std::exchange(lines, {});
}

void SimulatedLog::line(std::string_view message) {
    lines.push_back(escaped(message));
}

}  // namespace quorvel
