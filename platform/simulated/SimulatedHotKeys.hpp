#pragma once

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/HotKeys.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// A keyboard and the other programs that grab keys of it.
class SimulatedHotKeys final : public HotKeys {
public:
    static constexpr std::int32_t heldAlready = 10;

    explicit SimulatedHotKeys(RunLoop& runLoop) : runLoop(runLoop) {}

    // The user ---------------------------------------------------------------------------------

    /// Presses and releases a key while exactly these modifiers are held.
    void press(std::uint32_t keyCode, std::uint32_t modifiers);
    /// A second `keyDown` without a `keyUp` is the keyboard's own repetition.
    void keyDown(std::uint32_t keyCode, std::uint32_t modifiers);
    void keyUp(std::uint32_t keyCode);

    // Other programs ---------------------------------------------------------------------------

    void holdElsewhere(std::uint32_t keyCode, std::uint32_t modifiers);
    void releaseElsewhere(std::uint32_t keyCode, std::uint32_t modifiers);
    /// Another program has grabbed the whole keyboard: no press arrives.
    bool keyboardIsGrabbed = false;

    /// The program is gone, and with it its keys.
    void crash() {
        keys.clear();
        handler = nullptr;
    }

    // Faults -----------------------------------------------------------------------------------

    std::int32_t installStatus = 0;
    /// What the server answers to every registration that it would accept.
    std::int32_t registrationStatus = 0;
    /// Registrations succeed without a reference.
    bool withholdsReferences = false;
    /// Presses arrive without their identifier.
    bool withholdsIdentifiers = false;

    // What can be seen -------------------------------------------------------------------------

    struct Registered {
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;
        HotKeyID id;

        bool operator==(const Registered&) const = default;
    };
    /// In the order in which they were registered.
    std::vector<Registered> registered() const;
    bool isRegistered(std::uint32_t keyCode, std::uint32_t modifiers) const;
    int installCount = 0;

    // HotKeys ----------------------------------------------------------------------------------

    std::int32_t installEventHandler(HotKeyEventHandler eventHandler, void* data) override;
    HotKeyRegistration registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                      HotKeyID id) override;
    /// Scan codes count from 8, as on an X server.
    std::optional<std::uint32_t> virtualKeyCode(std::uint32_t nativeScanCode) override;
    void unregisterHotKey(HotKeyRef ref) override;

private:
    using Combination = std::pair<std::uint32_t, std::uint32_t>;

    const Registered* find(Combination combination) const;
    void deliver(Combination combination);

    RunLoop& runLoop;
    HotKeyEventHandler handler = nullptr;
    void* userData = nullptr;
    std::map<HotKeyRef, Registered> keys;
    std::set<Combination> heldElsewhere;
    std::set<std::uint32_t> down;
    std::uint64_t nextRef = 1;
};

}  // namespace quorvel
