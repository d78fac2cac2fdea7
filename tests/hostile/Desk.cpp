#include "tests/hostile/Desk.hpp"

#include <sys/wait.h>

#include <algorithm>
#include <fstream>

namespace quorvel::test {
namespace {

/// What may be needed until windows stand still again.
constexpr std::chrono::milliseconds settling = 8s;
constexpr const char* terminalClass = "Hostile-terminal";

std::string entry(const std::string& name, const std::string& command,
                  const std::string& windowClass) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + command +
           "\nStartupWMClass=" + windowClass + "\n";
}

std::string howItEnded(int status) {
    if (WIFEXITED(status)) return "exit status " + std::to_string(WEXITSTATUS(status));
    return "signal " + std::to_string(WTERMSIG(status));
}

}  // namespace

int pick(Random& random, int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
}

const std::vector<Arrangement>& allArrangements() {
    static const std::vector<Arrangement> all{
        {{{0, 0, 1280, 800}, {}, {}}},
        {{{0, 0, 1280, 800}, {1280, 0, 1280, 800}, {}}},
        {{{0, 0, 1920, 1080}, {1920, 0, 1280, 800}, {}}},
        {{{0, 0, 1280, 800}, {0, 800, 1280, 800}, {}}},
        {{{0, 0, 1280, 800}, {1280, 0, 1280, 800}, {2560, 0, 1280, 800}}},
        {{{}, {0, 0, 1280, 800}, {}}},
        {{{1280, 0, 1280, 800}, {0, 0, 1280, 800}, {}}},
        {{{0, 0, 1280, 800}, {1280, 200, 1920, 1080}, {}}},
        {{{0, 0, 1920, 1080}, {}, {0, 1080, 1280, 800}}},
    };
    return all;
}

Desk::Desk(Account& account, bool withProgram)
    : reach(program.probe(), program.session.displayName(),
            {"Quorvel-test-notes", "Quorvel-test-tasks", "Quorvel-test-files", terminalClass,
             "Gedit"},
            shown),
      account(account),
      isWithProgram(withProgram) {
    const auto toy = [&](const char* name, const char* shortcut, const Rect& area) {
        auto application =
            std::make_unique<TestApplication>(program.session, QUORVEL_TEST_APPLICATION,
                                              TestApplication::Options{.name = name, .area = area});
        all.push_back({name, shortcut, application->windowClass(), {}, std::move(application)});
    };
    toy("notes", "control,option,N", {150, 120, 400, 300});
    toy("tasks", "control,option,K", {600, 300, 350, 250});
    toy("files", "control,option,F", {400, 100, 300, 200});
    all.push_back({"terminal",
                   "control,option,T",
                   terminalClass,
                   {"xterm", "-class", terminalClass, "-e", "cat"},
                   nullptr});
    // Away from the bus, whose end would be its own.
    all.push_back({"editor",
                   "control,option,E",
                   "Gedit",
                   {"env", "DBUS_SESSION_BUS_ADDRESS=disabled:", "gedit", "--standalone"},
                   nullptr});
    arrange(allArrangements()[4]);
    writeSettingsTexts();
    replaceSettings(settingsTexts.front());
    program.session.input().moveTo(640, 500);
    startWindowManager(WindowManagerKind::openbox);
    startPanel(PanelKind::tint2);
    for (Application& application : all) open(application);
    if (isWithProgram) startProgram();
}

