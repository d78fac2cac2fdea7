#include "platform/linux/XdgApplicationCatalog.hpp"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/Text.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/ProcessFacts.hpp"

namespace quorvel::native {
namespace {

constexpr const char* genericIcon = "application-x-executable";
constexpr std::size_t longestEntry = 1024 * 1024;

/// The file itself and not GIO's view of it: a program that was removed keeps its name.
OwnedKeyFile loadEntry(const std::string& path) {
    if (!path.ends_with(".desktop")) return nullptr;
    const std::string text = readSome(path, longestEntry);
    OwnedKeyFile file(g_key_file_new());
    const gboolean isLoaded =
        g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr);
    return isLoaded == FALSE ? nullptr : std::move(file);
}

std::string localeText(GKeyFile* file, const char* key) {
    return takeText(
        g_key_file_get_locale_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr));
}

ApplicationIcon iconIn(GKeyFile* file) {
    std::string icon = localeText(file, G_KEY_FILE_DESKTOP_KEY_ICON);
    if (icon.starts_with('/')) return {{}, std::move(icon)};
    // Old entries name a file where the icon's name is meant.
    for (const char* extension : {".png", ".svg", ".xpm"}) {
        if (icon.ends_with(extension)) icon.resize(icon.size() - 4);
    }
    if (icon.empty()) return {{genericIcon}, {}};
    return {{std::move(icon), genericIcon}, {}};
}

}  // namespace

std::vector<InstalledApplication> XdgApplicationCatalog::installed() const {
    entries.invalidateIfFoldersChanged();
    std::vector<std::pair<std::string, InstalledApplication>> found;
    for (const DesktopEntry& entry : entries.all()) {
        if (!entry.isShown) continue;
        // One at a time: together they are many times as large as what is kept of them.
        const ObjectRef<GDesktopAppInfo> info(
            g_desktop_app_info_new_from_filename(entry.path.c_str()));
        if (!info || g_app_info_should_show(G_APP_INFO(info.get())) == FALSE) continue;
        InstalledApplication application{entry.path, nameOf(entry.path), iconOf(entry.path)};
        const OwnedText valid(g_utf8_make_valid(application.name.c_str(), -1));
        found.emplace_back(takeText(g_utf8_casefold(valid.get(), -1)), std::move(application));
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        if (const int order = g_utf8_collate(a.first.c_str(), b.first.c_str()); order != 0) {
            return order < 0;
        }
        return std::tie(a.second.name, a.second.path) < std::tie(b.second.name, b.second.path);
    });
    std::vector<InstalledApplication> result;
    result.reserve(found.size());
    for (auto& [key, application] : found) result.push_back(std::move(application));
    return result;
}

std::string XdgApplicationCatalog::nameOf(const std::string& path) const {
    if (const OwnedKeyFile file = loadEntry(path)) {
        std::string name = localeText(file.get(), G_KEY_FILE_DESKTOP_KEY_NAME);
        if (!name.empty()) return name;
    }
    return nameWithoutExtension(path);
}

ApplicationIcon XdgApplicationCatalog::iconOf(const std::string& path) const {
    if (const OwnedKeyFile file = loadEntry(path)) return iconIn(file.get());
    return {{genericIcon}, {}};
}

}  // namespace quorvel::native
