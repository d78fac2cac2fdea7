#pragma once

#include <string>

#include "platform/ApplicationCatalog.hpp"

namespace quorvel {

/// What the windows call an application: the localized name of a desktop entry; for every other
/// path its last component without any ".app".
std::string appName(const ApplicationCatalog& catalog, const std::string& path);

}  // namespace quorvel
