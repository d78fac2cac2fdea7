#pragma once

#include <functional>

#include "tests/property/Step.hpp"

namespace quorvel {

/// Whether a script still shows what is looked for.
using StillFails = std::function<bool(const Script&)>;

/// Delta debugging: a part of `script`, with smaller numbers where they do not matter, that still
/// fails, and of which no single step can be left out. `script` itself fails.
Script shrunk(Script script, const StillFails& stillFails);

}  // namespace quorvel
