#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/WindowAccess.hpp"

namespace quorvel {

/// What can be wrong with a window. Read at every call, so a test may change it at any time.
struct WindowFaults {
    using Duration = std::chrono::nanoseconds;

    /// The window manager leaves the window where it is. A step that is not waited for seems to
    /// succeed all the same.
    bool ignoresMoves = false;
    /// Every move, waited for or not, is answered with this error.
    std::int32_t moveError = 0;
    /// The window manager keeps the whole window on its display.
    bool isClampedToDisplay = false;
    /// How far from where it was sent the window lands.
    Point landsOffBy;

    bool hidesPosition = false;
    bool hidesSize = false;

    /// What each call on the window takes. From 0.25 s on it fails after 0.25 s.
    Duration responseTime = Duration::zero();
    static constexpr Duration neverResponds = std::chrono::hours(1);

    /// So many more calls find the window, then it is closed.
    std::optional<int> vanishesAfterCalls;
};

/// A top-level window that the window manager has taken on.
struct SimulatedWindow {
    WindowElement element = 0;
    std::optional<std::string> bundlePath;  ///< the application that it belongs to
    std::int32_t processIdentifier = 0;
    Rect frameAX;
    bool isIconic = false;
    int iconifications = 0;  ///< how often it has become iconic
    /// A dialog of this window.
    std::optional<WindowElement> transientFor;
    bool isModal = false;
    /// Such a window cannot be moved; holding it takes the state away until it is home again.
    bool isMaximized = false;

    std::uint64_t lastActive = 0;  ///< greater is later; 0 when it never was
    std::uint64_t stacking = 0;    ///< greater is further in front

    // What the program has noted on the window itself, which outlives the program.
    std::optional<Rect> noteOfHold;  ///< where it belongs
    bool noteOfMaximized = false;
    bool noteOfHide = false;

    WindowFaults faults;

    AXWindow handle() const { return {element}; }
};

}  // namespace quorvel
