#include "platform/linux/KeyboardMap.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/linux/Xkb.hpp"

namespace quorvel::native {
namespace {

struct Position {
    std::uint32_t virtualKeyCode;
    std::string_view name;
};

constexpr std::array<Position, 73> positions{{
    {0, "AC01"},   {1, "AC02"},   {2, "AC03"},   {3, "AC04"},   {4, "AC06"},   {5, "AC05"},
    {6, "AB01"},   {7, "AB02"},   {8, "AB03"},   {9, "AB04"},   {11, "AB05"},  {12, "AD01"},
    {13, "AD02"},  {14, "AD03"},  {15, "AD04"},  {16, "AD06"},  {17, "AD05"},  {18, "AE01"},
    {19, "AE02"},  {20, "AE03"},  {21, "AE04"},  {22, "AE06"},  {23, "AE05"},  {24, "AE12"},
    {25, "AE09"},  {26, "AE07"},  {27, "AE11"},  {28, "AE08"},  {29, "AE10"},  {30, "AD12"},
    {31, "AD09"},  {32, "AD07"},  {33, "AD11"},  {34, "AD08"},  {35, "AD10"},  {36, "RTRN"},
    {37, "AC09"},  {38, "AC07"},  {39, "AC11"},  {40, "AC08"},  {41, "AC10"},  {42, "BKSL"},
    {43, "AB08"},  {44, "AB10"},  {45, "AB06"},  {46, "AB07"},  {47, "AB09"},  {48, "TAB"},
    {49, "SPCE"},  {50, "TLDE"},  {51, "BKSP"},  {53, "ESC"},   {96, "FK05"},  {97, "FK06"},
    {98, "FK07"},  {99, "FK03"},  {100, "FK08"}, {101, "FK09"}, {103, "FK11"}, {109, "FK10"},
    {111, "FK12"}, {115, "HOME"}, {116, "PGUP"}, {117, "DELE"}, {118, "FK04"}, {119, "END"},
    {120, "FK02"}, {121, "PGDN"}, {122, "FK01"}, {123, "LEFT"}, {124, "RGHT"}, {125, "DOWN"},
    {126, "UP"},
}};

constexpr xcb_keysym_t altLeft = 0xFFE9;
constexpr xcb_keysym_t altRight = 0xFFEA;
constexpr xcb_keysym_t superLeft = 0xFFEB;
constexpr xcb_keysym_t superRight = 0xFFEC;
constexpr xcb_keysym_t numLock = 0xFF7F;
constexpr xcb_keysym_t scrollLock = 0xFF14;

KeyName keyName(const char* fourCharacters) {
    KeyName name;
    std::memcpy(name.data(), fourCharacters, name.size());
    return name;
}

std::map<KeyName, xcb_keycode_t> namesOf(const xcb_xkb_get_names_reply_t& reply) {
    std::map<KeyName, xcb_keycode_t> keycodes;
    constexpr std::uint32_t expected =
        XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES;
    const std::size_t keys = reply.nKeys;
    const std::size_t aliases = reply.nKeyAliases;
    const std::size_t available = std::size_t{reply.length} * 4;
    // Only these two were asked for, so they stand first; every name has four bytes, every alias
    // two names.
    if ((reply.which & ~expected) != 0 || available < keys * 4 + aliases * 8) return keycodes;
    const char* name = static_cast<const char*>(xcb_xkb_get_names_value_list(&reply));
    for (std::size_t i = 0; i < keys; ++i, name += 4) {
        if (name[0] != '\0') {
            keycodes.emplace(keyName(name), static_cast<xcb_keycode_t>(reply.firstKey + i));
        }
    }
    for (std::size_t i = 0; i < aliases; ++i, name += 8) {
        if (const auto real = keycodes.find(keyName(name)); real != keycodes.end()) {
            keycodes.emplace(keyName(name + 4), real->second);
        }
    }
    return keycodes;
}

/// Which keysyms the keys of Mod1 to Mod5 have.
class ModifierKeys {
public:
    ModifierKeys(const xcb_get_modifier_mapping_reply_t& modifiers,
                 const xcb_get_keyboard_mapping_reply_t& keyboard, xcb_keycode_t first)
        : modifierKeycodes(xcb_get_modifier_mapping_keycodes(&modifiers)),
          keysPerModifier(modifiers.keycodes_per_modifier),
          keysyms(xcb_get_keyboard_mapping_keysyms(&keyboard)),
          keysymCount(static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(&keyboard))),
          keysymsPerKey(keyboard.keysyms_per_keycode),
          first(first) {}

