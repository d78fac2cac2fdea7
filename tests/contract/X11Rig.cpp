#include <glib.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <stdexcept>

#include "platform/linux/ExecutablePath.hpp"
#include "platform/linux/PosixFiles.hpp"
#include "platform/linux/StandardErrorLog.hpp"
#include "platform/linux/X11Desktop.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/XdgLoginItem.hpp"
#include "tests/contract/Rig.hpp"
#include "tests/support/x11/TestApplication.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {
namespace {

std::unique_ptr<native::XConnection> connect(const std::string& displayName) {
    std::string error;
    auto connection = native::XConnection::open(displayName, error);
    if (!connection) throw std::runtime_error(error);
    return connection;
}

/// The program's own classes, put together as the program does it.
class NativeDesktop {
public:
    explicit NativeDesktop(const std::string& displayName)
        : connection(connect(displayName)),
          folders(native::XdgFolders::fromEnvironment(files.homeDirectory())) {}

    Desktop desktop() { return native.desktop(); }

    int trustPrompts = 0;
    std::function<void()> closeTrustPrompt;

private:
    std::unique_ptr<native::XConnection> connection;
    native::StandardErrorLog log;
    native::PosixFiles files;
    native::XdgFolders folders;
    // One that exists: an entry for another starts nothing.
    native::XdgLoginItem loginItem{folders, native::executablePath()};
    native::X11Desktop native{*connection,
                              folders,
                              "/usr/bin/Quorvel",
                              log,
                              files,
                              loginItem,
                              {[this](const std::string&, std::function<void()> closed) {
                                   ++trustPrompts;
                                   closeTrustPrompt = std::move(closed);
                               },
                               nullptr}};
};

class X11Rig final : public Rig {
public:
    explicit X11Rig(XSessionOptions options) : session(options) {}

    Desktop desktop() override { return native.desktop(); }

    bool until(const std::function<bool()>& observed, std::chrono::milliseconds limit) override {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        // Looks also at what no event of the loop tells.
        const guint alarm = g_timeout_add(
            2, [](gpointer) -> gboolean { return true; }, nullptr);
        bool seen = observed();
        while (!seen && std::chrono::steady_clock::now() < deadline) {
            g_main_context_iteration(nullptr, true);
            seen = observed();
        }
        g_source_remove(alarm);
        return seen;
    }

    void requestTermination() override { ::kill(getpid(), SIGTERM); }

    void arrange(const std::vector<Rect>& displaysAX) override {
        std::vector<std::string> options;
        for (std::size_t socket = 0; socket < displaysAX.size(); ++socket) {
            const Rect& frame = displaysAX[socket];
            options.insert(options.end(), {"--output", "DUMMY" + std::to_string(socket)});
            if (frame.isEmpty()) {
                options.push_back("--off");
                continue;
            }
            const auto number = [](double value) { return std::to_string(int(value)); };
            options.insert(options.end(),
                           {"--mode", number(frame.width) + "x" + number(frame.height), "--pos",
                            number(frame.x) + "x" + number(frame.y)});
        }
        session.server().xrandr(options);
        if (session.windowManager() == nullptr) return;
        need(waitUntil([&] { return windowManagerKnowsDisplays(displaysAX); }), "follow displays");
        // KWin has no answer to it, but tells of the displays when it is done with them.
        if (session.windowManager()->kind() != WindowManagerKind::kwin) {
            session.windowManager()->sync();
        }
    }

    void keyDown(const std::string& key, std::uint32_t modifiers) override {
        for (const auto& [mask, name] : modifierNames) {
            if ((modifiers & mask) != 0) session.input().press(name);
        }
        session.input().press(key);
    }
    void keyUp(const std::string& key, std::uint32_t modifiers) override {
        session.input().release(key);
        for (const auto& [mask, name] : modifierNames) {
            if ((modifiers & mask) != 0) session.input().release(name);
        }
    }
    void toggleLock(Lock lock) override {
        session.input().tap(lock == Lock::capsLock ? "CapsLock" : "NumLock");
    }
    void holdElsewhere(const std::string& key, std::uint32_t modifiers) override {
        for (const std::uint16_t variant : variants(modifiers)) {
            if (otherClient.grabKey(session.input().keycode(key), variant) != 0) {
                throw std::runtime_error("the key is taken already");
            }
        }
    }
    void releaseElsewhere(const std::string& key, std::uint32_t modifiers) override {
        for (const std::uint16_t variant : variants(modifiers)) {
            otherClient.ungrabKey(session.input().keycode(key), variant);
        }
    }

    void movePointer(Point pointAX) override {
        session.input().moveTo(int(pointAX.x), int(pointAX.y));
    }
    void pressButton(std::uint8_t button) override { session.input().pressButton(button); }
    void releaseButton(std::uint8_t button) override { session.input().releaseButton(button); }

