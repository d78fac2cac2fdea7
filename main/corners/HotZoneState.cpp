#include "main/corners/HotZoneState.hpp"

namespace quorvel {

bool HotZoneState::step(const Poll& poll, std::uint64_t dwellNanos) {
    if (!poll.cursorIsInside) {
        phase = Armed{};
        return false;
    }
    if (std::holds_alternative<Fired>(phase)) return false;
    if (poll.pressedButtons != 0) {
        phase = Armed{};
        return false;
    }
    if (!isDwelling()) phase = Dwelling{poll.now};
    const std::uint64_t since = std::get<Dwelling>(phase).since;
    const std::uint64_t elapsed = poll.now >= since ? poll.now - since : 0;
    if (elapsed < dwellNanos) return false;
    phase = Fired{};
    return true;
}

}  // namespace quorvel