void Desk::writeSettingsTexts() {
    std::map<std::string, std::string> paths;
    for (const Application& application : all) {
        if (application.toy) {
            paths[application.name] = application.toy->entry();
            continue;
        }
        std::string command;
        for (const std::string& part : application.command) command += part + " ";
        paths[application.name] = program.session.folder().write(
            "data/applications/hostile-" + application.name + ".desktop",
            entry(application.name, command, application.className));
    }
    const auto shortcut = [&](const char* name) {
        return std::find_if(all.begin(), all.end(), [&](const auto& a) { return a.name == name; })
            ->shortcut;
    };
    const auto binding = [&](const char* name, const char* edge, const char* autoTuck,
                             const char* corner, std::size_t display) {
        return ProgramOnX::Binding{paths[name], shortcut(name), edge, autoTuck, corner, display};
    };
    const auto keep = [&](const std::vector<ProgramOnX::Binding>& bindings, const char* animation) {
        program.bind(bindings, animation);
        settingsTexts.push_back(program.settingsText());
    };
    keep({binding("notes", "left", "false", "none", 0),
          binding("notes", "right", "false", "none", 1),
          binding("tasks", "right", "false", "topRight", 2),
          binding("tasks", "bottom", "false", "none", 0),
          binding("files", "none", "false", "none", 0),
          binding("terminal", "top", "false", "none", 0),
          binding("terminal", "top", "false", "bottomRight", 1),
          binding("editor", "bottom", "true", "none", 1),
          binding("editor", "none", "true", "none", 0)},
         "slide");
    keep(
        {binding("notes", "left", "true", "bottomLeft", 0),
         binding("tasks", "right", "true", "none", 0), binding("files", "none", "false", "none", 0),
         binding("terminal", "left", "false", "none", 1),
         binding("editor", "bottom", "false", "none", 0)},
        "easeout");
    keep(
        {binding("notes", "none", "false", "none", 0), binding("tasks", "left", "false", "none", 0),
         binding("terminal", "bottom", "true", "none", 0)},
        "slide");
}

bool Desk::isRunning(Application& application) {
    if (application.toy) return application.toy->pid().has_value();
    return windowOf(application) != XCB_WINDOW_NONE;
}

std::vector<pid_t> Desk::processesOf(const Application& application) const {
    std::set<pid_t> processes;
    for (const xcb_window_t window : reach.windows()) {
        if (reach.classOf(window) != application.className) continue;
        if (const auto pid = program.probe().pid(window)) {
            processes.insert(static_cast<pid_t>(*pid));
        }
    }
    return {processes.begin(), processes.end()};
}

void Desk::signal(const Application& application, int number) const {
    for (const pid_t pid : processesOf(application)) ::kill(pid, number);
}

bool Desk::open(Application& application) {
    if (!hasWindowManager() || application.isSuspended) return false;
    if (application.toy) {
        application.toy->open({200, 160, 380, 280});
    } else {
        if (windowOf(application) != XCB_WINDOW_NONE) return false;
        started.push_back(program.session.start(application.command));
        if (!waitUntil([&] { return windowOf(application) != XCB_WINDOW_NONE; }, 10s)) {
            account.trouble(application.name + " opens no window");
        }
    }
    reach.look();
    return true;
}

void Desk::kill(Application& application) {
    reach.look();
    if (application.toy && application.toy->pid()) application.toy->kill();
    signal(application, SIGKILL);
    application.isSuspended = false;
}

void Desk::suspend(Application& application) {
    reach.look();
    application.isSuspended = true;
    signal(application, SIGSTOP);
}

void Desk::resume(Application& application) {
    reach.look();
    signal(application, SIGCONT);
    application.isSuspended = false;
}

xcb_window_t Desk::windowOf(const Application& application) const {
    const auto clients = program.probe().clientList();
    for (auto window = clients.rbegin(); window != clients.rend(); ++window) {
        if (reach.classOf(*window) == application.className && program.probe().exists(*window)) {
            return *window;
        }
    }
    return XCB_WINDOW_NONE;
}

bool Desk::hasWindowManager() const {
    return program.session.windowManager() && program.session.windowManager()->isRunning();
}

void Desk::stopWindowManager(int number) {
    reach.look();
    reach.managerChanges();
    if (number == SIGTERM) {
        program.session.windowManager()->signal(SIGTERM);
        waitUntil([&] { return !hasWindowManager(); }, 3s);
    }
    program.session.stopWindowManager();
}

void Desk::startWindowManager(WindowManagerKind kind) {
    // Some do not start without it.
    startBus();
    program.session.stopWindowManager();
    reach.managerChanges();
    lastManager = kind;
    program.session.startWindowManager(kind);
}

void Desk::replaceWindowManager(WindowManagerKind kind) {
    startBus();
    reach.look();
    reach.managerChanges();
    lastManager = kind;
    program.session.replaceWindowManager(kind);
}

void Desk::stopBus() {
    program.session.bus().kill();
    busRuns = false;
}

void Desk::startBus() {
    if (busRuns) return;
    program.session.restartBus();
    busRuns = true;
}

void Desk::startPanel(PanelKind kind) {
    startBus();
    panel.reset();
    panel.emplace(kind, program.session);
}