    /// The modifier with a key of this keysym, rather as its first meaning than as another; 0 when
    /// there is none.
    std::uint16_t with(std::initializer_list<xcb_keysym_t> wanted) const {
        for (const std::size_t depth : {std::size_t{1}, keysymsPerKey}) {
            for (unsigned modifier = XCB_MAP_INDEX_1; modifier <= XCB_MAP_INDEX_5; ++modifier) {
                for (std::size_t i = 0; i < keysPerModifier; ++i) {
                    const xcb_keycode_t key = modifierKeycodes[modifier * keysPerModifier + i];
                    if (key >= first && has(key, wanted, depth)) {
                        return static_cast<std::uint16_t>(1U << modifier);
                    }
                }
            }
        }
        return 0;
    }

private:
    bool has(xcb_keycode_t key, std::initializer_list<xcb_keysym_t> wanted,
             std::size_t depth) const {
        const std::size_t begin = static_cast<std::size_t>(key - first) * keysymsPerKey;
        const std::size_t end = std::min(begin + depth, keysymCount);
        for (std::size_t i = begin; i < end; ++i) {
            if (std::find(wanted.begin(), wanted.end(), keysyms[i]) != wanted.end()) return true;
        }
        return false;
    }

    const xcb_keycode_t* modifierKeycodes;
    std::size_t keysPerModifier;
    const xcb_keysym_t* keysyms;
    std::size_t keysymCount;
    std::size_t keysymsPerKey;
    xcb_keycode_t first;
};

}  // namespace

std::optional<KeyName> keyNameOf(std::uint32_t virtualKeyCode) {
    for (const Position& position : positions) {
        if (position.virtualKeyCode != virtualKeyCode) continue;
        KeyName name{};
        std::copy(position.name.begin(), position.name.end(), name.begin());
        return name;
    }
    return std::nullopt;
}

KeyboardMap KeyboardMap::read(const XConnection& x, bool xkb) {
    const xcb_setup_t& setup = *xcb_get_setup(x.xcb());
    const xcb_keycode_t first = setup.min_keycode;
    xcb_xkb_get_names_cookie_t namesCookie{};
    if (xkb) {
        namesCookie =
            xcb_xkb_get_names(x.xcb(), XCB_XKB_ID_USE_CORE_KBD,
                              XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES);
    }
    const auto modifiersCookie = xcb_get_modifier_mapping(x.xcb());
    const auto keyboardCookie = xcb_get_keyboard_mapping(
        x.xcb(), first, static_cast<std::uint8_t>(setup.max_keycode - first + 1));

    KeyboardMap map;
    if (xkb) {
        const Reply<xcb_xkb_get_names_reply_t> names(
            xcb_xkb_get_names_reply(x.xcb(), namesCookie, nullptr));
        if (names) map.keycodes = namesOf(*names);
    }
    const Reply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(x.xcb(), modifiersCookie, nullptr));
    const Reply<xcb_get_keyboard_mapping_reply_t> keyboard(
        xcb_get_keyboard_mapping_reply(x.xcb(), keyboardCookie, nullptr));
    if (!modifiers || !keyboard) return map;
    const ModifierKeys keys(*modifiers, *keyboard, first);
    if (const std::uint16_t alt = keys.with({altLeft, altRight}); alt != 0) map.option = alt;
    if (const std::uint16_t super = keys.with({superLeft, superRight}); super != 0) {
        map.command = super;
    }
    map.locks = static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | keys.with({numLock}) |
                                           keys.with({scrollLock}));
    return map;
}

std::optional<xcb_keycode_t> KeyboardMap::keycodeOf(std::uint32_t virtualKeyCode) const {
    const auto name = keyNameOf(virtualKeyCode);
    if (!name) return std::nullopt;
    const auto found = keycodes.find(*name);
    if (found == keycodes.end()) return std::nullopt;
    return found->second;
}

std::optional<std::uint32_t> KeyboardMap::virtualKeyCodeOf(xcb_keycode_t keycode) const {
    for (const Position& position : positions) {
        if (keycodeOf(position.virtualKeyCode) == keycode) return position.virtualKeyCode;
    }
    return std::nullopt;
}

std::optional<std::uint16_t> KeyboardMap::modifiersOf(std::uint32_t mask) const {
    const std::array<std::pair<std::uint32_t, std::uint16_t>, 4> table{
        {{0x1000, XCB_MOD_MASK_CONTROL},
         {0x800, option},
         {0x200, XCB_MOD_MASK_SHIFT},
         {0x100, command}}};
    std::uint16_t modifiers = 0;
    for (const auto& [bit, modifier] : table) {
        if ((mask & bit) != 0) modifiers = static_cast<std::uint16_t>(modifiers | modifier);
        mask &= ~bit;
    }
    if (mask != 0) return std::nullopt;
    return modifiers;
}

}  // namespace quorvel::native
