#include "main/tucking/EdgeRevealWatcher.hpp"

#include <algorithm>
#include <chrono>

namespace quorvel {
namespace {

constexpr RunLoop::Duration pollInterval = std::chrono::nanoseconds(std::chrono::seconds(1)) / 15;
constexpr RunLoop::Duration pollTolerance = std::chrono::milliseconds(20);
constexpr auto dwellNanos = static_cast<std::uint64_t>(EdgeRevealWatcher::dwell.count());

}  // namespace

EdgeRevealWatcher::EdgeRevealWatcher(TuckController& controller, Platform platform)
    : controller(controller), platform(platform) {}

void EdgeRevealWatcher::start() {
    if (timer) return;
    timer = platform.pollTimers.polling(pollInterval, pollTolerance, [this] { return tick(); });
    platform.log.line("Quorvel: edge reveal watcher armed");
}

PollAgain EdgeRevealWatcher::tick() {
    const auto targets = controller.revealTargets();
    if (targets.empty()) return PollAgain::onceAWindowIsHeld;
    const PointerState cursor = platform.pointer.read();
    const std::uint64_t now = platform.clock.uptimeNanoseconds();
    bool hasSent = false;
    for (const auto& target : targets) {
        if (follow(target, cursor, now)) hasSent = true;
    }
    forgetAllBut(targets);
    const bool goesOnByItself = hasSent || isDwelling() || controller.isMovingAnyWindow();
    return goesOnByItself ? PollAgain::afterInterval : PollAgain::onceAnythingMoves;
}

bool EdgeRevealWatcher::follow(const TuckController::RevealTarget& target,
                               const PointerState& cursor, std::uint64_t now) {
    HotZoneState& state = states[target.window];
    if (target.revealed) {
        // A pressed button may be dragging something out of the window. On its way out a window may
        // for a moment stand further off than it will, and not be under the cursor.
        const bool stays = target.frameCocoa.grown(margin).contains(cursor.locationCocoa) ||
                           cursor.pressedButtons != 0 || controller.isMoving(target.window);
        if (stays) return false;
        state.phase = HotZoneState::Armed{};
        controller.hide(target.window);
        return true;
    }
    const bool isInside = target.stripCocoa.containsInclusive(cursor.locationCocoa);
    if (!state.step({isInside, cursor.pressedButtons, now}, dwellNanos)) return false;
    controller.reveal(target.window);
    return true;
}

void EdgeRevealWatcher::forgetAllBut(const std::vector<TuckController::RevealTarget>& targets) {
    // Each target has its state by now.
    if (states.size() == targets.size()) return;
    std::erase_if(states, [&](const auto& entry) {
        return std::none_of(targets.begin(), targets.end(),
                            [&](const auto& target) { return target.window == entry.first; });
    });
}

bool EdgeRevealWatcher::isDwelling() const {
    return std::any_of(states.begin(), states.end(),
                       [](const auto& entry) { return entry.second.isDwelling(); });
}

}  // namespace quorvel
