#pragma once

#include "platform/linux/FrameReader.hpp"
#include "platform/linux/MoveLadder.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// What a window gave up so that it could be moved.
struct GivenUpStates {
    FillingStates states;
    Rect normalSeen;  ///< where the window manager put it without them, in root coordinates
    Size normalClientSize;
};

/// Takes windows out of the maximised and fullscreen states, which hold them in place, and puts
/// them back into these.
class FillingStateKeeper {
public:
    using Clock = FrameReader::Clock;

    FillingStateKeeper(XConnection& x, FrameReader& frames, MoveLadder& ladder);

    /// Waits until the window has settled where it was seen and in the size that it was seen in; a
    /// window that only has certain sizes gets the next larger one. Nothing when it did not leave
    /// the states in time.
    std::optional<GivenUpStates> leave(const WindowReading& now, Clock::time_point deadline);

    /// The place and size that it has without the states return too, beneath them.
    void restore(const WindowReading& now, const GivenUpStates& given, Clock::time_point deadline);

private:
    enum class Change : std::uint32_t { remove = 0, add = 1 };

    void send(xcb_window_t client, const FillingStates& states, Change change) const;
    Size nextLargerSize(xcb_window_t client, Size size) const;

    XConnection& x;
    FrameReader& frames;
    MoveLadder& ladder;
};

}  // namespace quorvel::native
