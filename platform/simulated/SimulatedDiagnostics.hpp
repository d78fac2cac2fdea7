#pragma once

#include <string>
#include <vector>

#include "platform/Diagnostics.hpp"

namespace quorvel {

class SimulatedDiagnostics final : public Diagnostics {
public:
    std::vector<Finding> findings;
    std::vector<std::string> takers;

    std::vector<Finding> examine() override { return findings; }
    std::vector<std::string> shortcutTakers() override { return takers; }
};

}  // namespace quorvel
