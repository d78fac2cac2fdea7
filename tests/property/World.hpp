#pragma once

#include <map>
#include <string>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Placement.hpp"
#include "main/shell/Application.hpp"
#include "main/shell/LauncherController.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/property/Step.hpp"
#include "tests/property/Witness.hpp"
#include "tests/support/FakeInterface.hpp"

namespace quorvel {

/// The whole program on the simulated desktop, launched with nothing bound, and all that can happen
/// to it. Nothing that a step brings about is waited for: that is what `Deed::wait` is for.
class World {
public:
    /// Those that can be bound; all of them are installed at the start.
    static const std::vector<std::string>& applications();

    World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    void play(const Step& step);

    /// Asks the program to end, and waits for it.
    void end();

    SimulatedDesktop sim;
    Witness witness{sim};
    FakeInterface interface;
    Application application{sim.runLoop};
    LauncherController controller;

private:
    Desktop witnessedDesktop();
    void playTime(const Step& step);
    void playCursor(const Step& step);
    void playApplications(const Step& step);
    void playWindow(const Step& step);
    void playSettings(const Step& step);
    void playDisplays(const Step& step);
    void playFault(WindowElement window, int kind);
    void drag(WindowElement window, Point by);
    void hover(WindowElement window);
    void restInCorner(const Rect& displayCocoa, int corner);
    void arrangeDisplays();

    std::vector<AppBinding> bindings;
    std::vector<Placement> placements;
    /// By number, where they stand to each other; the first is the primary one.
    std::map<int, Rect> displays{{1, {0, 0, 1440, 900}}};
};

}  // namespace quorvel
