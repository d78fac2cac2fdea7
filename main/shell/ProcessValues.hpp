#pragma once

#include <cstdint>

#include "main/shell/BindingHotKeys.hpp"
#include "platform/Geometry.hpp"
#include "platform/HotKeys.hpp"

namespace quorvel {

/// Four ASCII characters as one number, the first in the highest byte.
constexpr std::uint32_t fourCharacterCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<std::uint8_t>(text[i]);
    return code;
}

/// Of the picture in the status bar, in points.
inline constexpr Size menuBarIconSize{18, 18};

/// Marks the hot keys of the bindings among those that this program registers.
inline constexpr std::uint32_t hotKeySignature = fourCharacterCode("WZKH");

inline constexpr HotKeyEventHandler hotKeyEventHandler = &handleHotKeyEvent;

}  // namespace quorvel
