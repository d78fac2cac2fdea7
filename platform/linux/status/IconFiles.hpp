#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/status/IconImage.hpp"

namespace quorvel::native {

/// Where the icons of the program at `executable` may lie: those that came with it first (beside it
/// in a build folder, or in the `share` folder of where it is installed), then the shared folders
/// of the XDG specification. Base folders of icon themes.
std::vector<std::string> iconFolders(const std::string& executable, const XdgFolders& folders);

/// The first of these folders whose `hicolor` theme has the program's icon.
std::optional<std::string> folderWithIcons(const std::vector<std::string>& folders);

/// The program's icon in the sizes that panels use, the smallest first. Empty where none can be
/// read.
std::vector<IconImage> loadIcons(const std::string& folder);

}  // namespace quorvel::native
