#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/Log.hpp"

namespace quorvel {

/// Keeps the lines as they would stand in the log file, less time and process.
class SimulatedLog final : public Log {
public:
    std::vector<std::string> lines;

    bool contains(std::string_view line) const;
    std::size_t count(std::string_view line) const;
    /// Lines that begin with this text.
    std::size_t countStartingWith(std::string_view beginning) const;
    /// The lines so far, which are forgotten with it.
    std::vector<std::string> taken();

    void line(std::string_view message) override;
};

}  // namespace quorvel
