#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/support/x11/WindowManager.hpp"

namespace quorvel::test {

/// One thing that a user can have Quorvel do, tried on a private desktop under a window manager.
struct Behaviour {
    std::string name;  ///< as the head of a column: "tuck left"
    /// Tries it and says what fell short, in words for a table; empty when nothing did. Needs a
    /// process of its own.
    std::function<std::string(WindowManagerKind)> tryOut;
};

const std::vector<Behaviour>& allBehaviours();

}  // namespace quorvel::test
