#pragma once

#include <vector>

#include "benchmarks/Contestants.hpp"
#include "benchmarks/Figures.hpp"

namespace quorvel::bench {

/// From the press to the active window; then memory and wake-ups of the same processes at rest.
/// Each contestant has a desktop of its own, so that none of them hears of another's events; they
/// press in turn.
std::vector<Row> measureResidents(const Contestants& contestants);

/// From the start of the process to its first answer, in turn on one desktop.
std::vector<Row> measureStarts(const Contestants& contestants);

/// From the start of the process to its "ready" line with 100 bindings on three displays, beside
/// the same program with none.
std::vector<Row> measureLoads(const Contestants& contestants);

/// Wake-ups and processor time while nothing happens, with nothing tucked and with ten windows.
/// Takes 60 seconds, or QUORVEL_BENCH_SECONDS.
std::vector<Row> measureRest(const Contestants& contestants);

/// One look at the pointer and at 1 to 1,000 held windows: what it costs and how that grows.
std::vector<Row> measurePolls();

/// From the pointer on the strip to the first frame of the slide, and from the pointer in a corner
/// to the active window.
std::vector<Row> measureDwells(const Contestants& contestants);

/// Slides of the terminal to the left edge and back, under one window manager.
std::vector<Row> measureSlides(const Contestants& contestants, test::WindowManagerKind kind);

/// A rebuild of a large settings window, beside the same number of plain widgets; and from asking
/// for the first settings window of a process until it shows something, beside the start of a
/// program with nothing but a window.
std::vector<Row> measureWindows(const Contestants& contestants);

}  // namespace quorvel::bench
