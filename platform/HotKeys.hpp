#pragma once

#include <cstdint>
#include <optional>

namespace quorvel {

struct HotKeyID {
    std::uint32_t signature = 0;  ///< four characters, big-endian
    std::uint32_t id = 0;

    bool operator==(const HotKeyID&) const = default;
};

/// One press of a registered hot key, as it is handed to the handler.
struct HotKeyEvent {
    std::optional<HotKeyID> directObject;
};

/// A plain routine: (the call, reserved and null here; the event; what was given to
/// `installEventHandler`) → 0, or `eventNotHandledErr`.
using HotKeyEventHandler = std::int32_t (*)(void* call, const HotKeyEvent* event, void* userData);

inline constexpr std::int32_t eventNotHandledErr = -9874;

enum class HotKeyRef : std::uint64_t {};

struct HotKeyRegistration {
    std::int32_t status = 0;  ///< 0 is success; else the server's error code (10: held already)
    std::optional<HotKeyRef> ref;
};

/// System-wide hot keys, by position on the keyboard: layouts do not matter, nor do Caps Lock,
/// Num Lock and their like. One press is one event; a held key does not repeat.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    /// All presses from now on go to this handler, on the main thread. Returns 0 on success.
    virtual std::int32_t installEventHandler(HotKeyEventHandler handler, void* userData) = 0;

    /// `keyCode` is a virtual key code of the ANSI layout, `modifiers` a mask of 0x1000 control,
    /// 0x800 option, 0x200 shift, 0x100 command. Exact: other modifiers held at the same time keep
    /// the key from firing. On failure nothing stays registered.
    virtual HotKeyRegistration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                              HotKeyID id) = 0;

    /// The virtual key code of the ANSI layout for the place of a key, which a key event tells by
    /// its native scan code; nothing for a key that no shortcut can name.
    virtual std::optional<std::uint32_t> virtualKeyCode(std::uint32_t nativeScanCode) = 0;

    /// An unknown reference is ignored.
    virtual void unregisterHotKey(HotKeyRef ref) = 0;
};

}  // namespace quorvel
