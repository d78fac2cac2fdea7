#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>

#include "platform/RunLoop.hpp"

namespace quorvel::native {

/// Sees launches through until their window has the keyboard. A window manager may refuse it to a
/// new window; then it is activated as the user asked, unless the user has turned to something else
/// meanwhile. Applications are named by their paths.
class PendingLaunches {
public:
    static constexpr RunLoop::Duration becomesActiveWithin = std::chrono::milliseconds(400);
    static constexpr RunLoop::Duration startsWithin = std::chrono::seconds(3);
    static constexpr RunLoop::Duration forgottenAfter = std::chrono::seconds(60);

    PendingLaunches(RunLoop& runLoop, std::function<void(const std::string& path)> activate);

    bool empty() const { return launches.empty(); }
    /// Launched a moment ago and nothing to be seen yet: a second launch would be one too many.
    bool isStarting(const std::string& path) const;

    /// `front` is what is in front as it is launched.
    void begin(const std::string& path, const std::optional<std::string>& front);
    void started(const std::string& path, std::int32_t pid);
    void failed(const std::string& path);
    void exited(std::int32_t pid, int status);

    /// The applications that have windows now.
    void windowsSeen(const std::function<bool(const std::string& path)>& hasWindow);
    void frontChanged(const std::optional<std::string>& front);

private:
    struct Launch {
        std::string path;
        std::optional<std::string> front;
        std::uint64_t began = 0;
        std::int32_t pid = 0;
        bool hasWindow = false;
    };

    bool isOlderThan(const Launch& launch, RunLoop::Duration age) const;
    void forgetOld();

    RunLoop& runLoop;
    std::function<void(const std::string&)> activate;
    std::list<Launch> launches;
    Lifetime life;
};

}  // namespace quorvel::native
