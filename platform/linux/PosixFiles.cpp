#include "platform/linux/PosixFiles.hpp"

#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace quorvel::native {
namespace {

std::string fromPasswordDatabase() {
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> strings(4096);
    constexpr std::size_t enough = 1 << 20;
    while (getpwuid_r(getuid(), &entry, strings.data(), strings.size(), &found) == ERANGE &&
           strings.size() < enough) {
        strings.resize(strings.size() * 2);
    }
    return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
}

}  // namespace

bool PosixFiles::exists(std::string_view path) const {
    if (path.find('\0') != std::string_view::npos) return false;
    struct stat status {};
    return ::stat(std::string(path).c_str(), &status) == 0;
}

std::optional<bool> PosixFiles::isOnReadOnlyVolume(std::string_view path) const {
    if (path.find('\0') != std::string_view::npos) return std::nullopt;
    struct statvfs volume {};
    if (::statvfs(std::string(path).c_str(), &volume) != 0) return std::nullopt;
    return (volume.f_flag & ST_RDONLY) != 0;
}

std::string PosixFiles::homeDirectory() const {
    const char* variable = std::getenv("HOME");
    std::string home =
        variable != nullptr && variable[0] == '/' ? variable : fromPasswordDatabase();
    while (home.size() > 1 && home.back() == '/') home.pop_back();
    return home.starts_with('/') ? home : "/";
}

}  // namespace quorvel::native
