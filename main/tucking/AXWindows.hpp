#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Geometry.hpp"
#include "platform/Log.hpp"
#include "platform/WindowAccess.hpp"

namespace quorvel {

/// The windows of other programs as the tuck engine sees them: failures become an absent result or
/// false, and those worth knowing a log line. A light value; what it is made over outlives it.
class AXWindows {
public:
    AXWindows(WindowAccess& access, Log& log) : access(&access), log(&log) {}

    /// Logs when there is none.
    std::optional<AXWindow> focusedWindow(std::int32_t pid, const std::string& appPath) const;

    /// Nothing, silently, unless both position and size can be read.
    std::optional<Rect> frameAX(AXWindow window) const;

    /// Whether the move was accepted; logs when it was not.
    bool setOriginAX(Point originAX, AXWindow window, MoveStep step = MoveStep::final) const;

    void raise(AXWindow window) const { access->raise(window); }
    void hold(AXWindow window, const Rect& originalFrameAX) const;
    void letGo(AXWindow window, EndOfHold how) const { access->letGo(window, how); }

private:
    WindowAccess* access;
    Log* log;
};

}  // namespace quorvel
