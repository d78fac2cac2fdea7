#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// A warning that must be answered. The first button is the default, the last one is what Escape
/// or closing the window means.
struct Alert {
    std::string message;
    std::string informativeText;
    std::vector<std::string> buttons;  ///< at least one

    bool operator==(const Alert&) const = default;
};

/// What answering by the first button returns; each further one counts one up.
inline constexpr int alertFirstButtonReturn = 1000;

}  // namespace quorvel
