#include "tests/property/World.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>

#include "main/settings/HotZoneCorner.hpp"
#include "main/settings/Settings.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"

namespace quorvel {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr std::array<const char*, 4> shortcuts{"control,option,E", "control,option,B",
                                               "control,option,T", "control,option,P"};
constexpr std::array<const char*, 8> edges{"left",      "right",        "top-left", "bottom-left",
                                           "top-right", "bottom-right", "bottom",   "none"};
constexpr std::array<const char*, 5> corners{"none", "topLeft", "topRight", "bottomLeft",
                                             "bottomRight"};

/// Counts round, so that every number names one of them.
std::size_t among(std::size_t count, int number) {
    return static_cast<std::size_t>(std::abs(static_cast<long long>(number))) % count;
}

template <class List>
const auto& pick(const List& list, int number) {
    return list[among(list.size(), number)];
}

double coordinate(int number) {
    return static_cast<double>(number);
}

Point pointOf(int x, int y) {
    return {coordinate(x), coordinate(y)};
}

}  // namespace

const std::vector<std::string>& World::applications() {
    static const std::vector<std::string> paths{
        "/usr/share/applications/editor.desktop", "/usr/share/applications/browser.desktop",
        "/usr/share/applications/terminal.desktop", "/usr/share/applications/player.desktop"};
    return paths;
}

World::World()
    : controller(witnessedDesktop(), application, [this]() -> Interface* { return &interface; }) {
    for (const std::string& path : applications()) sim.install(path);
    // One of them takes its time.
    sim.applications.install(applications().back(), {{60, 60, 500, 400}, Milliseconds(300)});
    sim.pointer.moveTo({700, 450});
    witness.tucking = &controller.tucking();
    application.setDelegate(controller);
    sim.runLoop.async([this] { controller.applicationDidFinishLaunching(); });
    sim.settle();
}

Desktop World::witnessedDesktop() {
    const Desktop all = sim.desktop();
    return {all.runLoop,      witness,       all.defaults,      all.files,
            all.screens,      all.pointer,   all.pollTimers,    all.hotKeys,
            all.applications, all.catalog,   witness,           all.trust,
            all.loginItem,    all.statusBar, all.remoteControl, all.diagnostics};
}

void World::play(const Step& step) {
    playTime(step);
    playCursor(step);
    playApplications(step);
    playWindow(step);
    playSettings(step);
    playDisplays(step);
    witness.lookAtHiddenApplications();
}

void World::end() {
    sim.runLoop.sendTerminationSignal();
    sim.settle();
    witness.lookAtHiddenApplications();
}

void World::playTime(const Step& step) {
    const Milliseconds time(std::max(step.arguments[0], 0));
    switch (step.deed) {
        case Deed::wait:
            sim.advance(time);
            break;
        case Deed::stall:
            sim.runLoop.consume(time);
            witness.timeWasLost();
            break;
        default:
            break;
    }
}

void World::playCursor(const Step& step) {
    const auto& [first, second, third, fourth, fifth] = step.arguments;
    switch (step.deed) {
        case Deed::moveCursor:
            sim.pointer.moveTo(pointOf(first, second));
            witness.cursorMoved();
            break;
        case Deed::warpCursor:
            sim.pointer.warpTo(pointOf(first, second));
            witness.cursorMoved();
            break;
        case Deed::rest:
            if (!sim.screens.screens().empty()) {
                restInCorner(pick(sim.screens.screens(), first).frameCocoa, second);
            }
            break;
        case Deed::press:
            sim.pointer.press(static_cast<unsigned>(1 + among(3, first)));
            break;
        case Deed::release:
            sim.pointer.release(static_cast<unsigned>(1 + among(3, first)));
            break;
        default:
            break;
    }
}

void World::restInCorner(const Rect& displayCocoa, int corner) {
    const bool isRight = (corner & 1) != 0;
    const bool isTop = (corner & 2) != 0;
    sim.pointer.moveTo({isRight ? displayCocoa.maxX() - 1 : displayCocoa.minX() + 1,
                        isTop ? displayCocoa.maxY() - 1 : displayCocoa.minY() + 1});
    witness.cursorMoved();
}

void World::playApplications(const Step& step) {
    const auto& [first, second, third, fourth, fifth] = step.arguments;
    const std::string& path = pick(applications(), first);
    switch (step.deed) {
        case Deed::shortcut: {
            const auto spec = HotKeySpec::parse(pick(shortcuts, first));
            sim.hotKeys.press(virtualKeyCodes().at(spec->keyName), spec->carbonMask());
            break;
        }
        case Deed::open:
            sim.server.open(
                {.bundlePath = path,
                 .frameAX = {coordinate(second), coordinate(third),
                             coordinate(std::max(fourth, 50)), coordinate(std::max(fifth, 50))}});
            break;
        case Deed::quit:
            sim.server.quit(path);
            break;
        case Deed::deactivate:
            sim.server.deactivateAll();
            break;
        case Deed::install:
            sim.files.add(path);
            break;
        case Deed::uninstall:
            sim.files.remove(path);
            break;
        case Deed::trust:
            sim.trust.granted = first != 0;
            if (!sim.trust.granted) witness.heldWindowsBecameFaulty();
            break;
        default:
            break;
    }
}

