#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/linux/FrameReader.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/WindowManagerTraits.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

enum class MoveOutcome {
    reached,   ///< for a frame of a slide: sent
    clamped,   ///< carried out as far as the window manager lets it; no method goes further
    refused,   ///< the window stays where it is
    vanished,  ///< there is no such window any more
};

struct MoveResult {
    MoveOutcome outcome = MoveOutcome::refused;
    std::uint8_t error = 0;  ///< of the server, when a request of ours was what failed
};

/// Moves what is seen of a window to a place, on the screen or off it, by the methods that the
/// running window manager honours: first by asking it, then past it. What was measured is
/// remembered for as long as that window manager lives. All coordinates are those of the root;
/// targets are whole pixels. Never changes a size.
class MoveLadder {
public:
    using Clock = FrameReader::Clock;

    MoveLadder(XConnection& x, FrameReader& frames, const WindowManagerInfo& manager);

    /// Where the window is to stay. Waits for the window to arrive, compares, corrects. `displays`
    /// may be empty.
    MoveResult place(const WindowReading& now, Point target, const std::vector<Rect>& displays,
                     Clock::time_point deadline);

    /// One frame of a slide, by the best method known and not waited for. The very first one that
    /// leaves the screen under an unknown window manager is measured as `place` does.
    MoveResult glide(const WindowReading& now, Point target, const std::vector<Rect>& displays,
                     Clock::time_point deadline);

    /// Asks the window manager to put the window there, with this client area if one is given,
    /// without waiting.
    void request(const WindowReading& now, Point target,
                 std::optional<Size> clientSize = std::nullopt);

    /// Whether windows that the window manager holds in place can be moved past it.
    bool canMovePastManager(const WindowReading& now) {
        remember(now);
        return traits.paintsOverriddenFrames;
    }

private:
    enum class Method { moveResize, configure };

    struct Memory {
        /// Added to a target so that the window manager's idea of a corner gives ours.
        std::optional<Point> correction;
        /// Where the window manager believes what is seen to stand, once it was moved past it.
        std::optional<Point> believed;
        Point overriddenCorner;  ///< where the frame stood then, by our doing
    };

    /// Brings what is remembered up to date with the window manager that runs now.
    Memory& remember(const WindowReading& now);
    std::vector<Method> methods() const;
    bool movesPastIt(const WindowReading& now, const Memory& memory) const;
    Point correctionFor(const WindowReading& now, const Memory& memory) const;
    void send(Method method, const WindowReading& now, Point corner,
              std::optional<Size> clientSize = std::nullopt);

    std::optional<WindowReading> arrival(const WindowReading& before, Point target,
                                         Clock::time_point latest);
    MoveResult askManager(const WindowReading& now, Point target, const std::vector<Rect>& displays,
                          Clock::time_point deadline);
    std::optional<WindowReading> correctOnce(Method method, const WindowReading& landed,
                                             Point target, Clock::time_point deadline);
    bool movesAtAll(const WindowReading& now, const std::vector<Rect>& displays,
                    Clock::time_point deadline);
    MoveResult goPastIt(const WindowReading& now, Point target, int attemptsLeft = 1);

    XConnection& x;
    FrameReader& frames;
    const WindowManagerInfo& manager;

    // Of the window manager with this generation.
    std::optional<std::uint64_t> generation;
    WindowManagerTraits traits;
    std::optional<Method> provenMethod;
    std::array<std::optional<Point>, 2> provenCorrection;  ///< [1]: windows with their own shadow
    std::unordered_map<xcb_window_t, Memory> memories;
    Subscription events;
};

}  // namespace quorvel::native
