#include "platform/linux/WindowManagerTraits.hpp"

namespace quorvel::native {
namespace {

struct Known {
    std::string_view nameStart;
    WindowManagerTraits traits;
    bool paintsOverriddenFramesWhenComposited = true;
};

constexpr bool heeds = true;
constexpr bool paints = true;
constexpr bool floats = true;
constexpr bool raises = true;
constexpr bool clientArea = true;

// The longer of two names with a common start comes first.
constexpr Known table[]{
    {"Openbox", {heeds, OffScreenMoves::clamped, paints, floats}},
    {"Xfwm4", {heeds, OffScreenMoves::clamped, paints, floats, !raises}},
    {"Metacity (Marco)", {heeds, OffScreenMoves::clamped, paints, floats, !raises}},
    {"Metacity", {heeds, OffScreenMoves::clamped, paints, floats}, !paints},
    {"Mutter", {heeds, OffScreenMoves::clamped, !paints, floats}},
    {"GNOME Shell", {heeds, OffScreenMoves::clamped, !paints, floats}},
    {"IceWM", {heeds, OffScreenMoves::clamped, paints, floats}},
    {"KWin", {heeds, OffScreenMoves::carriedOut, !paints, !floats}},
    // Each message makes the window higher by its title bar.
    {"Fluxbox", {!heeds, OffScreenMoves::carriedOut, paints, floats}},
    {"JWM", {heeds, OffScreenMoves::carriedOut, paints, floats}},
    {"i3", {heeds, OffScreenMoves::carriedOut, paints, !floats, !raises, clientArea}},
    {"awesome", {!heeds, OffScreenMoves::carriedOut, paints, !floats}},
    {"bspwm", {!heeds, OffScreenMoves::carriedOut, paints, !floats}},
};

}  // namespace

WindowManagerTraits traitsByName(std::string_view name, bool isComposited) {
    for (const Known& known : table) {
        if (!name.starts_with(known.nameStart)) continue;
        WindowManagerTraits traits = known.traits;
        if (isComposited && !known.paintsOverriddenFramesWhenComposited) {
            traits.paintsOverriddenFrames = false;
        }
        return traits;
    }
    return {};
}

}  // namespace quorvel::native
