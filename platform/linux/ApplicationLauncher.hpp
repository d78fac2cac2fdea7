#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/RunLoop.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Starts programs. They get a session of their own and outlive us; their input and output are
/// /dev/null, since ours is our log; signals that we ignore are theirs again. When they end they
/// are reaped from the main loop.
class ApplicationLauncher {
public:
    struct Outcome {
        std::optional<std::string> error;  ///< in words for the user
        std::int32_t pid = 0;              ///< 0 when it is not our child
    };
    using Completion = std::function<void(const Outcome&)>;

    ApplicationLauncher(XConnection& x, RunLoop& runLoop);

    /// A desktop entry is launched as it asks for, anything else is run as it stands. The
    /// completion is called once, from the run loop.
    void launch(const std::string& path, Completion completion);

    /// A process that was started here has ended.
    [[nodiscard]] Subscription onExit(std::function<void(std::int32_t pid, int status)> handler);

private:
    Outcome launchEntry(const std::string& path);
    Outcome run(const std::string& path);
    /// False when it is not activated that way. The completion is called when the answer is there.
    bool activateOverBus(const std::string& path, const Completion& completion);
    void watch(std::int32_t pid);

    XConnection& x;
    RunLoop& runLoop;
    Subscribers<std::int32_t, int> exitHandlers;
    Lifetime life;
};

}  // namespace quorvel::native
