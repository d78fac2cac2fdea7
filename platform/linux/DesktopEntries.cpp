#include "platform/linux/DesktopEntries.hpp"

#include <dirent.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <unordered_set>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

constexpr std::string_view extension = ".desktop";
constexpr int deepestFolder = 16;

/// 0 when there is nothing.
std::int64_t modificationTime(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return 0;
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

std::optional<std::pair<dev_t, ino_t>> fileIdentity(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return std::pair(status.st_dev, status.st_ino);
}

}  // namespace

/// One walk through the folders.
struct DesktopEntries::Scan {
    struct File {
        std::string path;
        std::string id;
    };
    std::vector<File> files;
    std::vector<Folder> folders;
    std::set<std::pair<dev_t, ino_t>> seen;

    /// Below a folder the path becomes part of the id, with dashes for the slashes.
    void walk(const std::string& folder, const std::string& prefix, int depth) {
        folders.push_back({folder, modificationTime(folder)});
        const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), closedir);
        if (!directory || depth > deepestFolder) return;
        // A link back up would lead round in circles.
        struct stat status {};
        if (fstat(dirfd(directory.get()), &status) != 0) return;
        if (!seen.emplace(status.st_dev, status.st_ino).second) return;

        std::vector<std::string> names;
        while (const dirent* item = readdir(directory.get())) {
            if (item->d_name[0] != '.') names.emplace_back(item->d_name);
        }
        // Of two entries that fit equally well the same one is to win every time.
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            const std::string path = folder + "/" + name;
            if (name.ends_with(extension)) {
                files.push_back({path, prefix + name});
            } else if (struct stat inner{};
                       stat(path.c_str(), &inner) == 0 && S_ISDIR(inner.st_mode)) {
                walk(path, prefix + name + "-", depth + 1);
            }
        }
    }
};

DesktopEntries::DesktopEntries(std::vector<std::string> folders, std::vector<DesktopEntry> given)
    : folders(std::move(folders)), given(std::move(given)) {
    for (std::string& folder : this->folders) {
        while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
    }
}

std::vector<std::string> DesktopEntries::standardFolders() {
    std::vector<std::string> result;
    const auto add = [&](const char* dataFolder) {
        gchar* path = g_build_filename(dataFolder, "applications", nullptr);
        if (std::find(result.begin(), result.end(), path) == result.end()) {
            result.emplace_back(path);
        }
        g_free(path);
    };
    add(g_get_user_data_dir());
    for (const gchar* const* folder = g_get_system_data_dirs(); *folder != nullptr; ++folder) {
        add(*folder);
    }
    return result;
}

void DesktopEntries::prefer(std::vector<std::string> paths) {
    if (paths == preferred) return;
    preferred = std::move(paths);
    preferences.clear();
    for (std::size_t i = 0; i < preferred.size(); ++i) preferences.emplace(preferred[i], i);
    invalidate();
}

void DesktopEntries::invalidate() {
    isRead = false;
    preferredPrograms.reset();
    changeHandlers.notify();
}

bool DesktopEntries::invalidateIfFoldersChanged() {
    if (!isRead) return false;
    const bool isChanged = std::any_of(scanned.begin(), scanned.end(), [](const Folder& folder) {
        return modificationTime(folder.path) != folder.modified;
    });
    if (isChanged) invalidate();
    return isChanged;
}

Subscription DesktopEntries::onChange(std::function<void()> handler) {
    return changeHandlers.add(std::move(handler));
}

const std::vector<DesktopEntry>& DesktopEntries::all() const {
    if (!isRead) read();
    return entries;
}

