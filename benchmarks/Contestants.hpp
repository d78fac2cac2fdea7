#pragma once

#include <filesystem>
#include <string>

#include "benchmarks/Stage.hpp"

namespace quorvel::bench {

/// The keysyms of the keys that shortcuts are bound to here.
inline constexpr const char* keysymT = "0x74";
inline constexpr const char* keysymY = "0x79";

/// What is measured, and what it is measured against. Each starts in the session of the stage and
/// may not be ready yet when the function returns.
struct Contestants {
    std::filesystem::path program;
    std::filesystem::path floor;

    /// Binds the terminal to Control+Alt+T for a later start, without an edge to tuck it to.
    static void configureProgram(Stage& stage);
    /// The same with the left edge of the stage's display. Starts the program once, since only that
    /// knows what it calls the display.
    void configureProgramWithEdge(Stage& stage) const;

    test::ChildProcess startProgram(Stage& stage) const;
    /// Asks it to end, as at the end of a session, and waits for that.
    static void endProgram(test::ChildProcess& process);

    test::ChildProcess startFloor(Stage& stage) const;
    /// Control+Alt+Y slides `window` by `distance` pixels to the left, and back the next time.
    test::ChildProcess startSlidingFloor(Stage& stage, xcb_window_t window, int distance) const;

    static test::ChildProcess startSxhkd(Stage& stage);
};

}  // namespace quorvel::bench
