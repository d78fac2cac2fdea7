#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// One thing that was looked at.
struct Finding {
    std::string topic;       ///< "window manager", "status item", …
    std::string text;        ///< what is so, in plain words
    bool isProblem = false;  ///< something that the user would want to change

    bool operator==(const Finding&) const = default;
};

/// What this desktop is like as far as the program depends on it.
class Diagnostics {
public:
    virtual ~Diagnostics() = default;

    /// Looks afresh at each call.
    virtual std::vector<Finding> examine() = 0;

    /// The programs that run on this desktop and are known to take shortcuts for themselves: where
    /// a shortcut is refused, one of these holds it, or one that nobody knows.
    virtual std::vector<std::string> shortcutTakers() = 0;
};

}  // namespace quorvel
