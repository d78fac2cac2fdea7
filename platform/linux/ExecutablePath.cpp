#include "platform/linux/ExecutablePath.hpp"

#include <filesystem>
#include <system_error>

namespace quorvel::native {

std::string executablePath() {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string() : path.string();
}

}  // namespace quorvel::native
