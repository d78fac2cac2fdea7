#pragma once

#include <cstddef>
#include <cstdint>

#include "tests/property/Step.hpp"

namespace quorvel {

/// A script of that many steps, the same for the same seed everywhere: settings first, then
/// whatever may happen.
Script randomScript(std::uint64_t seed, std::size_t steps);

}  // namespace quorvel
