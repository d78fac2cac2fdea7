#include "main/interface/AppNames.hpp"

#include <string_view>

#include "platform/Text.hpp"

namespace quorvel {

std::string appName(const ApplicationCatalog& catalog, const std::string& path) {
    if (path.ends_with(".desktop")) return catalog.nameOf(path);
    constexpr std::string_view removed = ".app";
    const std::string last = lastPathComponent(path);
    std::string name;
    std::size_t from = 0;
    for (std::size_t at = last.find(removed); at != std::string::npos;
         at = last.find(removed, from)) {
        name.append(last, from, at - from);
        from = at + removed.size();
    }
    return name.append(last, from);
}

}  // namespace quorvel
