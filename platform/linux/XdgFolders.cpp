#include "platform/linux/XdgFolders.hpp"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quorvel::native {
namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string withoutTrailingSlash(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
    return std::string(path);
}

std::string absoluteOr(std::string_view path, const std::string& fallback) {
    return path.starts_with('/') ? withoutTrailingSlash(path) : fallback;
}

}  // namespace

XdgFolders XdgFolders::fromEnvironment(const std::string& home) {
    XdgFolders folders;
    folders.configHome = absoluteOr(variable("XDG_CONFIG_HOME"), home + "/.config");
    folders.dataFolders.push_back(absoluteOr(variable("XDG_DATA_HOME"), home + "/.local/share"));

    std::string_view shared = variable("XDG_DATA_DIRS");
    if (shared.empty()) shared = "/usr/local/share:/usr/share";
    while (!shared.empty()) {
        const std::string_view folder = shared.substr(0, shared.find(':'));
        if (folder.starts_with('/')) folders.dataFolders.push_back(withoutTrailingSlash(folder));
        shared.remove_prefix(std::min(folder.size() + 1, shared.size()));
    }
    return folders;
}

}  // namespace quorvel::native
