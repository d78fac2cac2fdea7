#include "platform/simulated/SimulatedScreens.hpp"

#include <array>
#include <cstdio>
#include <utility>

namespace quorvel {

SimulatedScreens::SimulatedScreens(RunLoop& runLoop)
    : runLoop(runLoop), attached{screen(1, {0, 0, 1440, 900}, true)}, reported(attached) {}

void SimulatedScreens::arrange(std::vector<Screen> arrangement) {
    attached = std::move(arrangement);
    ++unsettled;
    runLoop.after(settlingTime, [this] {
        if (--unsettled == 0) report();
    });
}

Screen SimulatedScreens::screen(std::uint32_t number, const Rect& frameCocoa, bool isBuiltin) {
    std::array<char, 37> uuid{};
    std::snprintf(uuid.data(), uuid.size(), "0A1B2C3D-4E5F-5678-9ABC-0000%08X", number);
    return {number, std::string(uuid.data()), "Display " + std::to_string(number), frameCocoa,
            isBuiltin};
}

double SimulatedScreens::primaryScreenMaxY() const {
    for (const Screen& screen : attached) {
        if (screen.frameCocoa.origin() == Point{}) return screen.frameCocoa.maxY();
    }
    return attached.empty() ? 0 : attached.front().frameCocoa.maxY();
}

Subscription SimulatedScreens::onChange(std::function<void()> handler) {
    return handlers.add(std::move(handler));
}

std::vector<Screen> SimulatedScreens::screens() const {
    if (attached != reported) isOwedAReport = true;
    return attached;
}

void SimulatedScreens::report() {
    if (!std::exchange(isOwedAReport, false) && attached == reported) return;
    reported = attached;
    handlers.notify();
}

}  // namespace quorvel
