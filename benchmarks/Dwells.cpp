#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int reveals = 30;
constexpr int corners = 100;
constexpr double sliver = 2;
constexpr double stripWidth = 6;
constexpr double cornerSide = 6;

// In milliseconds.
constexpr double pollInterval = 1000.0 / 15;
constexpr double pollTolerance = 20;
constexpr int revealDwell = 150;
constexpr double latestReveal = 290;
constexpr int cornerDwell = 300;
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

/// From the motion to the answers of the program and of the floor, in milliseconds.
struct Times {
    Sample program;
    Sample floor;
};

/// Moves the pointer there, and waits for both answers.
void measureOne(Stage& stage, int x, int y, Times& times, const Observer::Accepts& isAnswer) {
    const Observer& observer = stage.observer();
    const xcb_atom_t property = observer.connection().atom(Contestants::dwellProperty);
    observer.settle(1ms);
    std::optional<Instant> answer;
    std::optional<Instant> floor;
    const Instant start = Clock::now();
    stage.session().input().moveTo(x, y);
    observer.waitFor(
        [&](const xcb_generic_event_t& event, Instant at) {
            if (!answer && isAnswer(event, at)) answer = at;
            if (!floor && (event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
                xcb_property_notify_event_t change;
                std::memcpy(&change, &event, sizeof change);
                if (change.atom == property) floor = at;
            }
            return answer && floor;
        },
        start + answerLimit);
    if (answer) times.program.add(milliseconds(*answer - start));
    if (floor) times.floor.add(milliseconds(*floor - start));
}

test::ChildProcess startProgram(Stage& stage, const Contestants& contestants,
                                const Binding& terminal) {
    contestants.configureProgram(stage, {terminal});
    test::ChildProcess program = contestants.startProgram(stage);
    stage.activateOther();
    if (!stage.firstAnswer()) throw std::runtime_error("Quorvel does not answer");
    return program;
}

Times measureReveals(const Contestants& contestants) {
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
    const Rect strip{0, tucked->y, stripWidth, tucked->height};
    const test::ChildProcess floor = contestants.startDwellingFloor(stage, strip, revealDwell);
    const auto comesOut = [&](const xcb_generic_event_t& event, Instant) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return false;
        xcb_configure_notify_event_t change;
        std::memcpy(&change, &event, sizeof change);
        return change.window == frame && change.x != static_cast<int>(tucked->x);
    };
    Times times;
    for (int turn = 0; turn < reveals; ++turn) {
        waitAt(tucked->x);
        stage.activateOther();
        prepare(stage, turn);
        measureOne(stage, 1, static_cast<int>(tucked->y + tucked->height / 2), times, comesOut);
        waitAt(0);
        stage.session().input().moveTo(1100, 400);
    }
    waitAt(tucked->x);
    Contestants::endProgram(program);
    return times;
}

Times measureCorners(const Contestants& contestants) {
    Stage stage(test::WindowManagerKind::openbox);
    test::ChildProcess program =
        startProgram(stage, contestants, {terminalEntry, "T", "none", "topRight"});
    const Rect corner{1280 - cornerSide, 0, cornerSide, cornerSide};
    const test::ChildProcess floor = contestants.startDwellingFloor(stage, corner, cornerDwell);
    const auto isAnswer = [&](const xcb_generic_event_t& event, Instant) {
        return stage.isAnswer(event);
    };
    Times times;
    for (int turn = 0; turn < corners; ++turn) {
        stage.activateOther();
        prepare(stage, turn);
        measureOne(stage, 1279, 0, times, isAnswer);
    }
    Contestants::endProgram(program);
    return times;
}

Row row(const std::string& figure, const Times& times, int tries, double share) {
    const double program = times.program.quantile(share);
    const double floor = times.floor.quantile(share);
    return {figure,
            std::to_string(times.program.count()) + "/" + std::to_string(tries),
            text(program, 1),
            text(floor, 1),
            "",
            text(program / floor, 2)};
}

std::ptrdiff_t inTime(const Sample& sample) {
    return std::count_if(sample.values.begin(), sample.values.end(),
                         [](double time) { return time >= cornerDwell && time <= latestCorner; });
}

}  // namespace

std::vector<Row> measureDwells(const Contestants& contestants) {
    const Times out = measureReveals(contestants);
    const std::string strip = "pointer on the strip → first frame, ";
    std::vector<Row> rows{row(strip + "least ms", out, reveals, 0),
                          row(strip + "median ms", out, reveals, 0.5),
                          row(strip + "p95 ms", out, reveals, 0.95)};
    const bool all = out.program.count() == reveals;
    rows[0].goal = "≥ " + std::to_string(revealDwell);
    rows[0].met = all && out.program.quantile(0) >= revealDwell;
    rows[2].goal = "≤ " + text(latestReveal, 0);
    rows[2].met = all && out.program.quantile(0.95) <= latestReveal;

    const Times fired = measureCorners(contestants);
    for (const auto& [name, share] :
         {std::pair{"least", 0.0}, std::pair{"median", 0.5}, std::pair{"most", 1.0}}) {
        rows.push_back(row("pointer in a corner → window active, " + std::string(name) + " ms",
                           fired, corners, share));
    }
    rows.push_back(
        {"  within " + std::to_string(cornerDwell) + " – " + text(latestCorner, 0) + " ms",
         std::to_string(corners), std::to_string(inTime(fired.program)),
         std::to_string(inTime(fired.floor)), "", "", "all " + std::to_string(corners),
         inTime(fired.program) == corners});
    return rows;
}

}  // namespace quorvel::bench
