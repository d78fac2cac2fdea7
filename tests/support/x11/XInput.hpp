#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/x11/XClient.hpp"

namespace quorvel::test {

/// A key by its place on the keyboard.
struct KeyPosition {
    std::string name;           ///< "T", "SPACE", "LEFTBRACKET", … or a modifier, "Control"
    std::uint32_t virtualCode;  ///< of the ANSI layout; 0xFFFF for modifiers and locks
    std::string xkbName;
};

/// All positions that shortcuts can name, then Control, Alt, Shift, Super, CapsLock, NumLock.
const std::vector<KeyPosition>& keyPositions();

/// Keyboard and pointer, as if someone used them. Every call returns when the server has taken it.
class XInput {
public:
    /// A first key stroke without effect is made here: the one after a change of the keyboard
    /// map is often lost.
    explicit XInput(const std::string& displayName);
    ~XInput();

    void press(const std::string& key);
    void release(const std::string& key);
    void tap(const std::string& key);
    /// Presses all in order and lets them go in reverse.
    void chord(const std::vector<std::string>& modifiers, const std::string& key);
    void releaseAll();

    /// Root coordinates. Motion is what a hand does; a warp is what a program does.
    void moveTo(int x, int y);
    void moveBy(int dx, int dy);
    void warpTo(int x, int y);

    void pressButton(std::uint8_t button);
    void releaseButton(std::uint8_t button);
    void click(std::uint8_t button = 1);

    /// The server's keycode for a position.
    xcb_keycode_t keycode(const std::string& key) const;

private:
    void readKeyNames();
    void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

    XClient client;
    std::map<std::string, xcb_keycode_t> keycodes;  ///< by XKB name
    std::vector<std::string> held;
    std::set<std::uint8_t> heldButtons;
};

}  // namespace quorvel::test
