#include "platform/simulated/SimulatedHotKeys.hpp"

namespace quorvel {

void SimulatedHotKeys::press(std::uint32_t keyCode, std::uint32_t modifiers) {
    keyDown(keyCode, modifiers);
    keyUp(keyCode);
}

void SimulatedHotKeys::keyDown(std::uint32_t keyCode, std::uint32_t modifiers) {
    if (!down.insert(keyCode).second) return;
    const Combination combination{keyCode, modifiers};
    if (keyboardIsGrabbed || heldElsewhere.contains(combination) || !find(combination)) return;
    // The key belongs to us at this moment; whose it is when the event is read is seen then.
    runLoop.async([this, combination] { deliver(combination); });
}

void SimulatedHotKeys::keyUp(std::uint32_t keyCode) {
    down.erase(keyCode);
}

void SimulatedHotKeys::holdElsewhere(std::uint32_t keyCode, std::uint32_t modifiers) {
    heldElsewhere.insert({keyCode, modifiers});
}

void SimulatedHotKeys::releaseElsewhere(std::uint32_t keyCode, std::uint32_t modifiers) {
    heldElsewhere.erase({keyCode, modifiers});
}

std::vector<SimulatedHotKeys::Registered> SimulatedHotKeys::registered() const {
    std::vector<Registered> result;
    for (const auto& [ref, key] : keys) result.push_back(key);
    return result;
}

bool SimulatedHotKeys::isRegistered(std::uint32_t keyCode, std::uint32_t modifiers) const {
    return find({keyCode, modifiers}) != nullptr;
}

std::int32_t SimulatedHotKeys::installEventHandler(HotKeyEventHandler eventHandler, void* data) {
    ++installCount;
    if (installStatus != 0) return installStatus;
    handler = eventHandler;
    userData = data;
    return 0;
}

HotKeyRegistration SimulatedHotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    HotKeyID id) {
    const Combination combination{keyCode, modifiers};
    if (heldElsewhere.contains(combination) || find(combination)) {
        return {heldAlready, std::nullopt};
    }
    if (registrationStatus != 0) return {registrationStatus, std::nullopt};
    if (withholdsReferences) return {0, std::nullopt};
    const HotKeyRef ref{nextRef++};
    keys.emplace(ref, Registered{keyCode, modifiers, id});
    return {0, ref};
}

std::optional<std::uint32_t> SimulatedHotKeys::virtualKeyCode(std::uint32_t nativeScanCode) {
    constexpr std::uint32_t first = 8;
    const std::uint32_t code = nativeScanCode - first;
    if (nativeScanCode < first || code > 0x7F) return std::nullopt;
    return code;
}

void SimulatedHotKeys::unregisterHotKey(HotKeyRef ref) {
    keys.erase(ref);
}

const SimulatedHotKeys::Registered* SimulatedHotKeys::find(Combination combination) const {
    for (const auto& [ref, key] : keys) {
        if (Combination{key.keyCode, key.modifiers} == combination) return &key;
    }
    return nullptr;
}

void SimulatedHotKeys::deliver(Combination combination) {
    const Registered* key = find(combination);
    if (!key || !handler) return;
    HotKeyEvent event;
    if (!withholdsIdentifiers) event.directObject = key->id;
    handler(nullptr, &event, userData);
}

}  // namespace quorvel
