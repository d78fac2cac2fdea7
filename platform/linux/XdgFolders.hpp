#pragma once

#include <string>
#include <vector>

namespace quorvel::native {

/// The base directories of the XDG specification; all absolute, none need exist.
struct XdgFolders {
    std::string configHome;
    std::vector<std::string> dataFolders;  ///< the user's own first

    /// From the environment, with the standard's fallbacks below `home`. Relative entries do not
    /// count.
    static XdgFolders fromEnvironment(const std::string& home);
};

}  // namespace quorvel::native
