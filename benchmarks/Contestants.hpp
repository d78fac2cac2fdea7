#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "benchmarks/Stage.hpp"

namespace quorvel::bench {

/// The keysyms of the keys that shortcuts are bound to here.
inline constexpr const char* keysymT = "0x74";
inline constexpr const char* keysymY = "0x79";

/// The desktop entry of the stage's terminal.
inline constexpr const char* terminalEntry = "/usr/share/applications/debian-xterm.desktop";

/// What the program is told about one application on the stage's display.
struct Binding {
    std::string entry;
    std::string letter;  ///< with Control+Alt
    std::string edge = "none";
    std::string corner = "none";
    bool isAuto = false;
};

/// What is measured, and what it is measured against. Each starts in the session of the stage and
/// may not be ready yet when the function returns.
struct Contestants {
    std::filesystem::path program;
    std::filesystem::path floor;
    std::filesystem::path interface;  ///< windows alone

    /// Binds the terminal to Control+Alt+T for a later start, without an edge to tuck it to.
    static void configureProgram(Stage& stage);
    /// With edges and corners of the stage's display. Starts the program once, since only that
    /// knows what it calls the display.
    void configureProgram(Stage& stage, const std::vector<Binding>& bindings) const;

    test::ChildProcess startProgram(Stage& stage) const;
    /// Asks it to end, as at the end of a session, and waits for that.
    static void endProgram(test::ChildProcess& process);

    test::ChildProcess startFloor(Stage& stage) const;
    /// Control+Alt+Y slides `window` by `distance` pixels to the left, and back the next time.
    test::ChildProcess startSlidingFloor(Stage& stage, xcb_window_t window, int distance) const;

    /// Watches for a pointer that rests in the area for so many milliseconds, with as many looks as
    /// the program makes, and then changes this property of the root window.
    static constexpr const char* dwellProperty = "_QUORVEL_BENCH_DWELL";
    test::ChildProcess startDwellingFloor(Stage& stage, const Rect& area, int dwell) const;

    /// Nothing but a connection to the server that it sleeps on.
    test::ChildProcess startSleepingFloor(Stage& stage) const;

    static test::ChildProcess startSxhkd(Stage& stage);
};

}  // namespace quorvel::bench
