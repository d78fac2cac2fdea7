#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace quorvel::test {

/// What the program costs, over all its runs.
class ProgramFigures {
public:
    /// A look at the process; a new number is a new run.
    void sample(pid_t pid);

    void print(std::ostream& out) const;

private:
    using Clock = std::chrono::steady_clock;

    struct Run {
        pid_t pid = 0;
        Clock::time_point begin;
        double seconds = 0;    ///< of its life, at the last look
        double processor = 0;  ///< seconds used
        double atFirst = 0;    ///< resident MB after its first minute, or at the last look before
        double now = 0;        ///< resident MB at the last look
        double most = 0;
    };

    std::vector<Run> runs;
};

struct LogFigures {
    int lines = 0;
    int mostInOneSecond = 0;
    std::string busiest;                  ///< that second
    std::vector<std::string> unwanted{};  ///< of sanitizers, assertions, libraries that complain
};

/// Of the program's log, and whatever else it has written.
LogFigures readLog(const std::filesystem::path& log, const std::filesystem::path& output);

}  // namespace quorvel::test
