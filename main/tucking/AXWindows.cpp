#include "main/tucking/AXWindows.hpp"

#include <cmath>

#include "platform/Text.hpp"

namespace quorvel {

std::optional<AXWindow> AXWindows::focusedWindow(std::int32_t pid,
                                                 const std::string& appPath) const {
    const FocusedWindowReading reading = access->focusedWindow(pid, appPath);
    if (reading.error == 0 && reading.window) return reading.window;
    log->line(formatted("Quorvel: no focused AX window for pid %d (%d)", pid, reading.error));
    return std::nullopt;
}

std::optional<Rect> AXWindows::frameAX(AXWindow window) const {
    const FrameReading reading = access->readFrame(window);
    if (!reading.positionAX || !reading.size) return std::nullopt;
    return Rect{reading.positionAX->x, reading.positionAX->y, reading.size->width,
                reading.size->height};
}

bool AXWindows::setOriginAX(Point originAX, AXWindow window, MoveStep step) const {
    // No window server has such a place, and nothing is worth a line about it.
    if (!std::isfinite(originAX.x) || !std::isfinite(originAX.y)) return false;
    const std::int32_t error = access->setOrigin(window, originAX, step);
    if (error == 0) return true;
    log->line(formatted("Quorvel: AX move failed (%d)", error));
    return false;
}

void AXWindows::hold(AXWindow window, const Rect& originalFrameAX) const {
    access->hold(window, originalFrameAX);
}

}  // namespace quorvel
