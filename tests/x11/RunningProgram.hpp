#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/x11/XSession.hpp"

namespace quorvel::test {

/// The built program in a session, with preferences that a test writes for it.
class RunningProgram {
public:
    /// A path where nothing is installed, and the shortcut that asks for it.
    static constexpr const char* missingPath = "/usr/share/applications/nowhere.desktop";
    static constexpr const char* bindingOfTheMissing =
        R"({"AppBindings": [{"appPath": "/usr/share/applications/nowhere.desktop",
                             "hotKey": "control,option,N", "autoTuck": "false"}]})";

    explicit RunningProgram(XSession& session, std::filesystem::path program = QUORVEL_PROGRAM)
        : session(session), program(std::move(program)) {}

    void configure(std::string_view json) const {
        session.folder().write("config/com.tessivane.quorvel/defaults.json", json);
    }

    /// Returns once it is ready.
    ChildProcess start(const Environment& extra = {}, const std::string& through = "") const {
        std::vector<std::string> arguments{program};
        if (!through.empty()) arguments.insert(arguments.begin(), through);
        ChildProcess process = session.start(arguments, extra);
        if (!waitUntil([&] { return countOfLines("Quorvel: accessibility ") > 0; })) {
            throw std::runtime_error("the program does not get ready");
        }
        return process;
    }

    /// The lines of its log, without time and process.
    std::vector<std::string> lines() const {
        std::ifstream stream(session.folder() / "home/Library/Logs" /
                             (program.filename().string() + ".log"));
        std::vector<std::string> result;
        for (std::string line; std::getline(stream, line);) {
            const auto at = line.find("Quorvel: ");
            result.push_back(at == std::string::npos ? line : line.substr(at));
        }
        return result;
    }

    int countOfLines(const std::string& beginning) const {
        int count = 0;
        for (const std::string& line : lines()) count += line.starts_with(beginning) ? 1 : 0;
        return count;
    }

    /// The window of this process that the window manager says is active; 0 when it is another's.
    xcb_window_t activeWindowOf(const ChildProcess& process) const {
        const xcb_window_t active = session.probe().activeWindow();
        // A window manager may call a window active for a moment after that has closed.
        const bool isOurs =
            session.probe().isManaged(active) &&
            session.probe().pid(active) == static_cast<std::uint32_t>(process.pid());
        if (isOurs) return active;
        return XCB_WINDOW_NONE;
    }

    /// The alert about the missing application. Throws when none comes to the front.
    xcb_window_t raiseAlert(const ChildProcess& process) const {
        session.input().chord({"Control", "Alt"}, "N");
        return waitForWindow(process);
    }

    xcb_window_t waitForWindow(const ChildProcess& process) const {
        xcb_window_t window = XCB_WINDOW_NONE;
        waitUntil([&] { return (window = activeWindowOf(process)) != XCB_WINDOW_NONE; });
        if (window == XCB_WINDOW_NONE) throw std::runtime_error("no window has come to the front");
        return window;
    }

private:
    XSession& session;
    std::filesystem::path program;
};

}  // namespace quorvel::test
