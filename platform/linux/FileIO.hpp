#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quorvel::native {

/// Tells one state of a file from another, as far as the file system can.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds, as `changed`
    std::int64_t changed = 0;

    bool operator==(const FileStamp&) const = default;

    static FileStamp of(const struct stat& status);
};

/// Nothing when there is no such file or it cannot be asked about.
std::optional<FileStamp> stampOf(const std::string& path);

struct FileReading {
    enum class Outcome { read, absent, tooLarge, failed };

    Outcome outcome = Outcome::absent;
    int error = 0;  ///< errno when `failed`
    std::string text;
    FileStamp stamp;  ///< when `read` or `tooLarge`
    /// Whether every later change is sure to show in the stamp. It is not for a file that was
    /// changed just now: the next change may fall into the same tick of the file system's clock.
    bool isSettled = false;
};

/// Reads a whole regular file of at most `limit` bytes; anything that is no regular file fails.
FileReading readFile(const std::string& path, std::size_t limit);

/// Where a path leads when its last component is a symbolic link, which may dangle.
std::string linkDestination(const std::string& path);

/// Replaces a file at once, as seen by others and after a power failure: 0 when the new content is
/// on disk, else errno and the old content untouched. Private to the user. A symbolic link is
/// replaced, not followed.
int replaceFile(const std::string& path, const std::string& text);

/// Gives a file a name that is still free; EEXIST when it is not. 0, or errno.
int renameToFreeName(const std::string& from, const std::string& to);

/// Takes a file that is of no use out of the way: it becomes `<path>.unreadable-<n>` with the first
/// number that is free. A symbolic link stays, and what it leads to goes. 0, or errno.
struct SettingAside {
    int error = 0;
    std::string from;  ///< `path`, or where it leads
    std::string to;
};
SettingAside setAside(const std::string& path);

/// Creates a folder and those above it, private to the user: 0 when it is there, else errno.
int createFolder(const std::string& path);

/// In plain words, whatever the locale.
std::string errorText(int error);

/// Keeps other processes that use the same lock file out while it lives.
class FileLock {
public:
    /// Creates the lock file when there is none. Waits for another holder, but not for long; the
    /// error is then EWOULDBLOCK.
    explicit FileLock(const std::string& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// errno when the lock is not held.
    int error() const { return failure; }

private:
    int descriptor = -1;
    int failure = 0;
};

}  // namespace quorvel::native
