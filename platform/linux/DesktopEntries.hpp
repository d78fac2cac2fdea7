#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Subscription.hpp"
#include "platform/linux/DesktopEntryFile.hpp"

namespace quorvel::native {

/// The desktop entries of all installed applications, one for each desktop id. Read when first
/// asked for, and again when something has changed; a pointer that is handed out holds until then.
class DesktopEntries {
public:
    /// Folders that hold entries, at any depth; of two entries with one id the earlier folder's
    /// counts. None need exist. Those that are `given`, each with an id of its own, come first.
    explicit DesktopEntries(std::vector<std::string> folders, std::vector<DesktopEntry> given = {});

    /// The folders "applications" of the XDG data directories, the user's own first.
    static std::vector<std::string> standardFolders();

    /// The paths by which applications are to be known, whatever the order of the folders says:
    /// entries, also outside the folders, and executables.
    void prefer(std::vector<std::string> paths);

    /// In the order in which they count.
    const std::vector<DesktopEntry>& all() const;

    /// The one at this path, or the one that counts for the id that the file there has. Null when
    /// there is no entry.
    const DesktopEntry* at(const std::string& path) const;
    /// `id` with its extension.
    const DesktopEntry* withId(std::string_view id) const;

    /// The best of those that `isMeant` accepts; null when it accepts none. Entries that were
    /// preferred come first, then those that menus show and whose program is there, then the order
    /// of the folders.
    const DesktopEntry* best(const std::function<bool(const DesktopEntry&)>& isMeant) const;

    bool isPreferred(const std::string& path) const;
    /// The preferred path that is this one, else one that leads to the same file, as it was when it
    /// was preferred or everything was last invalidated; nothing when there is none.
    std::optional<std::string> preferredProgram(const std::string& executable) const;

    /// Read everything again when next asked for.
    void invalidate();
    /// Invalidates if a folder has got, lost or renamed a file since; a few system calls. True when
    /// it has.
    bool invalidateIfFoldersChanged();

    /// What was said about entries before may no longer hold.
    [[nodiscard]] Subscription onChange(std::function<void()> handler);

private:
    struct Folder {
        std::string path;
        std::int64_t modified = 0;
        bool operator==(const Folder&) const = default;
    };
    struct Scan;

    /// Device and inode.
    using FileIdentity = std::pair<dev_t, ino_t>;

    void read() const;
    void findPreferredPrograms() const;
    std::size_t preferenceOf(const DesktopEntry& entry) const;

    std::vector<std::string> folders;
    std::vector<DesktopEntry> given;
    std::vector<std::string> preferred;
    std::unordered_map<std::string, std::size_t> preferences;  ///< the place of each in that list
    mutable std::optional<std::map<FileIdentity, std::size_t>> preferredPrograms;
    mutable bool isRead = false;
    mutable std::vector<DesktopEntry> entries;
    mutable std::vector<Folder> scanned;
    Subscribers<> changeHandlers;
};

}  // namespace quorvel::native
