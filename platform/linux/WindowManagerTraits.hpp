#pragma once

#include <string_view>

namespace quorvel::native {

enum class OffScreenMoves {
    unknown,
    carriedOut,
    clamped,  ///< the window is kept on the screen, or some part of it
};

/// What a window manager is like as far as moving windows goes.
struct WindowManagerTraits {
    /// False where a pager's message does nothing, or harm.
    bool heedsMoveResize = true;
    OffScreenMoves offScreen = OffScreenMoves::unknown;
    /// Whether a frame that was moved past the window manager is painted where it then stands.
    bool paintsOverriddenFrames = true;
    /// It floats every window: when one stays where it is, it was kept there by a border.
    bool neverRefuses = false;

    /// A request to raise a window raises it, and gives it no keyboard.
    bool raisesOnRequest = true;

    /// The place in a message is that of the client's area, not of its decorations.
    bool placesClientArea = false;

    bool operator==(const WindowManagerTraits&) const = default;
};

/// A first guess by the name that it publishes, so that the first slide looks right too. What is
/// measured later overrules it.
WindowManagerTraits traitsByName(std::string_view name, bool isComposited);

}  // namespace quorvel::native
