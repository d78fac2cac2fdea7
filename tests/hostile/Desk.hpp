#pragma once

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/hostile/Account.hpp"
#include "tests/hostile/ProgramFigures.hpp"
#include "tests/hostile/Reach.hpp"
#include "tests/support/x11/Panel.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {

using Random = std::mt19937;

/// From `least` to `most`, both included.
int pick(Random& random, int least, int most);
template <class Container>
const auto& oneOf(Random& random, const Container& all) {
    return all[static_cast<std::size_t>(pick(random, 0, static_cast<int>(all.size()) - 1))];
}

/// Where the displays are; an empty rectangle is one that is unplugged.
using Arrangement = std::array<Rect, 3>;
const std::vector<Arrangement>& allArrangements();

/// A session with the program and some applications that it is bound to, and what can be done to
/// it.
class Desk {
public:
    /// `withProgram`: or all the same happens without it, for comparison.
    Desk(Account& account, bool withProgram);

    struct Application {
        std::string name;
        std::string shortcut;
        std::string className;
        std::vector<std::string> command;      ///< of a real program
        std::unique_ptr<TestApplication> toy;  ///< or one whose windows do what they are told
        bool isSuspended = false;
    };
    std::vector<Application>& applications() { return all; }
    bool isRunning(Application& application);
    /// Starts it, or lets a toy open one more window. False when that is not possible now.
    bool open(Application& application);
    void kill(Application& application);
    void suspend(Application& application);
    void resume(Application& application);
    /// Its newest window that is shown; 0 for none.
    xcb_window_t windowOf(const Application& application) const;

    bool hasWindowManager() const;
    void stopWindowManager(int signal);
    void startWindowManager(WindowManagerKind kind);
    void replaceWindowManager(WindowManagerKind kind);

    bool hasBus() const { return busRuns; }
    void stopBus();
    void startBus();

    void killPanel() { panel.reset(); }
    void startPanel(PanelKind kind);

    void arrange(const Arrangement& next);
    void switchAllDisplaysOff();
    const std::vector<Rect>& displays() const { return shown; }

    /// Texts of valid settings files.
    const std::vector<std::string>& settings() const { return settingsTexts; }
    void replaceSettings(const std::string& text);

    bool withProgram() const { return isWithProgram; }
    void startProgram();
    void killProgram();
    /// Asks it to end and counts what it leaves behind.
    void terminateProgram();
    /// A look at whether it lives, as it should.
    void watchProgram();
    /// What it has logged since the last time.
    void hearProgram();

    /// Everything runs and answers again; then counts what is out of reach and stays so.
    void settle(Reach::Terms terms);

    ProgramOnX program{{.server = XServerKind::hotPlug, .windowManager = {}}};
    Reach reach;
    ProgramFigures figures;

private:
    void writeSettingsTexts();
    void tellLosses(Reach::Terms terms, const std::string& when);
    std::vector<pid_t> processesOf(const Application& application) const;
    void signal(const Application& application, int number) const;

    Account& account;
    std::streamoff heard = 0;
    bool isWithProgram;
    bool shouldRun = false;
    bool busRuns = true;
    std::vector<Application> all;
    std::vector<ChildProcess> started;
    std::optional<Panel> panel;
    std::vector<Rect> shown;
    std::vector<std::string> settingsTexts;
    std::optional<WindowManagerKind> lastManager;
};

}  // namespace quorvel::test
