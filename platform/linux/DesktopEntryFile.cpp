#include "platform/linux/DesktopEntryFile.hpp"

#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/Text.hpp"
#include "platform/linux/ProcessFacts.hpp"
#include "platform/linux/ProgramName.hpp"

namespace quorvel::native {
namespace {

/// No entry that anybody wrote is nearly as long.
constexpr std::size_t longestEntry = 1024 * 1024;

std::string unescaped(std::string_view text) {
    if (text.find('\\') == std::string_view::npos) return std::string(text);
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        switch (text[++i]) {
            case 's':
                result += ' ';
                break;
            case 'n':
                result += '\n';
                break;
            case 't':
                result += '\t';
                break;
            case 'r':
                result += '\r';
                break;
            case '\\':
                result += '\\';
                break;
            default:
                result += '\\';
                result += text[i];
        }
    }
    return result;
}

std::string_view withoutSpaceInFront(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r\f");
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

std::string_view withoutSpaceBehind(std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \t\r\f") + 1);
}

bool isTrue(std::string_view value) {
    return value == "true" || value == "1";
}

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, const std::string& path,
                                              const std::string& id) {
    DesktopEntry entry;
    entry.path = path;
    entry.id = id;
    std::string type;
    bool inMainGroup = false;
    bool isHidden = false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        std::string_view line = withoutSpaceInFront(rest.substr(0, end));
        // Written on another system; or it would be part of the last word of Exec.
        if (line.ends_with('\r')) line.remove_suffix(1);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[') {
            if (inMainGroup) break;
            if (withoutSpaceBehind(line) != "[Desktop Entry]") return std::nullopt;
            inMainGroup = true;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!inMainGroup || equals == std::string_view::npos) return std::nullopt;
        const std::string_view key = withoutSpaceBehind(line.substr(0, equals));
        const std::string_view value = withoutSpaceInFront(line.substr(equals + 1));
        if (key == "Type") type = withoutSpaceBehind(value);
        if (key == "Hidden") isHidden = isTrue(withoutSpaceBehind(value));
        if (key == "NoDisplay") entry.isShown = !isTrue(withoutSpaceBehind(value));
        if (key == "StartupWMClass") entry.startupWMClass = unescaped(withoutSpaceBehind(value));
        if (key == "TryExec") entry.tryExec = unescaped(withoutSpaceBehind(value));
        if (key == "Exec") {
            const auto words = splitCommandLine(unescaped(value));
            entry.program = programOf(words);
            entry.command = words.empty() ? std::string() : words.front();
        }
    }
    if (type != "Application" || isHidden) return std::nullopt;
    return entry;
}

std::optional<DesktopEntry> readDesktopEntry(const std::string& path, const std::string& id) {
    return parseDesktopEntry(readSome(path, longestEntry), path, id);
}

bool canBeRun(const std::string& program) {
    gchar* found = g_find_program_in_path(program.c_str());
    const bool result = found != nullptr;
    g_free(found);
    return result;
}

}  // namespace quorvel::native