void World::playWindow(const Step& step) {
    const auto windows = sim.server.all();
    if (windows.empty()) return;
    SimulatedWindow& window = *pick(windows, step.arguments[0]);
    const auto& [which, second, third, fourth, fifth] = step.arguments;
    switch (step.deed) {
        case Deed::hover:
            hover(window.element);
            break;
        case Deed::dialog:
            sim.server.open({.bundlePath = window.bundlePath,
                             .processIdentifier = window.processIdentifier,
                             .frameAX = {300, 300, 200, 100},
                             .transientFor = window.element,
                             .isModal = second != 0});
            break;
        case Deed::close:
            sim.server.close(window.element);
            break;
        case Deed::kill:
            sim.server.kill(window.processIdentifier);
            break;
        case Deed::activate:
            sim.server.activate(window.element);
            break;
        case Deed::iconify:
            sim.server.iconify(window.element);
            break;
        case Deed::deiconify:
            sim.server.deiconify(window.element);
            break;
        case Deed::maximize:
            // One that is held would refuse to move from then on.
            if (!sim.windows.isHeld(window.handle())) window.isMaximized = true;
            break;
        case Deed::drag:
            drag(window.element, pointOf(second, third));
            break;
        case Deed::resize:
            sim.server.resize(window.element,
                              {coordinate(std::max(second, 50)), coordinate(std::max(third, 50))});
            witness.windowWasResized(window.element);
            break;
        case Deed::fault:
            playFault(window.element, second);
            break;
        default:
            break;
    }
}

void World::hover(WindowElement window) {
    const auto screens = sim.screens.screens();
    if (screens.empty()) return;
    const Rect frameCocoa =
        flipped(sim.server.window(window).frameAX, sim.screens.primaryScreenMaxY());
    const Point centre{frameCocoa.x + frameCocoa.width / 2, frameCocoa.y + frameCocoa.height / 2};
    // What can be seen of it, or else where it would come from.
    const auto shown = std::find_if(screens.begin(), screens.end(), [&](const Screen& screen) {
        return screen.frameCocoa.intersects(frameCocoa);
    });
    const Rect& display = (shown == screens.end() ? screens.front() : *shown).frameCocoa;
    sim.pointer.moveTo({std::clamp(centre.x, display.minX(), display.maxX() - 1),
                        std::clamp(centre.y, display.minY() + 1, display.maxY())});
    witness.cursorMoved();
}

void World::drag(WindowElement window, Point by) {
    if (by == Point{}) return;
    const Rect frameAX = sim.server.window(window).frameAX;
    sim.server.drag(window, {frameAX.x + by.x, frameAX.y + by.y});
    witness.windowWasDragged(window);
}

void World::playFault(WindowElement element, int kind) {
    WindowFaults faults;
    switch (among(8, kind)) {
        case 1:
            faults.ignoresMoves = true;
            break;
        case 2:
            faults.moveError = 8;
            break;
        case 3:
            faults.isClampedToDisplay = true;
            break;
        case 4:
            faults.landsOffBy = {30, -20};
            break;
        case 5:
            faults.hidesSize = true;
            break;
        case 6:
            faults.responseTime = WindowFaults::neverResponds;
            break;
        case 7:
            faults.vanishesAfterCalls = 3;
            break;
        default:
            break;
    }
    sim.server.window(element).faults = faults;
    witness.windowBecameFaulty(element);
}

void World::playSettings(const Step& step) {
    const auto& [application, second, third, fourth, fifth] = step.arguments;
    const std::string& path = pick(applications(), application);
    const auto displayId = [](int number) {
        const auto screen =
            SimulatedScreens::screen(static_cast<std::uint32_t>(1 + among(3, number)), {});
        return *screen.uuid;
    };
    const Settings settings(sim.defaults);
    switch (step.deed) {
        case Deed::bind:
            std::erase_if(bindings, [&](const auto& each) { return each.appPath == path; });
            bindings.push_back({path, second != 0 ? pick(shortcuts, application) : "none",
                                third != 0 ? "true" : "false"});
            settings.setAppBindings(bindings);
            break;
        case Deed::unbind:
            std::erase_if(bindings, [&](const auto& each) { return each.appPath == path; });
            settings.setAppBindings(bindings);
            break;
        case Deed::place:
        case Deed::unplace:
            std::erase_if(placements, [&](const auto& each) {
                return each.appPath == path && each.display == displayId(second);
            });
            if (step.deed == Deed::place) {
                placements.push_back(
                    {path, displayId(second), pick(corners, third), pick(edges, fourth)});
            }
            settings.setPlacements(placements);
            break;
        case Deed::animate:
            sim.defaults.setObject(
                Keys::tuckAnimation,
                std::string(rawValue(pick(allTuckAnimationStyles, application))));
            break;
        case Deed::dwell:
            sim.defaults.setObject(Keys::hotZoneDwellMs, std::max(application, 0));
            break;
        case Deed::reload:
            controller.reloadFromSettings();
            break;
        default:
            break;
    }
}

void World::playDisplays(const Step& step) {
    const auto& [number, x, y, width, height] = step.arguments;
    const int display = static_cast<int>(1 + among(3, number));
    switch (step.deed) {
        case Deed::attach:
            displays[display] = {coordinate(x), coordinate(y), coordinate(std::max(width, 300)),
                                 coordinate(std::max(height, 300))};
            break;
        case Deed::detach:
            displays.erase(display);
            break;
        case Deed::detachAll:
            displays.clear();
            break;
        default:
            return;
    }
    arrangeDisplays();
}

/// The lower left corner of the primary display is the origin of everything.
void World::arrangeDisplays() {
    std::vector<Screen> arrangement;
    for (const auto& [number, frame] : displays) {
        const Point origin = displays.begin()->second.origin();
        const Rect frameCocoa{frame.x - origin.x, frame.y - origin.y, frame.width, frame.height};
        arrangement.push_back(
            SimulatedScreens::screen(static_cast<std::uint32_t>(number), frameCocoa, number == 1));
    }
    if (arrangement == sim.screens.screens()) return;
    sim.screens.arrange(std::move(arrangement));
    witness.displaysWereArranged();
}

}  // namespace quorvel
