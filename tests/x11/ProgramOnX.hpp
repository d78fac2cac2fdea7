#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/x11/TestApplication.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// The built program in a session of its own, with the settings that a test gives it.
class ProgramOnX {
public:
    struct Binding {
        std::string appPath;
        std::string hotKey;
        std::string edge = "none";
        std::string autoTuck = "false";
        std::string corner = "none";
        std::size_t display = 0;  ///< that of the edge and the corner; 0 is the primary one
    };

    explicit ProgramOnX(XSessionOptions options = {});

    XSession session;

    const std::filesystem::path home = session.folder() / "home";
    const std::filesystem::path logFile = home / "Library/Logs/Quorvel.log";
    const std::filesystem::path settingsFolder = session.folder() / "config/com.tessivane.quorvel";
    const std::filesystem::path settingsFile = settingsFolder / "defaults.json";

    /// Writes the settings for the displays that are plugged in now, and each application once,
    /// however many bindings place it; what is done only once in the life of an account is marked
    /// as done.
    void bind(const std::vector<Binding>& bindings, std::string_view animation = "slide");
    /// Writes a settings file of any content.
    void writeSettings(std::string_view text);
    std::string settingsText() const { return contentOf(settingsFile); }

    struct Launch {
        std::vector<std::string> arguments{};
        Environment environment{};                         ///< added to that of the session
        std::vector<std::string> without{};                ///< names taken out of it
        std::filesystem::path executable = defaultPath();  ///< of the program
        std::vector<std::string> prefix{};                 ///< a command that runs the program
    };
    /// Starts it and waits until it says in its log that it is ready. Throws when it does not.
    void start(const Launch& launch);
    void start() { start({}); }
    /// The same, without waiting.
    void launch(const Launch& launch);
    static std::filesystem::path defaultPath();
    bool isRunning() const { return process && process->isRunning(); }

    /// A prefix that runs it as a user whom permissions bind, also when the tests run as root.
    static std::vector<std::string> asOrdinaryUser();
    /// The same for the user that the tests run as, who stays able to reach the session's buses.
    static std::vector<std::string> boundByPermissions();
    /// Gives all that the session has so far to that user.
    void handOver() const;

    /// As "control,option,T" in the settings.
    void press(const std::string& shortcut);

    /// Asks it to end with SIGTERM. The exit status; −1 when it does not end by itself.
    int terminate();
    void sendTerminate() const { sendSignal(SIGTERM); }
    void sendSignal(int number) const { process->signal(number); }
    pid_t pid() const { return process->pid(); }
    int waitForExit();
    /// The wait status; nothing when it still runs after the time.
    std::optional<int> waitForEnd(std::chrono::milliseconds limit = patience) {
        return process->waitForExit(limit);
    }

    /// What the log says, without times: one message a line.
    std::vector<std::string> logLines() const;
    /// What it has said since it was ready.
    std::vector<std::string> linesSinceReady() const;
    bool waitForLine(const std::string& message) const;

    const XProbe& probe() const { return session.probe(); }
    Rect seen(xcb_window_t window) const { return probe().visibleFrame(window).value_or(Rect{}); }
    testing::AssertionResult waitForFrame(xcb_window_t window, const Rect& frame) const;
    /// It is there, and stays for longer than a slide takes.
    testing::AssertionResult staysAt(xcb_window_t window, const Rect& frame) const;
    bool waitUntilActive(xcb_window_t window) const;
    /// Programs resize themselves while they start. Gives the frame that it then has.
    Rect settledFrame(xcb_window_t window) const;
    /// Where a window goes that is tucked to the left: two points stay visible.
    static Rect atLeftEdge(const Rect& frame);

    /// The first window of this class, shown and active. Throws when there is none.
    xcb_window_t waitForWindow(const std::string& windowClass) const;
    /// A window of the program itself with this title; 0 when there is none in the end.
    xcb_window_t waitForOwnWindow() const { return waitForWindow("Quorvel"); }
    std::string titleOf(xcb_window_t window) const;
    bool waitUntilGone(xcb_window_t window) const;

    static std::string contentOf(const std::filesystem::path& file);

private:
    std::vector<std::string> displayIdentifiers() const;

    std::optional<ChildProcess> process;
};

/// The program, and an application to be bound whose windows do what the test says.
class ProgramWithNotes : public ProgramOnX {
public:
    explicit ProgramWithNotes(XSessionOptions options = {}) : ProgramOnX(options) {}

    TestApplication notes{session, QUORVEL_TEST_APPLICATION, {.name = "notes"}};
    const std::string path = notes.entry();
    static constexpr const char* shortcut = "control,option,N";

    /// Starts the program with this edge for the application, and that by its shortcut.
    xcb_window_t startWithWindow(const std::string& edge, std::string_view animation = "slide");
};

}  // namespace quorvel::test
