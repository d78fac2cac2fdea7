#pragma once

#include <optional>
#include <string>

namespace quorvel::native {

/// Why nothing can be started from this path, in words for the user; nothing when no reason is
/// found. For a desktop entry also what its text lacks.
std::optional<std::string> whyNotLaunchable(const std::string& path);

/// What is wrong with the file itself, before anybody reads it: not there, no file, no entry's
/// size, not executable.
std::optional<std::string> whyNotUsable(const std::string& path);

bool isDesktopEntryPath(const std::string& path);

}  // namespace quorvel::native
