#include "platform/simulated/SimulatedLog.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace quorvel {
namespace {

std::string escape(unsigned code) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), code > 0xFF ? "\\u%04x" : "\\x%02x", code);
    return text.data();
}

std::string singleLine(std::string_view message) {
    std::string result;
    const auto byte = [&](std::size_t i) {
        return i < message.size() ? static_cast<unsigned char>(message[i]) : 0u;
    };
    for (std::size_t i = 0; i < message.size(); ++i) {
        if (byte(i) == '\n') {
            result += "\\n";
        } else if (byte(i) == '\r') {
            result += "\\r";
        } else if (byte(i) == '\t') {
            result += "\\t";
        } else if (byte(i) < 0x20 || byte(i) == 0x7F) {
            result += escape(byte(i));
        } else if (byte(i) == 0xC2 && byte(i + 1) >= 0x80 && byte(i + 1) <= 0x9F) {
            result += escape(byte(++i));
        } else if (byte(i) == 0xE2 && byte(i + 1) == 0x80 &&
                   (byte(i + 2) == 0xA8 || byte(i + 2) == 0xA9)) {
            // Unicode's own separators of lines and paragraphs.
            result += escape(0x2000u + byte(i + 2) - 0x80u);
            i += 2;
        } else {
            result += message[i];
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
    lines.push_back(singleLine(message));
}

}  // namespace quorvel