void Desk::arrange(const Arrangement& next) {
    std::vector<std::string> options;
    std::vector<Rect> displays;
    for (std::size_t i = 0; i < next.size(); ++i) {
        const Rect& area = next[i];
        options.insert(options.end(), {"--output", "DUMMY" + std::to_string(i)});
        if (area.isEmpty()) {
            options.emplace_back("--off");
            continue;
        }
        const auto text = [](double a, double b) {
            return std::to_string(int(a)) + "x" + std::to_string(int(b));
        };
        options.insert(options.end(),
                       {"--mode", text(area.width, area.height), "--pos", text(area.x, area.y)});
        displays.push_back(area);
    }
    program.session.server().xrandr(options);
    shown = displays;
}

void Desk::switchAllDisplaysOff() {
    program.session.server().xrandr({"--output", "DUMMY0", "--off", "--output", "DUMMY1", "--off",
                                     "--output", "DUMMY2", "--off"});
    shown.clear();
}

void Desk::replaceSettings(const std::string& text) {
    const auto other = program.settingsFolder / "defaults.json.new";
    std::ofstream(other, std::ios::binary | std::ios::trunc) << text;
    std::filesystem::rename(other, program.settingsFile);
}

void Desk::startProgram() {
    if (!isWithProgram) return;
    program.start();
    shouldRun = true;
}

void Desk::killProgram() {
    if (!isWithProgram) return;
    shouldRun = false;
    program.sendSignal(SIGKILL);
    program.waitForEnd();
}

void Desk::watchProgram() {
    if (!shouldRun) return;
    if (program.isRunning()) {
        figures.sample(program.pid());
        return;
    }
    account.lost("the program itself, by " + howItEnded(program.waitForEnd().value_or(0)));
    startProgram();
}

void Desk::hearProgram() {
    std::ifstream log(program.logFile, std::ios::binary);
    log.seekg(heard);
    for (std::string line; std::getline(log, line) && !log.eof(); heard = log.tellg()) {
        account.hear(line);
    }
}

void Desk::terminateProgram() {
    if (!isWithProgram) return;
    watchProgram();
    reach.look();
    std::map<xcb_window_t, Rect> held;
    for (const xcb_window_t window : reach.windows()) {
        if (reach.isHeld(window)) held.emplace(window, reach.homeOf(window));
    }
    shouldRun = false;
    program.sendTerminate();
    const auto status = program.waitForEnd(15s);
    if (!status) {
        account.lost("the program does not end when asked");
        killProgram();
    } else if (*status != 0) {
        account.lost("the program ended by " + howItEnded(*status) + " when asked to");
    }
    settle(Reach::Terms::ended);
    for (const auto& [window, home] : held) {
        if (!program.probe().isViewable(window) || program.probe().isIconic(window)) continue;
        // Somebody may have dragged it over an edge before it was put away.
        const auto isBack = [&, each = window, &where = home] {
            return reach.isWhole(each) || reach.isAbout(each, where);
        };
        if (waitUntil(isBack, settling)) continue;
        account.lost("came back only in part: " + reach.describe(window) + ", belongs to " +
                     testing::PrintToString(home) + ", " + nameOf(*lastManager) + ", displays " +
                     testing::PrintToString(shown));
    }
}

void Desk::tellLosses(Reach::Terms terms, const std::string& when) {
    for (const xcb_window_t window : reach.outOfReach(terms)) {
        const std::string what = reach.describe(window) + ": " + reach.complaint(window, terms) +
                                 ", " + when + ", " + nameOf(*lastManager) + ", displays " +
                                 testing::PrintToString(shown);
        if (reach.isUntouched(window)) {
            account.lostByOthers(nameOf(*lastManager), what);
        } else {
            account.lost(what);
        }
        reach.giveUp(window);
    }
}

void Desk::settle(Reach::Terms terms) {
    program.session.input().releaseAll();
    for (Application& application : all) {
        if (application.isSuspended) resume(application);
    }
    startBus();
    if (shown.empty()) arrange(allArrangements().front());
    if (!hasWindowManager()) startWindowManager(*lastManager);
    watchProgram();
    if (waitUntil([&] { return reach.outOfReach(terms).empty(); }, settling)) return;
    tellLosses(terms, terms == Reach::Terms::ended ? "after an end" : "while it runs");
}

}  // namespace quorvel::test
