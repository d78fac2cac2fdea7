#include "platform/linux/X11HotKeys.hpp"

#include <algorithm>
#include <utility>

#include "platform/Text.hpp"
#include "platform/linux/Xkb.hpp"

namespace quorvel::native {
namespace {

constexpr std::int32_t badValue = 2;
constexpr std::int32_t badAccess = 10;

constexpr std::uint16_t allModifiers = 0xFF;

}  // namespace

bool X11HotKeys::Combination::matches(const xcb_key_press_event_t& press) const {
    return press.detail == key && (press.state & allModifiers & ~locks) == modifiers;
}

std::vector<std::uint16_t> X11HotKeys::Combination::variants() const {
    std::vector<std::uint16_t> result{modifiers};
    for (unsigned bit = 1; bit <= allModifiers; bit <<= 1) {
        if ((locks & bit) == 0) continue;
        for (std::size_t i = 0, count = result.size(); i < count; ++i) {
            result.push_back(static_cast<std::uint16_t>(result[i] | bit));
        }
    }
    return result;
}

X11HotKeys::X11HotKeys(XConnection& x, RunLoop& runLoop, Log& log)
    : x(x),
      runLoop(runLoop),
      log(log),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {}

X11HotKeys::~X11HotKeys() {
    for (const HotKey& hotKey : hotKeys) {
        if (hotKey.grabbed) ungrab(*hotKey.grabbed);
    }
}

std::int32_t X11HotKeys::installEventHandler(HotKeyEventHandler newHandler, void* newUserData) {
    handler = newHandler;
    userData = newUserData;
    return 0;
}

void X11HotKeys::learnKeyboard() {
    if (hasLearnt) return;
    hasLearnt = true;
    const xcb_query_extension_reply_t* xkb = xcb_get_extension_data(x.xcb(), &xcb_xkb_id);
    if (xkb != nullptr && xkb->present != 0) {
        const Reply<xcb_xkb_use_extension_reply_t> reply(xcb_xkb_use_extension_reply(
            x.xcb(), xcb_xkb_use_extension(x.xcb(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
            nullptr));
        if (reply && reply->supported != 0) firstXkbEvent = xkb->first_event;
    }
    if (firstXkbEvent != 0) {
        // A held key then repeats its press only, so that a release is always a release.
        constexpr std::uint32_t repeat = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
        xcb_xkb_per_client_flags(x.xcb(), XCB_XKB_ID_USE_CORE_KBD, repeat, repeat, 0, 0, 0);
        // A client that knows XKB is told in this way only.
        constexpr std::uint16_t changes =
            XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
        constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
        xcb_xkb_select_events(x.xcb(), XCB_XKB_ID_USE_CORE_KBD, changes, 0, changes, parts, parts,
                              nullptr);
    }
    keyboard = KeyboardMap::read(x, firstXkbEvent != 0);
}

std::optional<X11HotKeys::Combination> X11HotKeys::resolve(std::uint32_t keyCode,
                                                           std::uint32_t modifiers) const {
    const auto key = keyboard.keycodeOf(keyCode);
    const auto wanted = keyboard.modifiersOf(modifiers);
    if (!key || !wanted) return std::nullopt;
    return Combination{*key, *wanted, static_cast<std::uint16_t>(keyboard.locks & ~*wanted)};
}

std::int32_t X11HotKeys::grab(const Combination& combination) {
    // The server lets a client grab a combination twice.
    const bool isOurs = std::any_of(hotKeys.begin(), hotKeys.end(), [&](const HotKey& hotKey) {
        return hotKey.grabbed && hotKey.grabbed->key == combination.key &&
               hotKey.grabbed->modifiers == combination.modifiers;
    });
    if (isOurs) return badAccess;

    const std::vector<std::uint16_t> variants = combination.variants();
    std::vector<xcb_void_cookie_t> cookies;
    for (const std::uint16_t modifiers : variants) {
        cookies.push_back(xcb_grab_key_checked(x.xcb(), 0, x.root(), modifiers, combination.key,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    std::int32_t status = 0;
    for (const xcb_void_cookie_t cookie : cookies) {
        const std::uint8_t error = x.check(cookie);
        if (status == 0) status = error;
    }
    if (status != 0) ungrab(combination);
    return status;
}

void X11HotKeys::ungrab(const Combination& combination) {
    // Leaves alone what others hold.
    for (const std::uint16_t modifiers : combination.variants()) {
        xcb_ungrab_key(x.xcb(), combination.key, x.root(), modifiers);
    }
    x.flush();
}

HotKeyRegistration X11HotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                              HotKeyID id) {
    learnKeyboard();
    const auto combination = resolve(keyCode, modifiers);
    if (!combination) return {badValue, std::nullopt};
    if (const std::int32_t status = grab(*combination); status != 0) return {status, std::nullopt};
    const HotKeyRef ref{++lastRef};
    hotKeys.push_back({ref, id, keyCode, modifiers, combination});
    return {0, ref};
}

std::optional<std::uint32_t> X11HotKeys::virtualKeyCode(std::uint32_t nativeScanCode) {
    if (nativeScanCode > 0xFF) return std::nullopt;
    learnKeyboard();
    return keyboard.virtualKeyCodeOf(static_cast<xcb_keycode_t>(nativeScanCode));
}

void X11HotKeys::unregisterHotKey(HotKeyRef ref) {
    const auto found = std::find_if(hotKeys.begin(), hotKeys.end(),
                                    [&](const HotKey& hotKey) { return hotKey.ref == ref; });
    if (found == hotKeys.end()) return;
    if (found->grabbed) ungrab(*found->grabbed);
    hotKeys.erase(found);
}

void X11HotKeys::followKeyboard() {
    const KeyboardMap now = KeyboardMap::read(x, firstXkbEvent != 0);
    if (now == keyboard) return;
    keyboard = now;
    // All old places first: keys may have changed places with each other.
    for (HotKey& hotKey : hotKeys) {
        if (!hotKey.grabbed || hotKey.grabbed == resolve(hotKey.keyCode, hotKey.modifiers))
            continue;
        ungrab(*hotKey.grabbed);
        hotKey.grabbed.reset();
    }
    for (HotKey& hotKey : hotKeys) {
        if (hotKey.grabbed) continue;
        const auto combination = resolve(hotKey.keyCode, hotKey.modifiers);
        const std::int32_t status = combination ? grab(*combination) : badValue;
        if (status == 0) {
            hotKey.grabbed = combination;
        } else {
            log.line(
                formatted("Quorvel: global hotkey %u lost by a change of the keyboard (error %d)",
                          hotKey.id.id, status));
        }
    }
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7F;
    if (event.response_type == XCB_KEY_PRESS) {
        handlePress(reinterpret_cast<const xcb_key_press_event_t&>(event));
    } else if (event.response_type == XCB_KEY_RELEASE) {
        held.reset(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
    } else if (hasLearnt &&
               (type == XCB_MAPPING_NOTIFY || (firstXkbEvent != 0 && type == firstXkbEvent))) {
        // One change of the map comes as several events.
        if (std::exchange(willFollow, true)) return;
        runLoop.async([this, alive = life.watch()] {
            if (alive.expired()) return;
            willFollow = false;
            followKeyboard();
        });
    }
}

void X11HotKeys::handlePress(const xcb_key_press_event_t& press) {
    if (press.event != x.root() || held.test(press.detail)) return;
    held.set(press.detail);
    const auto pressed = std::find_if(hotKeys.begin(), hotKeys.end(), [&](const HotKey& hotKey) {
        return hotKey.grabbed && hotKey.grabbed->matches(press);
    });
    if (pressed == hotKeys.end() || handler == nullptr) return;
    // The handler may unregister anything: nothing here is touched after it.
    const HotKeyEvent event{pressed->id};
    handler(nullptr, &event, userData);
}

}  // namespace quorvel::native
