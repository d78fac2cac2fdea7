#pragma once

#include "platform/linux/FrameReader.hpp"
#include "platform/linux/MoveLadder.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// What a window was asked to give up so that it could be moved. In root coordinates.
struct GivenUpStates {
    struct Normal {
        Rect seen;
        Size clientSize;

        bool operator==(const Normal&) const = default;
    };

    FillingStates states;
    Rect filledSeen;               ///< where it was seen in them
    std::optional<Normal> normal;  ///< where it was put without them; once it has left them

    bool operator==(const GivenUpStates&) const = default;
};

/// Takes windows out of the maximised and fullscreen states, which hold them in place, and puts
/// them back into these.
class FillingStateKeeper {
public:
    using Clock = FrameReader::Clock;

    FillingStateKeeper(XConnection& x, FrameReader& frames, MoveLadder& ladder);

    /// Waits until the window has left the states, and keeps its size. One that takes longer than
    /// `deadline` has no `normal` yet: then `keepSize` does the rest.
    GivenUpStates leave(const WindowReading& now, Clock::time_point deadline);

    /// Gives a window that has left the states the place and size that it was seen in; one that
    /// only has certain sizes gets the next larger one.
    void keepSize(const WindowReading& now, GivenUpStates& given, Clock::time_point deadline);

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