    std::string install(const std::string& name) override {
        auto application = std::make_unique<TestApplication>(
            session, QUORVEL_TEST_APPLICATION, TestApplication::Options{.name = name});
        const std::string path = application->entry().string();
        applications[path] = std::move(application);
        return path;
    }
    std::string installCopy(const std::string& path) override {
        const std::filesystem::path copy =
            session.folder() / "home" / std::filesystem::path(path).filename().string();
        std::filesystem::copy_file(path, copy);
        return copy.string();
    }
    Window openWindow(const std::string& path, const Rect& wantedFrameAX) override {
        const Window window = applications.at(path)->open(wantedFrameAX);
        owners[window] = path;
        activate(window);
        return window;
    }
    Window openDialog(const std::string& path, Window parent) override {
        const Window window =
            applications.at(path)->open({300, 250, 200, 100}, xcb_window_t(parent), true);
        owners[window] = path;
        activate(window);
        return window;
    }
    Window launchedWindow(const std::string& path) override {
        const Window window = applications.at(path)->waitForWindow();
        owners[window] = path;
        return window;
    }
    void closeWindow(Window window) override {
        const auto owner = owners.find(window);
        if (owner == owners.end()) {
            otherClient.destroy(xcb_window_t(window));
        } else {
            applications.at(owner->second)->close(xcb_window_t(window));
        }
        need(waitUntil([&] { return !probe.isManaged(xcb_window_t(window)); }), "close");
    }
    int launches(const std::string& path) override { return applications.at(path)->launches(); }
    std::int32_t processIdentifier(const std::string& path) override {
        return applications.at(path)->pid().value();
    }
    void kill(const std::string& path) override {
        applications.at(path)->kill();
        for (const auto& [window, owner] : owners) {
            if (owner != path) continue;
            need(waitUntil([&] { return !probe.isManaged(xcb_window_t(window)); }), "forget");
        }
    }
    void suspend(const std::string& path) override { applications.at(path)->suspend(); }
    void resume(const std::string& path) override { applications.at(path)->resume(); }