void DesktopEntries::read() const {
    isRead = true;
    entries = given;
    Scan scan;
    for (const std::string& folder : folders) {
        // Only within one of the folders is a second way to the same place a circle.
        scan.seen.clear();
        scan.walk(folder, "", 0);
    }
    std::unordered_map<std::string, std::string> idOfPath;
    for (const Scan::File& file : scan.files) idOfPath.emplace(file.path, file.id);

    std::unordered_set<std::string> taken;
    for (const DesktopEntry& entry : given) taken.insert(entry.id);
    for (const std::string& path : preferred) {
        if (!path.ends_with(extension)) continue;
        const auto known = idOfPath.find(path);
        const std::string id = known != idOfPath.end() ? known->second : lastPathComponent(path);
        if (taken.contains(id)) continue;
        if (auto entry = readDesktopEntry(path, id)) {
            taken.insert(id);
            entries.push_back(std::move(*entry));
        }
    }
    for (const Scan::File& file : scan.files) {
        // One that is deleted or unreadable hides those in later folders too.
        if (!taken.insert(file.id).second) continue;
        if (auto entry = readDesktopEntry(file.path, file.id)) entries.push_back(std::move(*entry));
    }
    entries.shrink_to_fit();
    scanned = std::move(scan.folders);
}

const DesktopEntry* DesktopEntries::at(const std::string& path) const {
    const auto& known = all();
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const DesktopEntry& entry) { return entry.path == path; });
    if (found != known.end()) return &*found;
    if (!path.ends_with(extension)) return nullptr;
    for (const std::string& folder : folders) {
        if (!path.starts_with(folder + "/")) continue;
        std::string id = path.substr(folder.size() + 1);
        std::replace(id.begin(), id.end(), '/', '-');
        return withId(id);
    }
    return nullptr;
}

const DesktopEntry* DesktopEntries::withId(std::string_view id) const {
    const auto& known = all();
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&](const DesktopEntry& entry) { return entry.id == id; });
    return found == known.end() ? nullptr : &*found;
}

std::size_t DesktopEntries::preferenceOf(const DesktopEntry& entry) const {
    const auto found = preferences.find(entry.path);
    return found == preferences.end() ? preferred.size() : found->second;
}

const DesktopEntry* DesktopEntries::best(
    const std::function<bool(const DesktopEntry&)>& isMeant) const {
    std::vector<const DesktopEntry*> candidates;
    for (const DesktopEntry& entry : all()) {
        if (isMeant(entry)) candidates.push_back(&entry);
    }
    if (candidates.size() < 2) return candidates.empty() ? nullptr : candidates.front();
    // Only asked for a choice: it costs a search of the PATH.
    const auto isWellFormed = [](const DesktopEntry* entry) {
        return entry->isShown && (entry->tryExec.empty() || canBeRun(entry->tryExec)) &&
               (entry->command.empty() || canBeRun(entry->command));
    };
    return *std::min_element(candidates.begin(), candidates.end(),
                             [&](const DesktopEntry* a, const DesktopEntry* b) {
                                 const std::pair first(preferenceOf(*a), !isWellFormed(a));
                                 const std::pair second(preferenceOf(*b), !isWellFormed(b));
                                 return first < second;
                             });
}

bool DesktopEntries::isPreferred(const std::string& path) const {
    return preferences.contains(path);
}

std::optional<std::string> DesktopEntries::preferredProgram(const std::string& executable) const {
    if (executable.empty() || preferred.empty()) return std::nullopt;
    if (!executable.ends_with(extension) && isPreferred(executable)) return executable;
    if (!preferredPrograms) findPreferredPrograms();
    if (preferredPrograms->empty()) return std::nullopt;
    const auto identity = fileIdentity(executable);
    if (!identity) return std::nullopt;
    const auto found = preferredPrograms->find(*identity);
    if (found == preferredPrograms->end()) return std::nullopt;
    return preferred[found->second];
}

void DesktopEntries::findPreferredPrograms() const {
    preferredPrograms.emplace();
    for (std::size_t i = 0; i < preferred.size(); ++i) {
        if (preferred[i].ends_with(extension)) continue;
        if (const auto identity = fileIdentity(preferred[i])) {
            preferredPrograms->emplace(*identity, i);
        }
    }
}

}  // namespace quorvel::native
