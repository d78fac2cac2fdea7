#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvel::native {

bool isShell(std::string_view baseName);

/// Whether a program of this base name runs scripts, so that its own name says nothing.
bool isInterpreter(std::string_view baseName);

/// A command line as a shell would split it; empty when its quotes do not close.
std::vector<std::string> splitCommandLine(const std::string& text);

/// What a command line is really about: looks through env, shells, sandboxes, interpreters and
/// other programs whose business it is to start one. For an interpreter its script, for `-m` its
/// module. As it stands there, with or without a folder; empty when it cannot be told.
std::string programOf(const std::vector<std::string>& arguments);

}  // namespace quorvel::native
