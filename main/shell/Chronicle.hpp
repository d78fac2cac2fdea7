#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// Remembers what the last trigger led to, in the words of the log and of the notes that are not
/// logged. Everything else goes by unchanged.
class Chronicle final : public Log {
public:
    struct Story {
        std::string trigger;
        std::uint64_t beganNanoseconds = 0;  ///< by the run loop's clock
        std::vector<std::string> steps;
    };

    /// For how long what happens after a trigger counts as its doing.
    static constexpr RunLoop::Duration span = std::chrono::seconds(3);
    static constexpr std::size_t mostSteps = 50;

    Chronicle(Log& log, RunLoop& runLoop) : log(log), runLoop(runLoop) {}

    void begin(std::string trigger);
    void line(std::string_view message) override;
    void note(std::string_view text) override;

    const std::optional<Story>& last() const { return story; }

private:
    void remember(std::string_view text);

    Log& log;
    RunLoop& runLoop;
    std::optional<Story> story;
};

}  // namespace quorvel
