#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "benchmarks/Observer.hpp"
#include "platform/Geometry.hpp"
#include "tests/support/x11/XSession.hpp"

namespace quorvel::bench {

/// Long enough for any answer on a loaded machine; what takes longer counts as none.
inline constexpr std::chrono::milliseconds answerLimit{1000};

/// A private desktop with a terminal, which the shortcut calls, and a window of our own to come
/// back from. The shortcut is Control+Alt+T.
class Stage {
public:
    explicit Stage(test::WindowManagerKind kind);

    test::XSession& session() { return desktop; }
    xcb_window_t terminal() const { return terminalWindow; }
    const Observer& observer() const { return events; }

    // Each returns when the window is active and the desktop has come to rest.
    void activate(xcb_window_t window);
    void activateOther() { activate(otherWindow); }
    void activateTerminal() { activate(terminalWindow); }

    /// The event tells that the terminal has become the active window.
    bool isAnswer(const xcb_generic_event_t& event) const {
        return isActive(event, terminalWindow);
    }

    /// Presses the shortcut while our own window is active, until the terminal's is: how long that
    /// took, in milliseconds; nothing when there was no answer. The key is held until then, as by a
    /// finger.
    std::optional<double> answer();

    /// Presses the shortcut over and over until somebody takes it, then waits for the answer: when
    /// it came. A key press that nobody has grabbed reaches our own window, so no press can follow
    /// on one that was taken and undo it.
    std::optional<Instant> firstAnswer();

    /// Presses a shortcut once, whatever it does.
    void press(const std::string& key);

private:
    bool isActive(const xcb_generic_event_t& event, xcb_window_t window) const;

    test::XSession desktop;
    Observer events;
    xcb_atom_t activeWindowAtom;
    xcb_window_t otherWindow = XCB_WINDOW_NONE;
    xcb_window_t terminalWindow = XCB_WINDOW_NONE;
    std::optional<test::TestClient> other;
    std::optional<test::ChildProcess> terminalProcess;
};

}  // namespace quorvel::bench
