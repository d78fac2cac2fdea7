#include "platform/linux/LaunchDiagnosis.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/Text.hpp"
#include "platform/linux/DesktopEntryFile.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/ProcessFacts.hpp"

namespace quorvel::native {
namespace {

constexpr off_t longestEntry = 1024 * 1024;

std::string quoted(const std::string& text) {
    return "“" + text + "”";
}

std::optional<std::string> textOf(GKeyFile* file, const char* key) {
    gchar* text = g_key_file_get_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr);
    if (text == nullptr) return std::nullopt;
    return takeText(text);
}

/// Why this program of an entry cannot be run; nothing when it can.
std::optional<std::string> whyNotRunnable(const std::string& program, const std::string& entry) {
    if (canBeRun(program)) return std::nullopt;
    struct stat status {};
    if (program.starts_with('/') && stat(program.c_str(), &status) == 0) {
        return "The program " + quoted(program) + " of " + quoted(entry) + " may not be executed.";
    }
    return "The program " + quoted(program) + " of " + quoted(entry) + " is not installed.";
}

std::optional<std::string> whyEntryIsUnfit(const std::string& path) {
    const std::string text = readSome(path, longestEntry);
    if (trimmed(text).empty()) return "The desktop entry " + quoted(path) + " is empty.";
    const std::string malformed = "The desktop entry " + quoted(path) + " is malformed: ";
    const OwnedKeyFile file(g_key_file_new());
    GError* error = nullptr;
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, &error) ==
        FALSE) {
        const OwnedError owner(error);
        return malformed + error->message + ".";
    }
    const std::string firstGroup = takeText(g_key_file_get_start_group(file.get()));
    if (firstGroup != G_KEY_FILE_DESKTOP_GROUP) {
        return malformed + "it does not begin with the group [Desktop Entry].";
    }
    if (textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
        return quoted(path) + " is not the desktop entry of an application.";
    }
    if (const auto program = textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TRY_EXEC)) {
        if (auto reason = whyNotRunnable(*program, path)) return reason;
    }
    const auto command = textOf(file.get(), G_KEY_FILE_DESKTOP_KEY_EXEC);
    if (!command || trimmed(*command).empty()) {
        if (g_key_file_get_boolean(file.get(), G_KEY_FILE_DESKTOP_GROUP,
                                   G_KEY_FILE_DESKTOP_KEY_DBUS_ACTIVATABLE, nullptr) != FALSE) {
            return std::nullopt;
        }
        return "The desktop entry " + quoted(path) +
               " names no program to start: its Exec line is missing.";
    }
    gchar** words = nullptr;
    if (g_shell_parse_argv(command->c_str(), nullptr, &words, &error) == FALSE) {
        const OwnedError owner(error);
        return "The Exec line of " + quoted(path) + " cannot be understood: " + error->message +
               ".";
    }
    const std::string program = words[0];
    g_strfreev(words);
    return whyNotRunnable(program, path);
}

}  // namespace

bool isDesktopEntryPath(const std::string& path) {
    return path.ends_with(".desktop");
}

std::optional<std::string> whyNotUsable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return "There is nothing at " + quoted(path) + ".";
        return quoted(path) + " cannot be reached: " + std::strerror(errno) + ".";
    }
    if (S_ISDIR(status.st_mode)) return quoted(path) + " is a folder.";
    if (!S_ISREG(status.st_mode)) return quoted(path) + " is not a program.";
    if (!isDesktopEntryPath(path)) {
        if (access(path.c_str(), X_OK) == 0) return std::nullopt;
        return quoted(path) + " may not be executed.";
    }
    if (access(path.c_str(), R_OK) != 0) {
        return quoted(path) + " cannot be read: " + std::strerror(errno) + ".";
    }
    if (status.st_size > longestEntry) return quoted(path) + " is too large for a desktop entry.";
    return std::nullopt;
}

std::optional<std::string> whyNotLaunchable(const std::string& path) {
    if (auto reason = whyNotUsable(path)) return reason;
    return isDesktopEntryPath(path) ? whyEntryIsUnfit(path) : std::nullopt;
}

}  // namespace quorvel::native
