#pragma once

#include <string>
#include <vector>

#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/status/IconImage.hpp"

namespace quorvel::native {

/// Where the icons of the program at `executable` may lie: those that came with it first (beside it
/// in a build folder, or in the `share` folder of where it is installed), then the shared folders
/// of the XDG specification. Base folders of icon themes.
std::vector<std::string> iconFolders(const std::string& executable, const XdgFolders& folders);

/// The program's icon in the sizes that panels use, from the first folder whose `hicolor` theme has
/// any; the smallest first. Empty where there is none that can be read.
std::vector<IconImage> loadIcons(const std::vector<std::string>& folders);

}  // namespace quorvel::native
