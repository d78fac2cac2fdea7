#include <cstring>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int reveals = 30;
constexpr int corners = 100;
constexpr double sliver = 2;

// In milliseconds.
constexpr double pollInterval = 1000.0 / 15;
constexpr double pollTolerance = 20;
constexpr double revealDwell = 150;
constexpr double latestReveal = 290;
constexpr double cornerDwell = 300;
constexpr double latestCorner = cornerDwell + 1.5 * pollInterval + pollTolerance;

/// Away from the edges and with some time passed: every other try begins when the program has come
/// to rest, the others between two of its polls, in turn everywhere between them.
void prepare(Stage& stage, int turn) {
    stage.session().input().moveTo(1100, 400);
    stage.observer().sleepUntil(Clock::now() + 500ms);
    if (turn % 2 == 0) return;
    stage.session().input().moveTo(1101, 401);
    const double share = 0.618034 * turn;
    const auto phase = std::chrono::duration<double, std::milli>(
        (1 + share - static_cast<int>(share)) * pollInterval);
    stage.observer().sleepUntil(Clock::now() + std::chrono::duration_cast<Clock::duration>(phase));
}

test::ChildProcess startProgram(Stage& stage, const Contestants& contestants,
                                const Binding& terminal) {
    contestants.configureProgram(stage, {terminal});
    test::ChildProcess program = contestants.startProgram(stage);
    stage.activateOther();
    if (!stage.firstAnswer()) throw std::runtime_error("Quorvel does not answer");
    return program;
}

/// Nothing when the window does not move.
std::optional<double> reveal(Stage& stage, xcb_window_t frame, const Rect& tucked) {
    const auto comesOut = [&](const xcb_generic_event_t& event, Instant) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return false;
        xcb_configure_notify_event_t change;
        std::memcpy(&change, &event, sizeof change);
        return change.window == frame && change.x != static_cast<int>(tucked.x);
    };
    stage.observer().settle(1ms);
    const Instant start = Clock::now();
    stage.session().input().moveTo(1, static_cast<int>(tucked.y + tucked.height / 2));
    const auto seen = stage.observer().waitFor(comesOut, start + answerLimit);
    if (!seen) return std::nullopt;
    return milliseconds(*seen - start);
}

Sample measureReveals(const Contestants& contestants) {
    Stage stage(test::WindowManagerKind::openbox);
    test::ChildProcess program = startProgram(stage, contestants, {terminalEntry, "T", "left"});
    const test::XProbe& probe = stage.session().probe();
    stage.activateTerminal();
    std::optional<Rect> tucked = probe.visibleFrame(stage.terminal());
    if (!tucked) throw std::runtime_error("the terminal has no frame");
    tucked->x = sliver - tucked->width;
    const auto waitAt = [&](double x) {
        if (!test::waitUntil([&] {
                const auto seen = probe.visibleFrame(stage.terminal());
                return seen && seen->x == x;
            })) {
            throw std::runtime_error("the terminal does not slide");
        }
    };
    stage.press("T");

    const xcb_window_t frame = probe.frameOf(stage.terminal());
    stage.observer().select(frame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    Sample times;
    for (int turn = 0; turn < reveals; ++turn) {
        waitAt(tucked->x);
        stage.activateOther();
        prepare(stage, turn);
        if (const auto time = reveal(stage, frame, *tucked)) times.add(*time);
        waitAt(0);
        stage.session().input().moveTo(1100, 400);
    }
    waitAt(tucked->x);
    Contestants::endProgram(program);
    return times;
}

Sample measureCorners(const Contestants& contestants) {
    Stage stage(test::WindowManagerKind::openbox);
    test::ChildProcess program =
        startProgram(stage, contestants, {terminalEntry, "T", "none", "topRight"});
    Sample times;
    for (int turn = 0; turn < corners; ++turn) {
        stage.activateOther();
        prepare(stage, turn);
        stage.observer().settle(1ms);
        const Instant start = Clock::now();
        stage.session().input().moveTo(1279, 0);
        if (const auto active = stage.waitForTerminal(start + answerLimit)) {
            times.add(milliseconds(*active - start));
        }
    }
    Contestants::endProgram(program);
    return times;
}

Row row(const std::string& figure, const Sample& times, int tries, double share, double floor) {
    const double value = times.quantile(share);
    return {figure,
            std::to_string(times.count()) + "/" + std::to_string(tries),
            text(value, 1),
            text(floor, 0),
            "",
            text(value / floor, 2)};
}

}  // namespace

std::vector<Row> measureDwells(const Contestants& contestants) {
    const Sample out = measureReveals(contestants);
    std::vector<Row> rows{
        row("pointer on the strip → first frame, least ms", out, reveals, 0, revealDwell),
        row("pointer on the strip → first frame, median ms", out, reveals, 0.5, revealDwell),
        row("pointer on the strip → first frame, p95 ms", out, reveals, 0.95, revealDwell)};
    rows[0].goal = "≥ " + text(revealDwell, 0);
    rows[0].met = out.count() == reveals && out.quantile(0) >= revealDwell;
    rows[2].goal = "≤ " + text(latestReveal, 0);
    rows[2].met = out.count() == reveals && out.quantile(0.95) <= latestReveal;

    const Sample fired = measureCorners(contestants);
    for (const auto& [name, share] :
         {std::pair{"least", 0.0}, std::pair{"median", 0.5}, std::pair{"most", 1.0}}) {
        rows.push_back(row("pointer in a corner → window active, " + std::string(name) + " ms",
                           fired, corners, share, cornerDwell));
    }
    int inTime = 0;
    for (const double time : fired.values) {
        if (time >= cornerDwell && time <= latestCorner) ++inTime;
    }
    rows.push_back({"  within " + text(cornerDwell, 0) + " – " + text(latestCorner, 0) + " ms",
                    std::to_string(corners), std::to_string(inTime), "", "", "",
                    "all " + std::to_string(corners), inTime == corners});
    return rows;
}

}  // namespace quorvel::bench
