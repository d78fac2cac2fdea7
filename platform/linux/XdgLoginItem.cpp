#include "platform/linux/XdgLoginItem.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>

#include "platform/Text.hpp"
#include "platform/linux/DesktopEntryFile.hpp"
#include "platform/linux/FileIO.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/ProgramName.hpp"

namespace quorvel::native {
namespace {

constexpr std::size_t largest = std::size_t{1} << 20;
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* gnomeEnabled = "X-GNOME-Autostart-enabled";

/// Null when the text is no entry at all.
OwnedKeyFile parse(const std::string& text) {
    OwnedKeyFile file(g_key_file_new());
    const auto flags =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), flags, nullptr) == FALSE ||
        g_key_file_has_group(file.get(), group) == FALSE) {
        return nullptr;
    }
    return file;
}

/// An entry of nothing but the lines that switch it off or on, of whatever they stand in.
OwnedKeyFile switchesIn(const std::string& text) {
    std::string entry = "[" + std::string(group) + "]\n";
    const std::string header = trimmed(entry);
    bool isInGroup = true;  // also where the header is what is damaged
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line = trimmed(line);
        if (line.starts_with('[') && line.ends_with(']')) isInGroup = line == header;
        const std::size_t equals = line.find('=');
        if (!isInGroup || equals == std::string::npos) continue;
        const std::string key = trimmed(line.substr(0, equals));
        if (key == G_KEY_FILE_DESKTOP_KEY_HIDDEN || key == gnomeEnabled) entry += line + "\n";
    }
    OwnedKeyFile file = parse(entry);
    return file ? std::move(file) : OwnedKeyFile(g_key_file_new());
}

bool has(GKeyFile* file, const char* key) {
    return g_key_file_has_key(file, group, key, nullptr) != FALSE;
}

bool isSwitchedOff(GKeyFile* file) {
    return g_key_file_get_boolean(file, group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr) != FALSE ||
           (has(file, gnomeEnabled) &&
            g_key_file_get_boolean(file, group, gnomeEnabled, nullptr) == FALSE);
}

/// One argument of an Exec line, quoted whatever it holds.
std::string execArgument(const std::string& path) {
    std::string argument = "\"";
    for (const char c : path) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') argument += '\\';
        argument += c;
        if (c == '%') argument += c;
    }
    return argument + "\"";
}

/// Unescaped; empty when there is none, or none that can be read.
std::string textOf(GKeyFile* file, const char* key) {
    return takeText(g_key_file_get_string(file, group, key, nullptr));
}

/// Whether the path stands there as a whole, not as a part of a longer one.
bool holdsPath(std::string_view text, std::string_view path) {
    constexpr std::string_view around = " \t\n\"'`\\=;&|()<>";
    const auto isAround = [&](std::size_t at) {
        return at >= text.size() || around.find(text[at]) != std::string_view::npos;
    };
    for (std::size_t at = 0; (at = text.find(path, at)) != std::string_view::npos; ++at) {
        if ((at == 0 || isAround(at - 1)) && isAround(at + path.size())) return true;
    }
    return false;
}

bool isCopy(std::string word, const std::string& executable) {
    for (std::size_t at = 0; (at = word.find("%%", at)) != std::string::npos; ++at) {
        word.erase(at, 1);
    }
    return lastPathComponent(word) == lastPathComponent(executable) && canBeRun(word);
}

bool starts(GKeyFile* file, const std::string& executable) {
    const std::string tryExec = textOf(file, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC);
    if (executable.empty() || (!tryExec.empty() && !canBeRun(tryExec))) return false;
    const std::string exec = textOf(file, G_KEY_FILE_DESKTOP_KEY_EXEC);
    if (holdsPath(exec, executable) || exec.find(execArgument(executable)) != std::string::npos) {
        return true;
    }
    const std::vector<std::string> words = splitCommandLine(exec);
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string& word) { return isCopy(word, executable); });
}

}  // namespace

XdgLoginItem::XdgLoginItem(const XdgFolders& folders, std::string executable)
    : folder(folders.configHome + "/autostart"),
      path(folder + "/com.tessivane.quorvel.desktop"),
      executable(std::move(executable)) {}

LoginItemStatus XdgLoginItem::status() const {
    const FileReading reading = readFile(path, largest);
    OwnedKeyFile file = parse(reading.text);
    if (!file) file = switchesIn(reading.text);
    if (isSwitchedOff(file.get())) return LoginItemStatus::requiresApproval;
    return starts(file.get(), executable) ? LoginItemStatus::enabled
                                          : LoginItemStatus::notRegistered;
}

std::optional<std::string> XdgLoginItem::registerItem() {
    if (executable.empty()) return "the path of the program is not known";
    if (g_utf8_validate(executable.data(), static_cast<gssize>(executable.size()), nullptr) ==
        FALSE) {
        return "the path of the program is not UTF-8";
    }
    const FileReading reading = readFile(path, largest);
    if (reading.outcome == FileReading::Outcome::failed) return errorText(reading.error);

    OwnedKeyFile file = parse(reading.text);
    const bool isToBeKept = !file && (reading.outcome == FileReading::Outcome::tooLarge ||
                                      !trimmed(reading.text).empty());
    if (!file) file = switchesIn(reading.text);
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_string(file.get(), group, key, value.c_str());
    };
    set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
    set(G_KEY_FILE_DESKTOP_KEY_NAME, "Quorvel");
    set("Comment", "Keeps applications close to hand");
    set(G_KEY_FILE_DESKTOP_KEY_EXEC, execArgument(executable));
    // With the program gone the entry does nothing.
    set(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, executable);
    set(G_KEY_FILE_DESKTOP_KEY_ICON, "com.tessivane.quorvel");
    set(G_KEY_FILE_DESKTOP_KEY_TERMINAL, "false");

    const std::string text = takeText(g_key_file_to_data(file.get(), nullptr, nullptr));
    if (const int error = createFolder(folder); error != 0) return errorText(error);
    const SettingAside kept = isToBeKept ? setAside(path) : SettingAside{};
    if (kept.error != 0) return errorText(kept.error);
    const int error = replaceFile(linkDestination(path), text);
    if (error == 0) return std::nullopt;
    // Without it an entry that is switched off would be forgotten to be.
    if (isToBeKept) static_cast<void>(renameToFreeName(kept.to, kept.from));
    return errorText(error);
}

std::optional<std::string> XdgLoginItem::unregisterItem() {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    return errorText(errno);
}

}  // namespace quorvel::native
