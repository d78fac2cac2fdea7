#pragma once

#include <string>

namespace quorvel::native {

/// Where the running program lies, symbolic links resolved; empty when the system does not tell.
std::string executablePath();

}  // namespace quorvel::native
