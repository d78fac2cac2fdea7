#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int slides = 50;
/// The machine's own share of the loss is looked at once in so many slides.
constexpr int slidesAFloor = 5;
/// 160 ms at 60 frames a second: nine on the way and the last one.
constexpr std::size_t framesDue = 10;
constexpr double sliver = 2;
constexpr int plainHome = 400;
constexpr int plainDistance = 698;

/// A slide is over when it has reached its end and then nothing has moved for this long, so that a
/// correction still counts to it; or when nothing has moved for much longer elsewhere.
constexpr auto restAtEnd = 80ms;
constexpr auto restElsewhere = 700ms;
constexpr auto slideLimit = 2000ms;

/// What the server told about one slide of one window.
struct Trace {
    std::vector<Instant> times;
    std::set<std::pair<int, int>> positions;  ///< without the one where it began
};

struct Tally {
    std::size_t applied = 0;
    std::size_t due = 0;
    Sample gaps;  ///< between two frames of one slide, in milliseconds

    void add(const Trace& trace) {
        applied += std::min(trace.positions.size(), framesDue);
        due += framesDue;
        for (std::size_t i = 1; i < trace.times.size(); ++i) {
            gaps.add(milliseconds(trace.times[i] - trace.times[i - 1]));
        }
    }
    double share() const { return 100.0 * static_cast<double>(applied) / static_cast<double>(due); }
};

struct Outcome {
    Tally program;
    Tally floor;
    int exact = 0;
    std::string firstMiss;
};

using Position = std::pair<int, int>;

Position positionOf(Stage& stage, xcb_window_t window) {
    const auto area = stage.session().probe().clientArea(window);
    if (!area) throw std::runtime_error("a window has gone during a slide");
    return {static_cast<int>(area->x), static_cast<int>(area->y)};
}

/// Presses, and follows the window (a child of the root) for `distance` pixels to the right.
Trace follow(Stage& stage, xcb_window_t window, const std::string& key, int distance) {
    Trace trace;
    const Position start = positionOf(stage, window);
    const Position end{start.first + distance, start.second};
    Position last = start;
    const auto moves = [&](const xcb_generic_event_t& event, Instant at) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return false;
        xcb_configure_notify_event_t change;
        std::memcpy(&change, &event, sizeof change);
        if (change.window != window) return false;
        last = {change.x, change.y};
        if (last != start && trace.positions.insert(last).second) trace.times.push_back(at);
        return true;
    };
    stage.observer().settle(1ms);
    stage.press(key);
    const Instant limit = Clock::now() + slideLimit;
    const auto restLimit = [&] {
        return Clock::now() + (last == end ? restAtEnd : std::chrono::milliseconds(restElsewhere));
    };
    while (stage.observer().waitFor(moves, std::min(limit, restLimit()))) {
    }
    return trace;
}

std::string describe(const Rect& rect) {
    return "(" + text(rect.x, 0) + ", " + text(rect.y, 0) + ")";
}

Outcome measureUnder(const Contestants& contestants, test::WindowManagerKind kind) {
    Stage stage(kind);
    const test::XProbe& probe = stage.session().probe();
    contestants.configureProgram(stage, {{terminalEntry, "T", "left"}});
    test::ChildProcess program = contestants.startProgram(stage);
    stage.activateOther();
    if (!stage.firstAnswer()) throw std::runtime_error("Quorvel does not answer");

    test::TestClient plain(stage.session().displayName());
    const xcb_window_t plainWindow =
        stage.session().open(plain, {.area = {plainHome, 650, 300, 60}, .overrideRedirect = true});
    const test::ChildProcess floor =
        contestants.startSlidingFloor(stage, plainWindow, plainDistance);
    stage.observer().select(plainWindow, XCB_EVENT_MASK_STRUCTURE_NOTIFY);

    stage.activateTerminal();
    const std::optional<Rect> home = probe.visibleFrame(stage.terminal());
    if (!home) throw std::runtime_error("the terminal has no frame");
    Outcome outcome;
    for (int index = 0; index < slides; ++index) {
        const xcb_window_t frame = probe.frameOf(stage.terminal());
        stage.observer().select(frame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        const std::optional<Rect> before = probe.visibleFrame(stage.terminal());
        if (!before) throw std::runtime_error("the terminal has no frame");
        Rect wanted = *home;
        if (index % 2 == 0) wanted.x = sliver - home->width;
        const auto distance = static_cast<int>(wanted.x - before->x);
        outcome.program.add(follow(stage, frame, "T", distance));

        const std::optional<Rect> seen = probe.visibleFrame(stage.terminal());
        if (seen && *seen == wanted) {
            ++outcome.exact;
        } else if (outcome.firstMiss.empty()) {
            outcome.firstMiss = "slide " + std::to_string(index + 1) + " ended at " +
                                (seen ? describe(*seen) : "nowhere") + " instead of " +
                                describe(wanted);
        }
        if (index % slidesAFloor == 0) {
            const int there =
                positionOf(stage, plainWindow).first == plainHome ? -plainDistance : plainDistance;
            outcome.floor.add(follow(stage, plainWindow, "Y", there));
        }
    }
    Contestants::endProgram(program);
    return outcome;
}

}  // namespace

std::vector<Row> measureSlides(const Contestants& contestants, test::WindowManagerKind kind) {
    const Outcome outcome = measureUnder(contestants, kind);
    const std::string name = test::nameOf(kind);
    const std::string all = std::to_string(slides);
    const double share = outcome.program.share();
    std::vector<Row> rows;
    rows.push_back({name + ": frames of a slide applied, %", all, text(share, 1),
                    text(outcome.floor.share(), 1), "", text(share / outcome.floor.share(), 2),
                    "≥ 95", share >= 95});
    const double gap = outcome.program.gaps.quantile(0.95);
    const double floorGap = outcome.floor.gaps.quantile(0.95);
    rows.push_back({name + ": between frames, p95 ms", all, text(gap, 1), text(floorGap, 1), "",
                    text(gap / floorGap, 2)});
    rows.push_back({name + ": ends exact to the pixel", all,
                    std::to_string(outcome.exact) + "/" + all, "", "", "", "all",
                    outcome.exact == slides});
    if (!outcome.firstMiss.empty()) rows.push_back({"  " + outcome.firstMiss});
    return rows;
}

}  // namespace quorvel::bench
