#include "platform/linux/FileIO.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

namespace quorvel::native {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

/// The coarsest clock of a file system in use (FAT) ticks every two seconds.
constexpr std::int64_t settlingTime = 2'500'000'000;

class Descriptor {
public:
    Descriptor(const std::string& path, int flags, mode_t mode = 0)
        : number(::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode)) {}
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return number >= 0; }
    int get() const { return number; }

    /// Some file systems report a failed write only here.
    int close() {
        const int result = ::close(number) == 0 ? 0 : errno;
        number = -1;
        return result;
    }

private:
    int number;
};

std::int64_t nanoseconds(const timespec& time) {
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

std::int64_t wallClock() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return nanoseconds(now);
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

int syncFolder(const std::string& path) {
    const Descriptor folder(path, O_RDONLY | O_DIRECTORY);
    if (!folder.isOpen()) return errno;
    if (fsync(folder.get()) == 0) return 0;
    // Not every file system can; those that cannot have nothing to flush.
    return errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

int writeAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) return ENOSPC;
        written += static_cast<std::size_t>(count);
    }
    return 0;
}

FileReading failed(int error) {
    FileReading reading;
    const bool isAbsent = error == ENOENT || error == ENOTDIR;
    reading.outcome = isAbsent ? FileReading::Outcome::absent : FileReading::Outcome::failed;
    reading.error = isAbsent ? 0 : error;
    return reading;
}

}  // namespace

FileStamp FileStamp::of(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

std::optional<FileStamp> stampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileStamp::of(status);
}

FileReading readFile(const std::string& path, std::size_t limit) {
    const std::int64_t now = wallClock();
    // A named pipe must not hold us up.
    const Descriptor file(path, O_RDONLY | O_NONBLOCK);
    if (!file.isOpen()) return failed(errno);
    struct stat status {};
    if (fstat(file.get(), &status) != 0) return failed(errno);
    if (S_ISDIR(status.st_mode)) return failed(EISDIR);
    if (!S_ISREG(status.st_mode)) return failed(ENXIO);

    FileReading reading;
    reading.stamp = FileStamp::of(status);
    reading.isSettled = reading.stamp.changed < now - settlingTime;
    std::array<char, 16384> block;
    while (reading.text.size() <= limit) {
        const ssize_t count = ::read(file.get(), block.data(), block.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failed(errno);
        if (count == 0) {
            reading.outcome = FileReading::Outcome::read;
            return reading;
        }
        reading.text.append(block.data(), static_cast<std::size_t>(count));
    }
    reading.outcome = FileReading::Outcome::tooLarge;
    reading.text.clear();
    return reading;
}

std::string linkDestination(const std::string& path) {
    std::string destination = path;
    constexpr int deepest = 40;  // as the kernel counts
    for (int depth = 0; depth < deepest; ++depth) {
        std::array<char, PATH_MAX> target;
        const ssize_t length = readlink(destination.c_str(), target.data(), target.size());
        if (length <= 0 || static_cast<std::size_t>(length) == target.size()) break;
        const std::string next(target.data(), static_cast<std::size_t>(length));
        destination = next.starts_with('/') ? next : folderOf(destination) + "/" + next;
    }
    return destination;
}

int replaceFile(const std::string& path, const std::string& text) {
    const std::string folder = folderOf(path);
    const std::string partial = folder + "/." + path.substr(path.rfind('/') + 1) + ".partial";
    // One that a crash has left behind.
    ::unlink(partial.c_str());
    Descriptor file(partial, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (!file.isOpen()) return errno;

    int error = writeAll(file.get(), text);
    if (error == 0 && fsync(file.get()) != 0) error = errno;
    const int closeError = file.close();
    if (error == 0) error = closeError;
    if (error == 0 && ::rename(partial.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) {
        ::unlink(partial.c_str());
        return error;
    }
    return syncFolder(folder);
}

int renameToFreeName(const std::string& from, const std::string& to) {
    int error =
        renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
    if (error == EINVAL || error == ENOSYS) {
        // The file system cannot do it in one step; a second name for it never replaces either.
        error = link(from.c_str(), to.c_str()) == 0 ? 0 : errno;
        if (error == 0 && ::unlink(from.c_str()) != 0) error = errno;
    }
    return error == 0 ? syncFolder(folderOf(to)) : error;
}

SettingAside setAside(const std::string& path) {
    SettingAside result{EEXIST, linkDestination(path), {}};
    for (int number = 1; result.error == EEXIST; ++number) {
        result.to = result.from + ".unreadable-" + std::to_string(number);
        result.error = renameToFreeName(result.from, result.to);
    }
    return result;
}

int createFolder(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
    const std::string above = folderOf(path);
    if (above != path && above != ".") {
        if (const int error = createFolder(above); error != 0) return error;
    }
    if (::mkdir(path.c_str(), S_IRWXU) != 0) return errno == EEXIST ? 0 : errno;
    return syncFolder(above);
}

std::string errorText(int error) {
    const char* text = strerrordesc_np(error);
    return text != nullptr ? text : "error " + std::to_string(error);
}

FileLock::FileLock(const std::string& path)
    : descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                        S_IRUSR | S_IWUSR)) {
    if (descriptor < 0) {
        failure = errno;
        return;
    }
    // Others hold it for one write. A stuck one must not take us along, so no blocking call.
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(2);
    while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        failure = errno;
        if (failure == EINTR) continue;
        if (failure != EWOULDBLOCK) break;
        if (Clock::now() >= deadline) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    // Where the file system has no locks, going without beats never storing anything.
    failure = 0;
}

FileLock::~FileLock() {
    if (descriptor >= 0) ::close(descriptor);
}

}  // namespace quorvel::native
