#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/DBusSession.hpp"
#include "tests/support/x11/ScratchFolder.hpp"
#include "tests/support/x11/TestClient.hpp"
#include "tests/support/x11/WindowManager.hpp"
#include "tests/support/x11/XInput.hpp"
#include "tests/support/x11/XProbe.hpp"
#include "tests/support/x11/XServer.hpp"

namespace quorvel::test {

struct XSessionOptions {
    XServerKind server = XServerKind::virtualFramebuffer;
    int width = 1280;  ///< of the virtual framebuffer
    int height = 800;
    std::optional<WindowManagerKind> windowManager = WindowManagerKind::openbox;
};

/// Everything a desktop session has, private to one test: X server, session bus, home folder,
/// window manager. Whatever was started in it has ended when the destructor returns.
///
/// The environment of the test process itself is set to that of the session, for code under test
/// that runs inside it. Several libraries read it only once: one session a process, which is how
/// CTest runs these tests.
class XSession {
public:
    explicit XSession(XSessionOptions options = {});
    ~XSession();

    const ScratchFolder& folder() const { return scratch; }
    const Environment& environment() const { return variables; }
    const std::string& displayName() const { return xServer->displayName(); }
    XServer& server() { return *xServer; }
    DBusSession& bus() { return *sessionBus; }
    /// A new one at the address of the first, which has been killed.
    void restartBus();
    XInput& input() { return *keyboardAndPointer; }
    const XProbe& probe() const { return *eye; }

    /// Null before the first `startWindowManager` when the options name none.
    WindowManager* windowManager() const { return manager.get(); }
    void startWindowManager(WindowManagerKind kind);
    void stopWindowManager() { manager.reset(); }
    /// Lets another one take over from the one that runs (not i3, awesome, bspwm).
    void replaceWindowManager(WindowManagerKind kind);

    /// Starts a program in the session; `extra` is added to its environment. Its output goes to
    /// NAME.log.
    ChildProcess start(std::vector<std::string> arguments, const Environment& extra = {}) const;
    /// The same, and waits for the first managed window of this class or instance. Throws when
    /// there is none.
    ChildProcess startAndWaitForWindow(std::vector<std::string> arguments,
                                       const std::string& windowClass, xcb_window_t& window,
                                       const Environment& extra = {}) const;

    /// Opens a window of this process and waits until it is shown.
    xcb_window_t open(TestClient& client, const TestWindow& window) const;
    /// Until the window is managed and shown, and its frame has stood still for a moment: several
    /// window managers place a new window in more than one step. Throws when it never is.
    void waitUntilShown(xcb_window_t window) const;

private:
    void endStrays() const;

    ScratchFolder scratch;
    Environment variables;
    std::unique_ptr<XServer> xServer;
    std::unique_ptr<DBusSession> sessionBus;
    std::unique_ptr<XInput> keyboardAndPointer;
    std::unique_ptr<XProbe> eye;
    std::unique_ptr<WindowManager> manager;
};

}  // namespace quorvel::test
