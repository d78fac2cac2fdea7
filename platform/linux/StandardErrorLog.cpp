#include "platform/linux/StandardErrorLog.hpp"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>

namespace quorvel::native {
namespace {

std::string escaped(unsigned code) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), code > 0xFF ? "\\u%04x" : "\\x%02x", code);
    return text.data();
}

/// The control character, or line break, of two or three bytes at the start of `text`; 0 for
/// anything else.
struct LongControl {
    unsigned code = 0;
    std::size_t length = 0;
};

LongControl longControl(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0x9F) return {byte(1), 2};
    if (byte(0) == 0xE2 && byte(1) == 0x80 && (byte(2) == 0xA8 || byte(2) == 0xA9)) {
        return {0x2000u + byte(2) - 0x80u, 3};
    }
    return {};
}

std::string singleLine(std::string_view message) {
    std::string line;
    line.reserve(message.size());
    while (!message.empty()) {
        const auto c = static_cast<unsigned char>(message.front());
        std::size_t length = 1;
        if (c == '\n') {
            line += "\\n";
        } else if (c == '\r') {
            line += "\\r";
        } else if (c == '\t') {
            line += "\\t";
        } else if (c < 0x20 || c == 0x7F) {
            line += escaped(c);
        } else if (const LongControl control = longControl(message); control.length > 0) {
            line += escaped(control.code);
            length = control.length;
        } else {
            line += message.front();
        }
        message.remove_prefix(length);
    }
    return line;
}

}  // namespace

std::string StandardErrorLog::lineText(std::string_view message,
                                       std::chrono::system_clock::time_point time,
                                       int processIdentifier) {
    using namespace std::chrono;
    const auto second = floor<seconds>(time);
    const std::time_t clock = system_clock::to_time_t(second);
    std::tm local{};
    localtime_r(&clock, &local);
    std::array<char, 96> prefix{};
    std::snprintf(prefix.data(), prefix.size(), "%04d-%02d-%02d %02d:%02d:%02d.%03d Quorvel[%d] ",
                  local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                  local.tm_min, local.tm_sec,
                  static_cast<int>(duration_cast<milliseconds>(time - second).count()),
                  processIdentifier);
    return prefix.data() + singleLine(message) + "\n";
}

void StandardErrorLog::line(std::string_view message) {
    std::string text = lineText(message, std::chrono::system_clock::now(), getpid());
    // A file takes it whole; a full disk or a pipe may take a part.
    while (!text.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text.erase(0, static_cast<std::size_t>(written));
    }
}

}  // namespace quorvel::native
