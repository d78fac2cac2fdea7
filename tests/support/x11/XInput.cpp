#include "tests/support/x11/XInput.hpp"

#include <xcb/xtest.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "platform/linux/Xkb.hpp"

namespace quorvel::test {

const std::vector<KeyPosition>& keyPositions() {
    static const std::vector<KeyPosition> positions{
        {"A", 0, "AC01"},
        {"B", 11, "AB05"},
        {"C", 8, "AB03"},
        {"D", 2, "AC03"},
        {"E", 14, "AD03"},
        {"F", 3, "AC04"},
        {"G", 5, "AC05"},
        {"H", 4, "AC06"},
        {"I", 34, "AD08"},
        {"J", 38, "AC07"},
        {"K", 40, "AC08"},
        {"L", 37, "AC09"},
        {"M", 46, "AB07"},
        {"N", 45, "AB06"},
        {"O", 31, "AD09"},
        {"P", 35, "AD10"},
        {"Q", 12, "AD01"},
        {"R", 15, "AD04"},
        {"S", 1, "AC02"},
        {"T", 17, "AD05"},
        {"U", 32, "AD07"},
        {"V", 9, "AB04"},
        {"W", 13, "AD02"},
        {"X", 7, "AB02"},
        {"Y", 16, "AD06"},
        {"Z", 6, "AB01"},
        {"0", 29, "AE10"},
        {"1", 18, "AE01"},
        {"2", 19, "AE02"},
        {"3", 20, "AE03"},
        {"4", 21, "AE04"},
        {"5", 23, "AE05"},
        {"6", 22, "AE06"},
        {"7", 26, "AE07"},
        {"8", 28, "AE08"},
        {"9", 25, "AE09"},
        {"SPACE", 49, "SPCE"},
        {"RETURN", 36, "RTRN"},
        {"TAB", 48, "TAB"},
        {"ESCAPE", 53, "ESC"},
        {"F1", 122, "FK01"},
        {"F2", 120, "FK02"},
        {"F3", 99, "FK03"},
        {"F4", 118, "FK04"},
        {"F5", 96, "FK05"},
        {"F6", 97, "FK06"},
        {"F7", 98, "FK07"},
        {"F8", 100, "FK08"},
        {"F9", 101, "FK09"},
        {"F10", 109, "FK10"},
        {"F11", 103, "FK11"},
        {"F12", 111, "FK12"},
        {"SEMICOLON", 41, "AC10"},
        {"QUOTE", 39, "AC11"},
        {"COMMA", 43, "AB08"},
        {"PERIOD", 47, "AB09"},
        {"SLASH", 44, "AB10"},
        {"BACKSLASH", 42, "BKSL"},
        {"MINUS", 27, "AE11"},
        {"EQUALS", 24, "AE12"},
        {"LEFTBRACKET", 33, "AD11"},
        {"RIGHTBRACKET", 30, "AD12"},
        {"GRAVE", 50, "TLDE"},
        {"LEFT", 123, "LEFT"},
        {"RIGHT", 124, "RGHT"},
        {"DOWN", 125, "DOWN"},
        {"UP", 126, "UP"},
        {"DELETE", 51, "BKSP"},
        {"FORWARDDELETE", 117, "DELE"},
        {"HOME", 115, "HOME"},
        {"END", 119, "END"},
        {"PAGEUP", 116, "PGUP"},
        {"PAGEDOWN", 121, "PGDN"},
        {"Control", 0xFFFF, "LCTL"},
        {"Alt", 0xFFFF, "LALT"},
        {"Shift", 0xFFFF, "LFSH"},
        {"Super", 0xFFFF, "LWIN"},
        {"CapsLock", 0xFFFF, "CAPS"},
        {"NumLock", 0xFFFF, "NMLK"},
    };
    return positions;
}

XInput::XInput(const std::string& displayName) : client(displayName) {
    readKeyNames();
    tap("Shift");
}

XInput::~XInput() {
    if (xcb_connection_has_error(client.xcb()) == 0) releaseAll();
}

void XInput::readKeyNames() {
    xcb_connection_t* const connection = client.xcb();
    const XReply<xcb_xkb_use_extension_reply_t> use(
        xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
    const XReply<xcb_xkb_get_names_reply_t> names(xcb_xkb_get_names_reply(
        connection,
        xcb_xkb_get_names(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_NAME_DETAIL_KEY_NAMES),
        nullptr));
    if (!names) throw std::runtime_error("the X server does not tell the names of its keys");
    xcb_xkb_get_names_value_list_t values{};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(names.get()), names->nTypes,
                                        names->indicators, names->virtualMods, names->groupNames,
                                        names->nKeys, names->nKeyAliases, names->nRadioGroups,
                                        names->which, &values);
    for (int i = 0; i < names->nKeys; ++i) {
        const char* const text = values.keyNames[i].name;
        keycodes.emplace(std::string(text, strnlen(text, 4)),
                         static_cast<xcb_keycode_t>(names->firstKey + i));
    }
}

xcb_keycode_t XInput::keycode(const std::string& key) const {
    const auto& positions = keyPositions();
    const auto position = std::find_if(positions.begin(), positions.end(),
                                       [&](const KeyPosition& p) { return p.name == key; });
    if (position == positions.end()) throw std::invalid_argument("no such key: " + key);
    return keycodes.at(position->xkbName);
}

void XInput::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(client.xcb(), type, detail, XCB_CURRENT_TIME, client.root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    client.sync();
}

void XInput::press(const std::string& key) {
    held.push_back(key);
    fake(XCB_KEY_PRESS, keycode(key));
}

void XInput::release(const std::string& key) {
    std::erase(held, key);
    fake(XCB_KEY_RELEASE, keycode(key));
}

void XInput::tap(const std::string& key) {
    press(key);
    release(key);
}

void XInput::chord(const std::vector<std::string>& modifiers, const std::string& key) {
    for (const std::string& modifier : modifiers) press(modifier);
    tap(key);
    for (auto i = modifiers.rbegin(); i != modifiers.rend(); ++i) release(*i);
}

void XInput::releaseAll() {
    while (!held.empty()) release(std::string(held.back()));
    while (!heldButtons.empty()) releaseButton(*heldButtons.begin());
}

void XInput::moveTo(int x, int y) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void XInput::moveBy(int dx, int dy) {
    fake(XCB_MOTION_NOTIFY, 1, dx, dy);
}

void XInput::warpTo(int x, int y) {
    xcb_warp_pointer(client.xcb(), XCB_NONE, client.root(), 0, 0, 0, 0,
                     static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    client.sync();
}

void XInput::pressButton(std::uint8_t button) {
    heldButtons.insert(button);
    fake(XCB_BUTTON_PRESS, button);
}

void XInput::releaseButton(std::uint8_t button) {
    heldButtons.erase(button);
    fake(XCB_BUTTON_RELEASE, button);
}

void XInput::click(std::uint8_t button) {
    pressButton(button);
    releaseButton(button);
}

}  // namespace quorvel::test
