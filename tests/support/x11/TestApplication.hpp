#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// An installed program: a desktop entry in the session's own data folder, and the process that
/// it starts, whoever starts it. The test speaks to that process over a socket.
class TestApplication {
public:
    struct Options {
        std::string name;               ///< "notes": the entry is org.quorvel.test.notes.desktop
        Rect area{150, 120, 400, 300};  ///< client area of the window that a launch opens
        bool opensWindow = true;
        bool declaresClass = true;  ///< StartupWMClass
    };

    /// `program` is the built quorvel_test_application.
    TestApplication(XSession& session, const std::filesystem::path& program, Options options);
    TestApplication(const TestApplication&) = delete;
    TestApplication& operator=(const TestApplication&) = delete;

    const std::filesystem::path& entry() const { return entryPath; }
    /// Instance and class of its windows.
    const std::string& windowClass() const { return className; }

    /// Starts it without a window; does nothing while it runs.
    void start();
    /// Waits for the process, started by whomever. False when none came.
    bool waitUntilRunning(std::chrono::milliseconds limit = patience);
    /// So far: how many processes have been started, by whomever.
    int launches();
    std::optional<pid_t> pid();
    /// As a crash.
    void kill();
    void suspend();  ///< it no longer answers anybody
    void resume();

    /// The identifiers are those of client windows; each is managed and shown, and stands still,
    /// when the call returns. Starts the program if it does not run.
    xcb_window_t open(const Rect& area, xcb_window_t transientFor = 0, bool modal = false);
    /// The window that the launch itself opened. Throws when none comes.
    xcb_window_t waitForWindow();
    void close(xcb_window_t window);
    void resize(xcb_window_t window, int width, int height);

private:
    void acceptConnections();
    std::string ask(const std::string& line);

    XSession& session;
    std::filesystem::path program;
    Options options;
    std::string className;
    std::filesystem::path entryPath;
    std::filesystem::path socketPath;
    FileDescriptor listener;
    FileDescriptor control;
    std::optional<pid_t> running;
    int launchCount = 0;
    std::optional<ChildProcess> process;
};

}  // namespace quorvel::test
