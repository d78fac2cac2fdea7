#pragma once

#include <bitset>
#include <optional>
#include <vector>

#include "platform/HotKeys.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"
#include "platform/linux/KeyboardMap.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Hot keys as passive grabs on the root window, one for each state of the lock keys. When the
/// keyboard map changes, the grabs follow the keys and modifiers to where they are then; a key
/// that cannot be grabbed there is logged and tried again at the next change.
class X11HotKeys final : public HotKeys {
public:
    X11HotKeys(XConnection& x, RunLoop& runLoop, Log& log);
    ~X11HotKeys() override;

    std::int32_t installEventHandler(HotKeyEventHandler handler, void* userData) override;
    HotKeyRegistration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                      HotKeyID id) override;
    std::optional<std::uint32_t> virtualKeyCode(std::uint32_t nativeScanCode) override;
    void unregisterHotKey(HotKeyRef ref) override;

private:
    /// What the server is asked to watch for.
    struct Combination {
        xcb_keycode_t key = 0;
        std::uint16_t modifiers = 0;
        std::uint16_t locks = 0;  ///< may be set or not

        bool operator==(const Combination&) const = default;
        bool matches(const xcb_key_press_event_t& press) const;
        /// The modifiers together with each state of the locks.
        std::vector<std::uint16_t> variants() const;
    };

    struct HotKey {
        HotKeyRef ref{};
        HotKeyID id;
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;
        std::optional<Combination> grabbed;  ///< nothing while the keyboard has no place for it
    };

    void learnKeyboard();
    std::optional<Combination> resolve(std::uint32_t keyCode, std::uint32_t modifiers) const;
    /// 0, or the server's error code; then nothing is held.
    std::int32_t grab(const Combination& combination);
    void ungrab(const Combination& combination);
    void followKeyboard();
    void handle(const xcb_generic_event_t& event);
    void handlePress(const xcb_key_press_event_t& press);

    XConnection& x;
    RunLoop& runLoop;
    Log& log;
    HotKeyEventHandler handler = nullptr;
    void* userData = nullptr;
    bool hasLearnt = false;
    std::uint8_t firstXkbEvent = 0;  ///< 0 without XKB
    KeyboardMap keyboard;
    std::vector<HotKey> hotKeys;
    std::uint64_t lastRef = 0;
    std::bitset<256> held;
    bool willFollow = false;
    Lifetime life;
    Subscription events;
};

}  // namespace quorvel::native
