#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/hostile/Desk.hpp"

namespace quorvel::test {

struct Deed {
    std::string name;
    int weight;
    /// Gives what exactly was done; nothing when it was not possible.
    std::function<std::optional<std::string>(Desk&, Random&)> run;
    bool endsProgram = false;
};

const std::vector<Deed>& allDeeds();

}  // namespace quorvel::test
