#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "main/tucking/TuckController.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"

namespace quorvel {

/// A tuck controller on a simulated desktop with one display of 1440 × 900, an editor that is
/// placed on its left edge, and a browser that is placed nowhere. Moves are instant unless a test
/// says otherwise.
class TuckFixture : public testing::Test {
protected:
    using Lines = std::vector<std::string>;

    TuckFixture() {
        controller->animationStyle = TuckAnimationStyle::instant;
        controller->edgeForDisplay = [this](
                                         const std::string& appPath,
                                         const Rect& displayCocoa) -> std::optional<std::string> {
            askedFor.push_back(displayCocoa);
            const auto at = edges.find(appPath);
            if (at == edges.end()) return std::nullopt;
            return at->second;
        };
    }

    /// A second display to the right of the first. What is said of that is dropped.
    void attachNeighbour() {
        desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}, true),
                                 SimulatedScreens::screen(2, {1440.75, -200.5, 1280, 800})});
        desktop.advance(std::chrono::seconds(1));
        desktop.log.lines.clear();
    }

    void toggle(TuckEdge edge = TuckEdge::left) { controller->toggleTuck(editor, edge); }
    Rect frame(AXWindow window) const {
        const auto frameAX = desktop.frameAX(window);
        if (!frameAX) ADD_FAILURE() << "the window is gone";
        return frameAX.value_or(Rect{});
    }
    SimulatedWindow& server(AXWindow window) { return desktop.server.window(window.element); }
    std::int32_t pidOf(AXWindow window) { return server(window).processIdentifier; }
    bool isHidden(const std::string& path) {
        for (const auto& application : desktop.applications.runningApplications()) {
            if (application.bundlePath == path) return desktop.applications.isHidden(application);
        }
        return false;
    }
    std::string frontmost() const {
        const auto front = desktop.applications.frontmostApplication();
        return front && front->bundlePath ? *front->bundlePath : "";
    }
    Lines taken() { return desktop.log.taken(); }

    const std::string editor = "/usr/share/applications/editor.desktop";
    const std::string browser = "/usr/share/applications/browser.desktop";
    const Rect home{200, 150, 800, 600};

    SimulatedDesktop desktop;
    std::map<std::string, std::string> edges{{editor, "left"}};
    std::vector<Rect> askedFor;  ///< the displays that the placed edge was asked for
    std::unique_ptr<TuckController> controller = std::make_unique<TuckController>(
        AXWindows(desktop.windows, desktop.log), desktop.applications, desktop.screens,
        desktop.runLoop, desktop.trust, desktop.log);
};

}  // namespace quorvel
