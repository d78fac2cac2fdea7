#include "platform/linux/XdgLoginItem.hpp"

#include <glib.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "platform/linux/FileIO.hpp"

namespace quorvel::native {
namespace {

constexpr std::size_t largest = std::size_t{1} << 20;
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* gnomeEnabled = "X-GNOME-Autostart-enabled";

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileDeleter>;

/// Null when the text is no entry at all: then there is nothing in it to keep.
KeyFile parse(const std::string& text) {
    KeyFile file(g_key_file_new());
    const auto flags =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), flags, nullptr) == FALSE ||
        g_key_file_has_group(file.get(), group) == FALSE) {
        return nullptr;
    }
    return file;
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

}  // namespace

XdgLoginItem::XdgLoginItem(const XdgFolders& folders, std::string executable)
    : folder(folders.configHome + "/autostart"),
      path(folder + "/com.tessivane.quorvel.desktop"),
      executable(std::move(executable)) {}

LoginItemStatus XdgLoginItem::status() const {
    const FileReading reading = readFile(path, largest);
    const KeyFile file =
        reading.outcome == FileReading::Outcome::read ? parse(reading.text) : nullptr;
    if (!file) return LoginItemStatus::notRegistered;
    if (isSwitchedOff(file.get())) return LoginItemStatus::requiresApproval;
    // No desktop starts anything from an entry without it.
    return has(file.get(), G_KEY_FILE_DESKTOP_KEY_EXEC) ? LoginItemStatus::enabled
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

    KeyFile file = parse(reading.text);
    if (!file) file.reset(g_key_file_new());
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

    gsize length = 0;
    gchar* data = g_key_file_to_data(file.get(), &length, nullptr);
    const std::string text(data, length);
    g_free(data);
    if (const int error = createFolder(folder); error != 0) return errorText(error);
    const int error = replaceFile(linkDestination(path), text);
    return error == 0 ? std::nullopt : std::optional(errorText(error));
}

std::optional<std::string> XdgLoginItem::unregisterItem() {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    return errorText(errno);
}

}  // namespace quorvel::native
