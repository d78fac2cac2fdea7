#pragma once

#include <cstdint>

#include "platform/RestingPollTimers.hpp"
#include "platform/linux/X11Pointer.hpp"
#include "platform/linux/X11Screens.hpp"
#include "platform/linux/X11WindowAccess.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// A poll is one round trip: the pointer, and those held windows to which something has happened.
/// While at rest, raw motion and buttons of the X Input Extension (2.1 or later: those arrive
/// whoever has grabbed the pointer) tell that the user is back.
class X11PollTimers final : public RestingPollTimers {
public:
    X11PollTimers(XConnection& x, RunLoop& runLoop, X11Pointer& pointer, X11Screens& screens,
                  X11WindowAccess& windows);

private:
    std::optional<PointerState> beginObservation() override;
    void endObservation() override;
    bool listenToPointer(bool listens) override;

    XConnection& x;
    X11Pointer& pointer;
    X11Screens& screens;
    X11WindowAccess& windows;
    std::uint8_t inputOpcode = 0;  ///< 0 where the extension is missing or too old
    bool isListening = false;
    Subscription rawInput;
    Subscription heldWindows;
    Subscription holds;
    Subscription displays;
};

}  // namespace quorvel::native
