#pragma once

#include <chrono>

#include "platform/Log.hpp"

namespace quorvel::native {

/// "YYYY-MM-DD HH:MM:SS.mmm Quorvel[pid] message" in local time, each line in one write, so that
/// lines of several processes never mix.
class StandardErrorLog final : public Log {
public:
    void line(std::string_view message) override;

    /// What `line` writes, its line break included.
    static std::string lineText(std::string_view message,
                                std::chrono::system_clock::time_point time, int processIdentifier);
};

}  // namespace quorvel::native
