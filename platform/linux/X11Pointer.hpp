#pragma once

#include <optional>

#include "platform/Pointer.hpp"
#include "platform/linux/X11Screens.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Each read is one round trip, but within an observation. A pointer that is on another screen of
/// the server (":0.1") is reported far away from every display of this one.
class X11Pointer final : public Pointer {
public:
    X11Pointer(XConnection& x, const X11Screens& screens) : x(x), screens(screens) {}

    PointerState read() const override;

    /// Until the end of the observation `read` gives what this has found.
    const PointerState& observe();
    void endObservation() { observed.reset(); }

private:
    PointerState ask() const;

    XConnection& x;
    const X11Screens& screens;
    std::optional<PointerState> observed;
};

}  // namespace quorvel::native
