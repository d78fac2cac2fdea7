#include "platform/simulated/SimulatedWindowServer.hpp"

#include <algorithm>
#include <stdexcept>

namespace quorvel {

WindowElement SimulatedWindowServer::open(Opening opening) {
    SimulatedWindow window;
    window.element = nextElement++;
    window.bundlePath = std::move(opening.bundlePath);
    window.processIdentifier = opening.processIdentifier;
    if (window.processIdentifier == 0 && window.bundlePath) {
        const auto others = windowsOf(window.bundlePath, 0);
        if (!others.empty()) window.processIdentifier = others.front()->processIdentifier;
    }
    if (window.processIdentifier == 0) window.processIdentifier = newProcessIdentifier();
    window.frameAX = opening.frameAX;
    window.transientFor = opening.transientFor;
    window.isModal = opening.isModal;
    window.stacking = moment++;
    windows.push_back(window);
    if (opening.activates) activate(window.element);
    return window.element;
}

template <class Condition>
void SimulatedWindowServer::remove(Condition condition) {
    std::vector<WindowElement> gone;
    for (const SimulatedWindow& window : windows) {
        if (condition(window)) gone.push_back(window.element);
    }
    std::erase_if(windows, condition);
    const bool wasActive =
        activeWindow && std::find(gone.begin(), gone.end(), *activeWindow) != gone.end();
    if (wasActive) activateNext();
    for (const WindowElement window : gone) changes.notify(window);
}

void SimulatedWindowServer::close(WindowElement window) {
    remove([&](const SimulatedWindow& other) { return other.element == window; });
}

void SimulatedWindowServer::kill(std::int32_t processIdentifier) {
    remove(
        [&](const SimulatedWindow& other) { return other.processIdentifier == processIdentifier; });
}

void SimulatedWindowServer::quit(const std::string& bundlePath) {
    remove([&](const SimulatedWindow& other) { return other.bundlePath == bundlePath; });
}

void SimulatedWindowServer::activate(WindowElement window) {
    SimulatedWindow* found = find(window);
    if (!found) return;
    deiconify(window);
    found->stacking = moment++;
    // A modal dialog takes the keyboard from the window that it belongs to.
    for (SimulatedWindow& other : windows) {
        if (other.isModal && other.transientFor == window) {
            activate(other.element);
            return;
        }
    }
    found->lastActive = moment++;
    setActive(window);
}

void SimulatedWindowServer::deactivateAll() {
    setActive(std::nullopt);
}

void SimulatedWindowServer::iconify(WindowElement window) {
    SimulatedWindow* found = find(window);
    if (!found || found->isIconic) return;
    found->isIconic = true;
    ++found->iconifications;
    if (activeWindow == window) activateNext();
}

void SimulatedWindowServer::deiconify(WindowElement window) {
    SimulatedWindow* const found = find(window);
    if (!found) return;
    found->isIconic = false;
    found->noteOfHide = false;
}

void SimulatedWindowServer::drag(WindowElement window, Point originAX) {
    SimulatedWindow* found = find(window);
    if (!found) return;
    found->frameAX.x = originAX.x;
    found->frameAX.y = originAX.y;
    changes.notify(window);
}

void SimulatedWindowServer::resize(WindowElement window, Size size) {
    SimulatedWindow* found = find(window);
    if (!found) return;
    found->frameAX.width = size.width;
    found->frameAX.height = size.height;
    changes.notify(window);
}

void SimulatedWindowServer::raise(WindowElement window) {
    if (SimulatedWindow* found = find(window)) found->stacking = moment++;
}

SimulatedWindow* SimulatedWindowServer::find(WindowElement window) {
    const auto at = std::find_if(windows.begin(), windows.end(),
                                 [&](const auto& other) { return other.element == window; });
    return at == windows.end() ? nullptr : &*at;
}

const SimulatedWindow* SimulatedWindowServer::find(WindowElement window) const {
    const auto at = std::find_if(windows.begin(), windows.end(),
                                 [&](const auto& other) { return other.element == window; });
    return at == windows.end() ? nullptr : &*at;
}

SimulatedWindow& SimulatedWindowServer::window(WindowElement window) {
    SimulatedWindow* found = find(window);
    if (!found) throw std::out_of_range("no window " + std::to_string(window));
    return *found;
}

std::vector<const SimulatedWindow*> SimulatedWindowServer::stacked() const {
    auto result = all();
    std::sort(result.begin(), result.end(),
              [](const auto* a, const auto* b) { return a->stacking > b->stacking; });
    return result;
}

std::vector<SimulatedWindow*> SimulatedWindowServer::all() {
    std::vector<SimulatedWindow*> result;
    for (SimulatedWindow& window : windows) result.push_back(&window);
    return result;
}

std::vector<const SimulatedWindow*> SimulatedWindowServer::all() const {
    std::vector<const SimulatedWindow*> result;
    for (const SimulatedWindow& window : windows) result.push_back(&window);
    return result;
}

std::vector<SimulatedWindow*> SimulatedWindowServer::windowsOf(
    const std::optional<std::string>& bundlePath, std::int32_t processIdentifier) {
    std::vector<SimulatedWindow*> result;
    for (SimulatedWindow& window : windows) {
        if (window.bundlePath != bundlePath) continue;
        if (!bundlePath && window.processIdentifier != processIdentifier) continue;
        result.push_back(&window);
    }
    return result;
}

void SimulatedWindowServer::setActive(std::optional<WindowElement> window) {
    if (activeWindow == window) return;
    activeWindow = window;
    if (activeChanged) activeChanged();
}

/// Window managers hand the keyboard to the window that had it before.
void SimulatedWindowServer::activateNext() {
    const SimulatedWindow* next = mostRecent(all(), false);
    if (next) {
        activate(next->element);
    } else {
        setActive(std::nullopt);
    }
}

}  // namespace quorvel