    void activate(Window window) override {
        probe.activate(xcb_window_t(window));
        need(waitUntil([&] { return isActive(window); }), "activate");
        session.waitUntilShown(xcb_window_t(window));
    }
    void iconify(Window window) override {
        probe.iconify(xcb_window_t(window));
        need(waitUntil([&] { return probe.isIconic(xcb_window_t(window)); }), "iconify");
    }
    void moveTo(Window window, Point originAX) override {
        const std::optional<Rect> before = seenFrameAX(window);
        probe.requestMove(xcb_window_t(window), int(originAX.x), int(originAX.y));
        need(waitUntil([&] { return seenFrameAX(window) != before; }), "move");
        session.waitUntilShown(xcb_window_t(window));
    }
    void fillDisplay(Window window) override {
        const XClient& x = probe.connection();
        if (session.windowManager()->kind() == WindowManagerKind::i3) {
            x.sendToRoot(xcb_window_t(window), "_NET_WM_STATE",
                         {1, x.atom("_NET_WM_STATE_FULLSCREEN"), 0, 2, 0});
        } else {
            x.sendToRoot(xcb_window_t(window), "_NET_WM_STATE",
                         {1, x.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                          x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
        }
        need(waitUntil([&] { return fillsDisplay(window); }), "maximize");
        session.waitUntilShown(xcb_window_t(window));
    }

    std::optional<Rect> seenFrameAX(Window window) override {
        return probe.visibleFrame(xcb_window_t(window));
    }
    bool isShown(Window window) override {
        const auto id = xcb_window_t(window);
        const std::optional<Rect> frame = probe.visibleFrame(id);
        return probe.isViewable(id) && !probe.isIconic(id) && frame &&
               frame->intersects({0, 0, 1280, 800});
    }
    bool isActive(Window window) override { return probe.activeWindow() == window; }
    bool isInFrontOf(Window front, Window back) override {
        return probe.isAbove(xcb_window_t(front), xcb_window_t(back));
    }
    bool fillsDisplay(Window window) override {
        for (const std::string& state : probe.netWmState(xcb_window_t(window))) {
            if (state == "_NET_WM_STATE_FULLSCREEN" || state == "_NET_WM_STATE_MAXIMIZED_VERT") {
                return true;
            }
        }
        return false;
    }

    Window openOwnWindow() override {
        const Window window = session.open(otherClient, {.area = {350, 250, 300, 200}});
        activate(window);
        return window;
    }
    std::int32_t ownProcessIdentifier() override { return getpid(); }
    void endWindowManager() override {
        lastManager = session.windowManager()->kind();
        session.stopWindowManager();
    }
    void restartWindowManager() override { startWindowManager(lastManager); }
    void startWindowManager(WindowManagerKind kind) { session.startWindowManager(kind); }
    int trustPrompts() override { return native.trustPrompts; }
    void closeTrustPrompt() override { native.closeTrustPrompt(); }

    void writeOtherDomain(const std::string& domain, const std::string& key,
                          const std::string& text) override {
        session.folder().write("config/" + domain + "/defaults.json", record(key, text));
    }
    void writePreset(const std::string& key, const std::string& text) override {
        session.folder().write("data/quorvel/presets.json", record(key, text));
    }

private:
    static constexpr std::pair<std::uint32_t, const char*> modifierNames[] = {
        {0x1000, "Control"}, {0x800, "Alt"}, {0x200, "Shift"}, {0x100, "Super"}};

    /// With and without Caps Lock and Num Lock, as a hot-key program grabs.
    static std::vector<std::uint16_t> variants(std::uint32_t modifiers) {
        unsigned mask = 0;
        if ((modifiers & 0x1000) != 0) mask |= XCB_MOD_MASK_CONTROL;
        if ((modifiers & 0x800) != 0) mask |= XCB_MOD_MASK_1;
        if ((modifiers & 0x200) != 0) mask |= XCB_MOD_MASK_SHIFT;
        if ((modifiers & 0x100) != 0) mask |= XCB_MOD_MASK_4;
        std::vector<std::uint16_t> result;
        for (const unsigned locks : {0U, unsigned{XCB_MOD_MASK_LOCK}, unsigned{XCB_MOD_MASK_2},
                                     unsigned{XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2}}) {
            result.push_back(static_cast<std::uint16_t>(mask | locks));
        }
        return result;
    }
    /// By what it publishes about the desktop; i3 has a workspace on each display instead, and
    /// Xfwm4 keeps publishing what was there when it started.
    bool windowManagerKnowsDisplays(const std::vector<Rect>& displaysAX) const {
        const WindowManagerKind kind = session.windowManager()->kind();
        if (kind == WindowManagerKind::xfwm4) return true;
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::size_t count = 0;
        for (const Rect& display : displaysAX) {
            if (display.isEmpty()) continue;
            width = std::max(width, std::uint32_t(display.maxX()));
            height = std::max(height, std::uint32_t(display.maxY()));
            ++count;
        }
        const XClient& x = probe.connection();
        if (kind != WindowManagerKind::i3) {
            return x.property32(x.root(), "_NET_DESKTOP_GEOMETRY") == std::vector{width, height};
        }
        const auto places = x.property32(x.root(), "_NET_DESKTOP_VIEWPORT");
        if (places.size() < 2 * count) return false;
        for (std::size_t i = 0; i + 1 < places.size(); i += 2) {
            if (places[i] >= width || places[i + 1] >= height) return false;
        }
        return true;
    }
    static std::string record(const std::string& key, const std::string& text) {
        return "{ \"" + key + "\": \"" + text + "\" }\n";
    }
    static void need(bool done, const char* what) {
        if (!done) throw std::runtime_error(std::string("the desktop does not ") + what);
    }

    XSession session;
    const XProbe& probe = session.probe();
    WindowManagerKind lastManager{};
    TestClient otherClient{session.displayName()};
    std::map<std::string, std::unique_ptr<TestApplication>> applications;
    std::map<Window, std::string> owners;
    NativeDesktop native{session.displayName()};
};

RigKind rigOn(const std::string& name, XSessionOptions options) {
    return {name, [options] { return std::make_unique<X11Rig>(options); }};
}

}  // namespace

RigKind bareRig() {
    return rigOn("bare", {.windowManager = std::nullopt});
}

RigKind hotPlugRig() {
    return rigOn("hotplug", {.server = XServerKind::hotPlug, .windowManager = std::nullopt});
}

std::vector<RigKind> windowManagerRigs() {
    std::vector<RigKind> kinds;
    for (const WindowManagerKind kind : allWindowManagers()) {
        kinds.push_back(rigOn(nameOf(kind), {.windowManager = kind}));
    }
    return kinds;
}

std::vector<RigKind> twoDisplayRigs() {
    const std::vector<Rect> displaysAX{{0, 0, 1280, 800}, {1280, 0, 1280, 800}};
    std::vector<RigKind> kinds;
    for (const WindowManagerKind kind : allWindowManagers()) {
        kinds.push_back({nameOf(kind), [kind, displaysAX] {
                             auto rig = std::make_unique<X11Rig>(XSessionOptions{
                                 .server = XServerKind::hotPlug, .windowManager = std::nullopt});
                             // Xfwm4 does not get to know displays that come later.
                             rig->arrange(displaysAX);
                             rig->startWindowManager(kind);
                             return rig;
                         }});
    }
    kinds.push_back({simulatedRig().name, [displaysAX] {
                         auto rig = simulatedRig().make();
                         rig->arrange(displaysAX);
                         return rig;
                     }});
    return kinds;
}

std::vector<RigKind> iconifyingRigs() {
    std::vector<RigKind> kinds = windowManagerRigs();
    std::erase_if(kinds,
                  [](const RigKind& kind) { return kind.name == nameOf(WindowManagerKind::i3); });
    return kinds;
}

}  // namespace quorvel::test
