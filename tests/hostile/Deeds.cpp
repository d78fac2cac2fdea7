#include "tests/hostile/Deeds.hpp"

#include <algorithm>
#include <fstream>
#include <numeric>

namespace quorvel::test {
namespace {

using Done = std::optional<std::string>;

const std::vector<WindowManagerKind> managers{WindowManagerKind::openbox, WindowManagerKind::xfwm4,
                                              WindowManagerKind::kwin, WindowManagerKind::marco,
                                              WindowManagerKind::i3};

std::string text(int number) {
    return std::to_string(number);
}

/// As long as a person, or a slide, may take.
void linger(Random& random, int most) {
    neverWithin(std::chrono::milliseconds(pick(random, 0, most)), [] { return false; });
}

Desk::Application& anApplication(Desk& desk, Random& random) {
    auto& all = desk.applications();
    return all[static_cast<std::size_t>(pick(random, 0, static_cast<int>(all.size()) - 1))];
}

// Shortcuts are pressed far more often than anything else happens.
Done pressShortcut(Desk& desk, Random& random) {
    const auto& application = anApplication(desk, random);
    const int times = pick(random, 1, 3);
    for (int i = 0; i < times; ++i) {
        desk.program.press(application.shortcut);
        linger(random, 300);
    }
    return application.name + (times > 1 ? " " + text(times) + " times" : "");
}

Done activate(Desk& desk, Random& random) {
    const auto& application = anApplication(desk, random);
    const xcb_window_t window = desk.windowOf(application);
    if (window == XCB_WINDOW_NONE || !desk.hasWindowManager()) return std::nullopt;
    desk.program.probe().activate(window);
    waitUntil([&] { return desk.program.probe().activeWindow() == window; }, 500ms);
    return application.name;
}

Done iconify(Desk& desk, Random& random) {
    const auto& application = anApplication(desk, random);
    const xcb_window_t window = desk.windowOf(application);
    if (window == XCB_WINDOW_NONE || !desk.hasWindowManager()) return std::nullopt;
    desk.program.probe().iconify(window);
    linger(random, 100);
    return application.name;
}

Done maximize(Desk& desk, Random& random) {
    const auto& application = anApplication(desk, random);
    const bool isFullscreen = pick(random, 0, 2) == 0;
    const xcb_window_t window = desk.windowOf(application);
    if (window == XCB_WINDOW_NONE || !desk.hasWindowManager()) return std::nullopt;
    constexpr std::uint32_t toggle = 2;
    const XClient& x = desk.program.probe().connection();
    if (isFullscreen) {
        x.sendToRoot(window, "_NET_WM_STATE",
                     {toggle, x.atom("_NET_WM_STATE_FULLSCREEN"), 0, 2, 0});
    } else {
        x.sendToRoot(window, "_NET_WM_STATE",
                     {toggle, x.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                      x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
    }
    linger(random, 200);
    return application.name + (isFullscreen ? " fullscreen" : "");
}

Done movePointer(Desk& desk, Random& random) {
    const int place = pick(random, 0, 8);
    const int part = pick(random, 10, 90);
    const int display = pick(random, 0, 2);
    if (desk.displays().empty()) return std::nullopt;
    const Rect area = desk.displays()[static_cast<std::size_t>(display) % desk.displays().size()];
    const double along = part / 100.0;
    const double xs[] = {area.x, area.maxX() - 1, area.x + along * area.width};
    const double ys[] = {area.y, area.maxY() - 1, area.y + along * area.height};
    const int x = static_cast<int>(xs[place % 3]);
    const int y = static_cast<int>(ys[place / 3]);
    desk.program.session.input().moveTo(x, y);
    linger(random, 700);
    return text(x) + "," + text(y);
}

Done click(Desk& desk, Random& random) {
    const int x = pick(random, 0, 1279);
    // Not on the panel: its menu has an entry that ends the program.
    const int y = pick(random, 80, 799);
    desk.program.session.input().moveTo(x, y);
    desk.program.session.input().click();
    linger(random, 100);
    return text(x) + "," + text(y);
}

Done type(Desk& desk, Random& random) {
    const int count = pick(random, 1, 12);
    for (int i = 0; i < count; ++i) desk.program.session.input().tap(i % 2 == 0 ? "A" : "G");
    return text(count) + " keys";
}

Done pressEscape(Desk& desk, Random&) {
    desk.program.session.input().tap("ESCAPE");
    return "";
}

Done drag(Desk& desk, Random& random) {
    const auto& application = anApplication(desk, random);
    const int toX = pick(random, 60, 1100);
    const int toY = pick(random, 60, 600);
    const xcb_window_t window = desk.windowOf(application);
    if (window == XCB_WINDOW_NONE || !desk.hasWindowManager()) return std::nullopt;
    const Rect frame = desk.program.seen(window);
    if (frame.x < 0 || frame.y < 40 || !desk.program.probe().isViewable(window))
        return std::nullopt;
    XInput& input = desk.program.session.input();
    const int x = static_cast<int>(frame.x + frame.width / 2);
    const int y = static_cast<int>(frame.y + 8);
    input.moveTo(x, y);
    input.pressButton(1);
    for (int step = 1; step <= 5; ++step) {
        input.moveTo(x + (toX - x) * step / 5, y + (toY - y) * step / 5);
        linger(random, 30);
    }
    input.releaseButton(1);
    return application.name + " to " + text(toX) + "," + text(toY);
}

Done restartWindowManager(Desk& desk, Random& random) {
    const auto kind = oneOf(random, managers);
    const bool isOrderly = pick(random, 0, 1) == 0;
    if (desk.hasWindowManager()) desk.stopWindowManager(isOrderly ? SIGTERM : SIGKILL);
    linger(random, 400);
    desk.startWindowManager(kind);
    return (isOrderly ? "SIGTERM, then " : "SIGKILL, then ") + nameOf(kind);
}

Done replaceWindowManager(Desk& desk, Random& random) {
    const auto kind = oneOf(random, managers);
    // It neither takes over from another one nor gives way to one.
    constexpr auto stubborn = WindowManagerKind::i3;
    if (!desk.hasWindowManager() || kind == stubborn ||
        desk.program.session.windowManager()->kind() == stubborn) {
        return std::nullopt;
    }
    desk.replaceWindowManager(kind);
    return "by " + nameOf(kind);
}

Done killWindowManager(Desk& desk, Random& random) {
    const bool isOrderly = pick(random, 0, 1) == 0;
    if (!desk.hasWindowManager()) return std::nullopt;
    desk.stopWindowManager(isOrderly ? SIGTERM : SIGKILL);
    return isOrderly ? "SIGTERM" : "SIGKILL";
}

Done restartPanel(Desk& desk, Random& random) {
    const auto kind = oneOf(random, allPanels());
    desk.killPanel();
    linger(random, 200);
    desk.startPanel(kind);
    return nameOf(kind);
}

Done restartBus(Desk& desk, Random& random) {
    const bool isLater = pick(random, 0, 1) == 0;
    if (!desk.hasBus()) {
        desk.startBus();
        return "started";
    }
    desk.stopBus();
    linger(random, 300);
    if (isLater) return "stopped";
    desk.startBus();
    return "stopped and started";
}

Done suspend(Desk& desk, Random& random) {
    auto& application = anApplication(desk, random);
    if (application.isSuspended) {
        desk.resume(application);
        return application.name + " goes on";
    }
    if (!desk.isRunning(application)) return std::nullopt;
    desk.suspend(application);
    return application.name + " stops";
}

Done killApplication(Desk& desk, Random& random) {
    auto& application = anApplication(desk, random);
    if (!desk.isRunning(application)) return std::nullopt;
    desk.kill(application);
    return application.name;
}

Done openWindow(Desk& desk, Random& random) {
    auto& application = anApplication(desk, random);
    if (!desk.open(application)) return std::nullopt;
    return application.name;
}

Done openDialog(Desk& desk, Random& random) {
    auto& application = anApplication(desk, random);
    const bool isModal = pick(random, 0, 1) == 0;
    const xcb_window_t parent = desk.windowOf(application);
    if (!application.toy || application.isSuspended || !application.toy->pid() ||
        !desk.hasWindowManager() || parent == XCB_WINDOW_NONE ||
        // Or the dialog is minimized with it.
        !desk.program.probe().isViewable(parent)) {
        return std::nullopt;
    }
    application.toy->open({250, 200, 220, 120}, parent, isModal);
    return application.name + (isModal ? ", modal" : "");
}

Done destroyInSlide(Desk& desk, Random& random) {
    auto& application = anApplication(desk, random);
    const int moment = pick(random, 0, 200);
    const xcb_window_t window = desk.windowOf(application);
    if (!application.toy || application.isSuspended || !application.toy->pid() ||
        window == XCB_WINDOW_NONE) {
        return std::nullopt;
    }
    desk.program.press(application.shortcut);
    neverWithin(std::chrono::milliseconds(moment), [] { return false; });
    application.toy->close(window);
    return application.name + " after " + text(moment) + " ms";
}

Done rewriteSettings(Desk& desk, Random& random) {
    desk.replaceSettings(oneOf(random, desk.settings()));
    return "";
}

Done breakSettings(Desk& desk, Random& random) {
    const std::string& whole = oneOf(random, desk.settings());
    const bool isHalf = pick(random, 0, 1) == 0;
    desk.program.writeSettings(isHalf ? whole.substr(0, whole.size() / 2) : "\x01 no settings {{{");
    // It reads them for its window.
    const ChildProcess second = desk.withProgram() && pick(random, 0, 1) == 0
                                    ? desk.program.session.start({ProgramOnX::defaultPath()})
                                    : desk.program.session.start({"true"});
    linger(random, 500);
    desk.replaceSettings(whole);
    return isHalf ? "half a file" : "garbage";
}

Done arrangeDisplays(Desk& desk, Random& random) {
    const auto which = pick(random, 0, static_cast<int>(allArrangements().size()) - 1);
    const bool areOffBefore = pick(random, 0, 4) == 0;
    if (areOffBefore) {
        desk.switchAllDisplaysOff();
        linger(random, 300);
    }
    desk.arrange(allArrangements()[static_cast<std::size_t>(which)]);
    linger(random, 300);
    return (areOffBefore ? "all off, then no. " : "no. ") + text(which);
}

Done openSettings(Desk& desk, Random& random) {
    if (!desk.withProgram()) return std::nullopt;
    ChildProcess second = desk.program.session.start({ProgramOnX::defaultPath()});
    if (second.waitForExit(10s) != 0) return "the second start did not end with 0";
    linger(random, 300);
    return "";
}

Done closeSettings(Desk& desk, Random& random) {
    const xcb_window_t window = desk.program.probe().windowOfClass("Quorvel");
    if (window == XCB_WINDOW_NONE || !desk.hasWindowManager()) return std::nullopt;
    desk.program.probe().close(window);
    linger(random, 100);
    return "";
}

Done killProgram(Desk& desk, Random& random) {
    if (!desk.withProgram()) return std::nullopt;
    desk.killProgram();
    linger(random, 300);
    desk.startProgram();
    return "";
}

Done terminateProgram(Desk& desk, Random&) {
    if (!desk.withProgram()) return std::nullopt;
    desk.terminateProgram();
    desk.startProgram();
    return "";
}

}  // namespace

const std::vector<Deed>& allDeeds() {
    static const std::vector<Deed> all{
        {"press a shortcut", 24, pressShortcut},
        {"bring a window to the front", 10, activate},
        {"move the pointer to an edge or a corner", 12, movePointer},
        {"click", 4, click},
        {"type", 3, type},
        {"press Escape", 3, pressEscape},
        {"drag a window", 6, drag},
        {"minimize a window", 2, iconify},
        {"maximize a window, or back", 3, maximize},
        {"restart the window manager", 2, restartWindowManager},
        {"replace the window manager", 2, replaceWindowManager},
        {"stop the window manager", 1, killWindowManager},
        {"restart the panel", 2, restartPanel},
        {"stop or start the session bus", 2, restartBus},
        {"suspend or resume an application", 5, suspend},
        {"kill an application", 3, killApplication},
        {"open a window", 8, openWindow},
        {"open a dialog", 3, openDialog},
        {"destroy a window in a slide", 4, destroyInSlide},
        {"rewrite the settings", 3, rewriteSettings},
        {"break the settings for a moment", 2, breakSettings},
        {"arrange the displays", 4, arrangeDisplays},
        {"open the settings", 2, openSettings},
        {"close the settings", 3, closeSettings},
        {"kill the program", 3, killProgram, true},
        {"end the program", 2, terminateProgram, true},
    };
    return all;
}

}  // namespace quorvel::test
