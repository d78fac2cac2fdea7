#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "platform/HotKeys.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// The routine that all presses go to; its user data is a `BindingHotKeys`. It only takes the
/// identifier out of the event and queues the rest. No signature is compared: every press that
/// reaches this program is one of its own.
std::int32_t handleHotKeyEvent(void* call, const HotKeyEvent* event, void* userData);

/// The global shortcuts of the bindings.
class BindingHotKeys {
public:
    /// The identifier of the first binding, which the others follow in order.
    static constexpr std::uint32_t firstID = 100;

    /// `pressed` receives the identifier, from the run loop. It may be out of date by then.
    BindingHotKeys(HotKeys& hotKeys, RunLoop& runLoop, Log& log,
                   std::function<void(std::uint32_t id)> pressed);

    /// Unregisters everything, then registers the shortcuts of these bindings. One that is refused
    /// is logged and left out; the identifiers of the others do not move.
    void apply(const std::vector<AppBinding>& bindings);

    /// Whether the shortcut of this application is ours.
    bool isRegistered(const std::string& appPath) const { return registered.contains(appPath); }

    /// The place of a binding among `count` by its identifier.
    static std::optional<std::size_t> indexOf(std::uint32_t id, std::size_t count);

private:
    friend std::int32_t handleHotKeyEvent(void* call, const HotKeyEvent* event, void* userData);

    void registerShortcut(const AppBinding& binding, std::uint32_t id);
    void queuePress(std::uint32_t id);

    HotKeys& hotKeys;
    RunLoop& runLoop;
    Log& log;
    std::function<void(std::uint32_t id)> pressed;
    std::vector<HotKeyRef> bindingHotKeyRefs;
    std::set<std::string> registered;  ///< paths of applications
    bool hotKeyEventHandlerInstalled = false;
    Lifetime life;
};

}  // namespace quorvel
