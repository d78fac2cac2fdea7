#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "main/settings/Settings.hpp"
#include "main/shell/Application.hpp"
#include "main/shell/LauncherController.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/support/FakeInterface.hpp"
#include "tests/support/Printers.hpp"

namespace quorvel {

/// The whole program on the simulated desktop, where it has run before.
class LauncherFixture : public testing::Test {
protected:
    LauncherFixture() {
        for (const std::string_view marker :
             {Keys::didMigrateLegacySettings, Keys::didFlattenPlacements,
              Keys::didOfferLoginItem}) {
            sim.defaults.values.append(std::string(marker), true);
        }
    }

    static constexpr const char* editor = "/usr/share/applications/editor.desktop";
    static constexpr const char* browser = "/usr/share/applications/browser.desktop";
    static constexpr const char* editorKeys = "control,option,E";
    static constexpr const char* browserKeys = "control,option,B";

    SimulatedDesktop sim;
    FakeInterface interface;
    bool interfaceIsMissing = false;
    int interfaceLoads = 0;
    Application application{sim.runLoop};
    std::optional<LauncherController> controller;

    LauncherController& create() {
        controller.emplace(sim.desktop(), application, [this]() -> Interface* {
            ++interfaceLoads;
            return interfaceIsMissing ? nullptr : &interface;
        });
        application.setDelegate(*controller);
        return *controller;
    }

    void launch() {
        create();
        sim.runLoop.async([this] { controller->applicationDidFinishLaunching(); });
        sim.settle();
    }

    void bind(const std::vector<AppBinding>& bindings) {
        Settings(sim.defaults).setAppBindings(bindings);
    }

    void place(const std::vector<Placement>& placements) {
        Settings(sim.defaults).setPlacements(placements);
    }

    static std::string displayId(std::uint32_t number) {
        return *SimulatedScreens::screen(number, {}).uuid;
    }

    /// As the user does, and everything that follows from it at once.
    void press(const char* keys) {
        const auto spec = HotKeySpec::parse(keys);
        sim.hotKeys.press(virtualKeyCodes().at(spec->keyName), spec->carbonMask());
        sim.settle();
    }

    static constexpr Rect editorHome{100, 100, 800, 600};

    /// The editor in front, put to the left edge by its shortcut. The pointer is out of the way.
    AXWindow tuckEditor() {
        sim.pointer.moveTo({720, 450});
        const AXWindow window = sim.start(editor, editorHome);
        press(editorKeys);
        waitForSlides();
        EXPECT_EQ(sim.frameAX(window)->x, -798);
        return window;
    }

    /// Lets slides come to their end.
    void waitForSlides() { sim.advance(std::chrono::seconds(1)); }

    void terminate() {
        sim.runLoop.sendTerminationSignal();
        sim.settle();
    }
};

}  // namespace quorvel
