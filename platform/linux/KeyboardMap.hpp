#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// A key by its place on the keyboard, as XKB names places: up to four characters.
using KeyName = std::array<char, 4>;

/// The place of a virtual key code of the ANSI layout; nothing for codes that no shortcut can name.
std::optional<KeyName> keyNameOf(std::uint32_t virtualKeyCode);

/// Where the server has its keys and modifiers right now.
struct KeyboardMap {
    std::map<KeyName, xcb_keycode_t> keycodes;  ///< aliases included; empty without XKB
    std::uint16_t option = XCB_MOD_MASK_1;      ///< the modifier of Alt
    std::uint16_t command = XCB_MOD_MASK_4;     ///< the modifier of Super
    /// What Caps Lock, Num Lock and Scroll Lock set.
    std::uint16_t locks = XCB_MOD_MASK_LOCK;

    bool operator==(const KeyboardMap&) const = default;

    /// One round trip. `xkb` when the connection has negotiated that extension.
    static KeyboardMap read(const XConnection& x, bool xkb);

    std::optional<xcb_keycode_t> keycodeOf(std::uint32_t virtualKeyCode) const;
    /// The other way round.
    std::optional<std::uint32_t> virtualKeyCodeOf(xcb_keycode_t keycode) const;
    /// The server's modifiers for a mask of 0x1000 control, 0x800 option, 0x200 shift, 0x100
    /// command; nothing when the mask has other bits.
    std::optional<std::uint16_t> modifiersOf(std::uint32_t mask) const;
};

}  // namespace quorvel::native
