#include "platform/simulated/SimulatedDesktop.hpp"

#include "platform/Text.hpp"

namespace quorvel {

Desktop SimulatedDesktop::desktop() {
    return {runLoop,    log,       defaults,      files,      screens, pointer,
            pollTimers, hotKeys,   applications,  catalog,    windows, trust,
            loginItem,  statusBar, remoteControl, diagnostics};
}

void SimulatedDesktop::install(const std::string& path, const std::string& name) {
    install(path, name, {});
}

void SimulatedDesktop::install(const std::string& path, const std::string& name,
                               SimulatedApplications::Launch launch) {
    files.add(path);
    catalog.add({path, name.empty() ? nameWithoutExtension(path) : name, {}});
    applications.install(path, std::move(launch));
}

AXWindow SimulatedDesktop::start(const std::string& path, const Rect& frameAX) {
    if (!catalog.contains(path)) install(path);
    return {server.open({.bundlePath = path, .frameAX = frameAX})};
}

std::optional<Rect> SimulatedDesktop::frameAX(AXWindow window) const {
    const SimulatedWindow* found = server.find(window.element);
    if (!found) return std::nullopt;
    return found->frameAX;
}

}  // namespace quorvel
