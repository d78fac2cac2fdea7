#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/ScratchFolder.hpp"
#include "tests/support/x11/TestClient.hpp"
#include "tests/support/x11/XProbe.hpp"

namespace quorvel::test {

enum class WindowManagerKind {
    openbox,
    xfwm4,
    kwin,
    i3,
    marco,
    metacity,
    mutter,
    awesome,
    icewm,
    fluxbox,
    jwm,
    bspwm,
};

/// The five that every test run uses: one of each kind there is.
const std::vector<WindowManagerKind>& allWindowManagers();
/// All that are known here.
const std::vector<WindowManagerKind>& everyWindowManager();
std::string nameOf(WindowManagerKind kind);
/// How GoogleTest shows it.
void PrintTo(WindowManagerKind kind, std::ostream* out);

/// A real window manager without key bindings, without compositor (Mutter has one always), and
/// with floating windows; ready when the constructor
/// returns. Throws when it does not start.
class WindowManager {
public:
    enum class Start { alone, replacing };

    /// `environment` is that of the session; its HOME is in `folder`. A replacing one takes over
    /// from the one that runs.
    WindowManager(WindowManagerKind kind, const Environment& environment,
                  const ScratchFolder& folder, const XProbe& probe, Start start = Start::alone);

    WindowManagerKind kind() const { return managerKind; }
    bool isRunning() const { return process.isRunning(); }
    void signal(int number) const { process.signal(number); }
    /// Returns when it has handled all that has happened so far. Throws when it does not;
    /// KWin never does.
    void sync();
    /// Ends it at once; its windows stay.
    void kill() { process.end(); }

private:
    WindowManagerKind managerKind;
    std::vector<std::uint32_t> predecessor;  ///< the check window of the one it takes over from
    ChildProcess process;
    // Kept, so that no later window is given the identifier of the one that was destroyed: some
    // leave that in _NET_ACTIVE_WINDOW.
    TestClient firstClient;
};

}  // namespace quorvel::test
