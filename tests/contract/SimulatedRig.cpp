#include <algorithm>
#include <stdexcept>

#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/contract/Rig.hpp"
#include "tests/support/x11/XInput.hpp"

namespace quorvel::test {
namespace {

std::uint32_t virtualCode(const std::string& key) {
    const auto& positions = keyPositions();
    const auto found = std::find_if(positions.begin(), positions.end(),
                                    [&](const KeyPosition& p) { return p.name == key; });
    if (found == positions.end()) throw std::invalid_argument("no such key: " + key);
    return found->virtualCode;
}

class SimulatedRig final : public Rig {
public:
    SimulatedRig() {
        arrange({{0, 0, 1280, 800}});
        simulated.advance(1s);
    }

    Desktop desktop() override { return simulated.desktop(); }

    bool until(const std::function<bool()>& observed, std::chrono::milliseconds limit) override {
        for (auto passed = 0ms; passed <= limit; passed += 1ms) {
            simulated.settle();
            if (observed()) return true;
            simulated.advance(1ms);
        }
        return false;
    }

    void requestTermination() override { simulated.runLoop.sendTerminationSignal(); }

    void arrange(const std::vector<Rect>& displaysAX) override {
        std::vector<Screen> screens;
        for (std::uint32_t socket = 0; socket < displaysAX.size(); ++socket) {
            const Rect& frameAX = displaysAX[socket];
            if (frameAX.isEmpty()) continue;
            const double primaryMaxY =
                displaysAX[0].isEmpty() ? frameAX.maxY() : displaysAX[0].height;
            screens.push_back(SimulatedScreens::screen(socket + 1, flipped(frameAX, primaryMaxY)));
        }
        simulated.screens.arrange(screens);
    }

    void keyDown(const std::string& key, std::uint32_t modifiers) override {
        simulated.hotKeys.keyDown(virtualCode(key), modifiers);
    }
    void keyUp(const std::string& key, std::uint32_t) override {
        simulated.hotKeys.keyUp(virtualCode(key));
    }
    // This keyboard has none.
    void toggleLock(Lock) override {}
    void holdElsewhere(const std::string& key, std::uint32_t modifiers) override {
        simulated.hotKeys.holdElsewhere(virtualCode(key), modifiers);
    }
    void releaseElsewhere(const std::string& key, std::uint32_t modifiers) override {
        simulated.hotKeys.releaseElsewhere(virtualCode(key), modifiers);
    }

    void movePointer(Point pointAX) override {
        simulated.pointer.moveTo({pointAX.x, simulated.screens.primaryScreenMaxY() - pointAX.y});
    }
    void pressButton(std::uint8_t button) override { simulated.pointer.press(button); }
    void releaseButton(std::uint8_t button) override { simulated.pointer.release(button); }

    std::string install(const std::string& name) override {
        const std::string path = "/usr/share/applications/org.quorvel.test." + name + ".desktop";
        simulated.install(path, name);
        return path;
    }
    std::string installCopy(const std::string& path) override {
        const std::string copy = "/home/someone/" + path.substr(path.rfind('/') + 1);
        simulated.applications.addAlias(path, copy);
        return copy;
    }
    Window openWindow(const std::string& path, const Rect& wantedFrameAX) override {
        return simulated.server.open({.bundlePath = path, .frameAX = wantedFrameAX});
    }
    Window openDialog(const std::string& path, Window parent) override {
        return simulated.server.open({.bundlePath = path,
                                      .frameAX = {300, 250, 200, 100},
                                      .transientFor = parent,
                                      .isModal = true});
    }
    Window launchedWindow(const std::string& path) override {
        Window found = 0;
        until(
            [&] {
                const auto windows = simulated.server.windowsOf(path, 0);
                if (!windows.empty()) found = windows.front()->element;
                return found != 0;
            },
            5s);
        if (found == 0) throw std::runtime_error("no window of " + path);
        return found;
    }
    void closeWindow(Window window) override { simulated.server.close(window); }
    int launches(const std::string& path) override {
        return simulated.applications.launchCounts[path];
    }
    std::int32_t processIdentifier(const std::string& path) override {
        return simulated.server.windowsOf(path, 0).at(0)->processIdentifier;
    }
    void kill(const std::string& path) override { simulated.server.kill(processIdentifier(path)); }
    void suspend(const std::string& path) override {
        setResponseTime(path, WindowFaults::neverResponds);
    }
    void resume(const std::string& path) override {
        setResponseTime(path, WindowFaults::Duration::zero());
    }

    void activate(Window window) override { simulated.server.activate(window); }
    void iconify(Window window) override { simulated.server.iconify(window); }
    void moveTo(Window window, Point originAX) override { simulated.server.drag(window, originAX); }
    void fillDisplay(Window window) override { simulated.server.window(window).isMaximized = true; }

    std::optional<Rect> seenFrameAX(Window window) override {
        return simulated.frameAX(AXWindow{window});
    }
    bool isShown(Window window) override { return !simulated.server.window(window).isIconic; }
    bool isActive(Window window) override { return simulated.server.active() == window; }
    bool isInFrontOf(Window front, Window back) override {
        return simulated.server.window(front).stacking > simulated.server.window(back).stacking;
    }
    bool fillsDisplay(Window window) override {
        return simulated.server.window(window).isMaximized;
    }

    Window openOwnWindow() override {
        return simulated.server.open({.bundlePath = simulated.server.ownPath,
                                      .processIdentifier = simulated.server.ownProcessIdentifier});
    }
    std::int32_t ownProcessIdentifier() override { return simulated.server.ownProcessIdentifier; }
    void endWindowManager() override { simulated.trust.granted = false; }
    void restartWindowManager() override { simulated.trust.granted = true; }
    int trustPrompts() override { return simulated.trust.promptCount; }
    void closeTrustPrompt() override { simulated.trust.promptIsShown = false; }

    void writeOtherDomain(const std::string& domain, const std::string& key,
                          const std::string& text) override {
        simulated.defaults.otherDomains[domain].insert_or_assign(key, text);
    }
    void writePreset(const std::string& key, const std::string& text) override {
        simulated.defaults.presets.insert_or_assign(key, text);
    }

private:
    void setResponseTime(const std::string& path, WindowFaults::Duration time) {
        for (SimulatedWindow* window : simulated.server.windowsOf(path, 0)) {
            window->faults.responseTime = time;
        }
    }

    SimulatedDesktop simulated;
};

}  // namespace

RigKind simulatedRig() {
    return {"simulated", [] { return std::make_unique<SimulatedRig>(); }};
}

}  // namespace quorvel::test
