#include "tests/support/x11/XSession.hpp"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace quorvel::test {
namespace {

// Marks every process of the session, however it was started.
constexpr const char* marker = "QUORVEL_TEST_SESSION";

Environment baseEnvironment(const ScratchFolder& folder) {
    Environment variables{
        {"PATH", "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin"},
        {"LANG", "C.UTF-8"},
        {"HOME", (folder / "home").string()},
        {"XDG_CONFIG_HOME", (folder / "config").string()},
        {"XDG_DATA_HOME", (folder / "data").string()},
        {"XDG_CACHE_HOME", (folder / "cache").string()},
        {"XDG_STATE_HOME", (folder / "state").string()},
        {"XDG_RUNTIME_DIR", (folder / "run").string()},
        {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"},
        {"XDG_CONFIG_DIRS", "/etc/xdg"},
        {"GSETTINGS_BACKEND", "memory"},
        {"GTK_A11Y", "none"},
        {"NO_AT_BRIDGE", "1"},
        {"LIBGL_ALWAYS_SOFTWARE", "1"},
        {"QT_QPA_PLATFORM", "xcb"},
        {marker, folder.path().string()},
    };
    for (const char* passedOn : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = getenv(passedOn)) variables[passedOn] = value;
    }
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
                             "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
        std::filesystem::create_directories(variables[name]);
        std::filesystem::permissions(variables[name], std::filesystem::perms::owner_all);
    }
    return variables;
}

}  // namespace

XSession::XSession(XSessionOptions options) : variables(baseEnvironment(scratch)) {
    xServer = std::make_unique<XServer>(options.server, options.width, options.height, variables,
                                        scratch);
    variables["DISPLAY"] = xServer->displayName();
    keyboardAndPointer = std::make_unique<XInput>(xServer->displayName());
    eye = std::make_unique<XProbe>(xServer->displayName());
    sessionBus = std::make_unique<DBusSession>(variables, scratch);
    // As desktops give it: the identifier of one daemon in it would keep everyone off the next one.
    const std::string address = sessionBus->address();
    variables["DBUS_SESSION_BUS_ADDRESS"] = address.substr(0, address.find(','));

    unsetenv("XDG_CURRENT_DESKTOP");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XDG_SESSION_TYPE");
    for (const auto& [name, value] : variables) {
        // Otherwise the test process would end itself below.
        if (name != marker) setenv(name.c_str(), value.c_str(), 1);
    }
    if (options.windowManager) startWindowManager(*options.windowManager);
}

XSession::~XSession() {
    manager.reset();
    keyboardAndPointer.reset();
    eye.reset();
    sessionBus.reset();
    xServer.reset();
    endStrays();
}

void XSession::startWindowManager(WindowManagerKind kind) {
    manager = std::make_unique<WindowManager>(kind, variables, scratch, *eye);
}

void XSession::replaceWindowManager(WindowManagerKind kind) {
    manager = std::make_unique<WindowManager>(kind, variables, scratch, *eye,
                                              WindowManager::Start::replacing);
}

void XSession::restartBus() {
    sessionBus.reset();
    std::filesystem::remove(scratch / "bus");
    sessionBus = std::make_unique<DBusSession>(variables, scratch);
}

ChildProcess XSession::start(std::vector<std::string> arguments, const Environment& extra) const {
    Environment all = variables;
    for (const auto& [name, value] : extra) all[name] = value;
    const std::string log = std::filesystem::path(arguments.at(0)).filename().string() + ".log";
    return ChildProcess({std::move(arguments), std::move(all), scratch / log, {}});
}

ChildProcess XSession::startAndWaitForWindow(std::vector<std::string> arguments,
                                             const std::string& windowClass, xcb_window_t& window,
                                             const Environment& extra) const {
    const std::string name = arguments.at(0);
    ChildProcess process = start(std::move(arguments), extra);
    const bool shown = waitUntil([&] {
        window = eye->windowOfClass(windowClass);
        return window != XCB_WINDOW_NONE && eye->isViewable(window);
    });
    if (!shown) throw std::runtime_error("no window of " + name + " has come up");
    return process;
}

xcb_window_t XSession::open(TestClient& client, const TestWindow& window) const {
    const xcb_window_t opened = client.open(window);
    if (window.overrideRedirect) {
        client.connection().sync();
    } else {
        waitUntilShown(opened);
    }
    return opened;
}

void XSession::waitUntilShown(xcb_window_t window) const {
    constexpr int quietLooks = 15;  // two milliseconds apart
    std::optional<Rect> last;
    int looks = 0;
    const bool shown = waitUntil([&] {
        if (!eye->isViewable(window) || !eye->isManaged(window)) return false;
        const std::optional<Rect> now = eye->visibleFrame(window);
        looks = now && now == last ? looks + 1 : 0;
        last = now;
        return looks >= quietLooks;
    });
    if (!shown) throw std::runtime_error("the window manager does not show the window");
}

// What was launched by others, by the code under test or by the bus, is in no group of ours.
void XSession::endStrays() const {
    const std::string wanted = std::string(marker) + "=" + scratch.path().string();
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        pid_t pid = 0;
        const auto end = name.data() + name.size();
        if (std::from_chars(name.data(), end, pid).ptr != end || pid == getpid()) continue;
        std::ifstream file(entry.path() / "environ", std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        if (('\0' + content).find('\0' + wanted + '\0') != std::string::npos) kill(pid, SIGKILL);
    }
}

}  // namespace quorvel::test
