#include "platform/linux/PendingLaunches.hpp"

#include <algorithm>
#include <utility>

namespace quorvel::native {

PendingLaunches::PendingLaunches(RunLoop& runLoop,
                                 std::function<void(const std::string& path)> activate)
    : runLoop(runLoop), activate(std::move(activate)) {}

bool PendingLaunches::isStarting(const std::string& path) const {
    return std::any_of(launches.begin(), launches.end(), [&](const Launch& launch) {
        return launch.path == path && !launch.hasWindow && !isOlderThan(launch, startsWithin);
    });
}

void PendingLaunches::begin(const std::string& path, const std::optional<std::string>& front) {
    forgetOld();
    failed(path);
    launches.push_back({path, front, runLoop.uptimeNanoseconds(), 0, false});
}

void PendingLaunches::started(const std::string& path, std::int32_t pid) {
    for (Launch& launch : launches) {
        if (launch.path == path) launch.pid = pid;
    }
}

void PendingLaunches::failed(const std::string& path) {
    launches.remove_if([&](const Launch& launch) { return launch.path == path; });
}

void PendingLaunches::exited(std::int32_t pid, int status) {
    // Many programs leave their work to another process and end well.
    if (status == 0) return;
    launches.remove_if([&](const Launch& launch) { return launch.pid == pid; });
}

void PendingLaunches::windowsSeen(const std::function<bool(const std::string& path)>& hasWindow) {
    forgetOld();
    for (Launch& launch : launches) {
        if (launch.hasWindow || !hasWindow(launch.path)) continue;
        launch.hasWindow = true;
        runLoop.after(becomesActiveWithin,
                      [this, alive = life.watch(), path = launch.path, began = launch.began] {
                          if (alive.expired()) return;
                          const auto found = std::find_if(
                              launches.begin(), launches.end(), [&](const Launch& other) {
                                  return other.path == path && other.began == began;
                              });
                          if (found == launches.end()) return;
                          launches.erase(found);
                          activate(path);
                      });
    }
}

void PendingLaunches::frontChanged(const std::optional<std::string>& front) {
    if (!front) return;
    launches.remove_if([&](Launch& launch) {
        // Whoever was on the way to the front then is not what the user turned to since.
        if (!launch.front) launch.front = front;
        return launch.path == *front || launch.front != front;
    });
}

bool PendingLaunches::isOlderThan(const Launch& launch, RunLoop::Duration age) const {
    return runLoop.uptimeNanoseconds() - launch.began > static_cast<std::uint64_t>(age.count());
}

void PendingLaunches::forgetOld() {
    launches.remove_if(
        [this](const Launch& launch) { return isOlderThan(launch, forgottenAfter); });
}

}  // namespace quorvel::native
