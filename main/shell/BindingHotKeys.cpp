#include "main/shell/BindingHotKeys.hpp"

#include <utility>

#include "main/shell/ProcessValues.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/Text.hpp"

namespace quorvel {

std::int32_t handleHotKeyEvent(void*, const HotKeyEvent* event, void* userData) {
    if (event == nullptr || userData == nullptr) return eventNotHandledErr;
    const HotKeyID identifier = event->directObject.value_or(HotKeyID{});
    static_cast<BindingHotKeys*>(userData)->queuePress(identifier.id);
    return 0;
}

BindingHotKeys::BindingHotKeys(HotKeys& hotKeys, RunLoop& runLoop, Log& log,
                               std::function<void(std::uint32_t id)> pressed)
    : hotKeys(hotKeys), runLoop(runLoop), log(log), pressed(std::move(pressed)) {}

void BindingHotKeys::apply(const std::vector<AppBinding>& bindings) {
    if (!hotKeyEventHandlerInstalled) {
        hotKeys.installEventHandler(hotKeyEventHandler, this);
        hotKeyEventHandlerInstalled = true;
    }
    for (const HotKeyRef ref : std::exchange(bindingHotKeyRefs, {})) hotKeys.unregisterHotKey(ref);
    registered.clear();

    std::uint32_t id = firstID;
    for (const AppBinding& binding : bindings) registerShortcut(binding, id++);
}

void BindingHotKeys::registerShortcut(const AppBinding& binding, std::uint32_t id) {
    if (binding.hasNoHotKey()) return;
    const auto spec = HotKeySpec::parse(binding.hotKey);
    if (!spec) return;

    const auto [status, ref] = hotKeys.registerHotKey(virtualKeyCodes().at(spec->keyName),
                                                      spec->carbonMask(), {hotKeySignature, id});
    if (status != 0 || !ref) {
        log.line(formatted("Quorvel: hotkey '%@' for %@ rejected (error %d)", binding.hotKey,
                           binding.appPath, status));
        return;
    }
    bindingHotKeyRefs.push_back(*ref);
    registered.insert(binding.appPath);
    log.line(formatted("Quorvel: global hotkey registered (%@) for %@", spec->canonicalText(),
                       binding.appPath));
}

void BindingHotKeys::queuePress(std::uint32_t id) {
    runLoop.async([this, alive = life.watch(), id] {
        if (!alive.expired()) pressed(id);
    });
}

std::optional<std::size_t> BindingHotKeys::indexOf(std::uint32_t id, std::size_t count) {
    if (id < firstID || id - firstID >= count) return std::nullopt;
    return id - firstID;
}

}  // namespace quorvel
