#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/Geometry.hpp"

namespace quorvel {

/// Names one top-level window of another program for as long as that window exists; a number is
/// never given out twice, even when the server uses an identifier again.
using WindowElement = std::uint64_t;

/// A handle on another application's window. Two handles are equal when they mean the same window,
/// however they were obtained. Owns nothing.
struct AXWindow {
    WindowElement element = 0;

    bool operator==(const AXWindow&) const = default;
};

struct FocusedWindowReading {
    std::int32_t error = 0;  ///< 0 also when the call succeeded but there is no such window
    std::optional<AXWindow> window;
};

/// What is seen of a window, in AX space: with its decorations, without invisible borders.
struct FrameReading {
    std::optional<Point> positionAX;
    std::optional<Size> size;
};

enum class MoveStep {
    intermediate,  ///< one frame of a slide: sent and not waited for
    final,         ///< where the window is to stay: waited for, compared, corrected
};

enum class EndOfHold {
    putBack,  ///< it is on its way home: the state that was left for it returns on arrival
    /// Someone else moved or closed it: left as it is, but sent home from where only a window
    /// manager has put it.
    forgotten,
};

/// Reading and moving the windows of other programs. Every call gives up after 0.25 s. A window
/// may vanish between any two calls; that is a result, not an error.
class WindowAccess {
public:
    virtual ~WindowAccess() = default;

    /// The window of the application at `bundlePath` (running as `processIdentifier`) that has the
    /// keyboard, or would have it if the application were activated. A dialog yields its main
    /// window.
    virtual FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                               const std::string& bundlePath) = 0;

    virtual FrameReading readFrame(AXWindow window) = 0;

    /// Moves what is seen of the window to `originAX`, by whatever method works on this desktop;
    /// the size stays. 0 when the window accepted it (possibly clamped; read the frame), −1 when it
    /// was refused or timed out, else the server's error code. After a final step `readFrame` gives
    /// where the window really ended.
    virtual std::int32_t setOrigin(AXWindow window, Point originAX, MoveStep step) = 0;

    /// In front of the other windows, without the keyboard.
    virtual void raise(AXWindow window) = 0;

    /// From here on the window may stand off the screen. `originalFrameAX` is where it belongs.
    virtual void hold(AXWindow window, const Rect& originalFrameAX) = 0;

    /// What an earlier run of this program held and never let go of, because it was killed: puts it
    /// back where it belongs, unless somebody has brought it onto the displays since. Gives how
    /// many windows were away.
    virtual int putBackLost() = 0;

    /// Ends `hold`. After `putBack` the next final step is the one that brings it home.
    virtual void letGo(AXWindow window, EndOfHold how) = 0;
};

}  // namespace quorvel

template <>
struct std::hash<quorvel::AXWindow> {
    std::size_t operator()(const quorvel::AXWindow& window) const noexcept {
        return std::hash<quorvel::WindowElement>{}(window.element);
    }
};
