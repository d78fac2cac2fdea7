#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/pictures/Scene.hpp"

namespace quorvel::pictures {

/// Something that a user can come to see.
struct State {
    std::string name;
    std::function<void(Scene&)> reach;
};

std::vector<State> windowStates();
std::vector<State> sheetStates();
std::vector<State> dialogStates();
std::vector<State> focusStates();

// Desktops that several states have.

/// Three programs on one display.
struct SmallDesk {
    explicit SmallDesk(Scene& scene);
    std::string display;
    std::string terminal;
    std::string mail;
    std::string files;
};

/// Six programs, two displays and one that is not plugged in, with two conflicts.
struct LargeDesk {
    explicit LargeDesk(Scene& scene);
    std::string builtin;
    std::string external;
    std::string terminal;
    std::string web;
};

}  // namespace quorvel::pictures
