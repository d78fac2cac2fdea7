#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>

#include "tests/property/Step.hpp"

namespace quorvel {

struct Breach {
    std::string what;       ///< the rule, a colon, and what happened
    std::size_t steps = 0;  ///< how many had been taken; one more than there are at the end

    /// Which rule was broken: two scripts that break the same one show the same fault.
    std::string rule() const { return what.substr(0, what.find(':')); }
};

/// Plays a script on the program from its launch to its end. Nothing when all went well. With a
/// stream it tells each step and what the program wrote to its log.
std::optional<Breach> run(const Script& script, std::ostream* narration = nullptr);

}  // namespace quorvel
