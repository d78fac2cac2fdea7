#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"
#include "benchmarks/Processes.hpp"
#include "tests/support/x11/TestApplication.hpp"

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr double wakeUpsAllowed = 0.5;
constexpr double sliver = 2;
constexpr double displayWidth = 1280;
/// With the terminal, which tucks itself, that makes ten.
constexpr int windowsOfNotes = 9;
/// The program counts as at rest when it has not woken up for this long.
constexpr auto restIsTold = 500ms;

std::chrono::seconds span() {
    const char* const wanted = std::getenv("QUORVEL_BENCH_SECONDS");
    return std::chrono::seconds(wanted == nullptr ? 60 : std::max(1, std::atoi(wanted)));
}

struct Usage {
    Instant at;
    Activity activity;

    static Usage of(const test::ChildProcess& process) {
        return {Clock::now(), Activity::of(process.pid())};
    }
};

/// One desktop with the program and, beside it, the process that only sleeps.
struct Situation {
    explicit Situation(std::string name)
        : name(std::move(name)), stage(test::WindowManagerKind::openbox) {}

    void begin() { before = {Usage::of(*program), Usage::of(*floor)}; }
    void end() { after = {Usage::of(*program), Usage::of(*floor)}; }

    double wakeUps(std::size_t index) const {
        const std::chrono::duration<double> passed = after[index].at - before[index].at;
        return static_cast<double>(after[index].activity.since(before[index].activity).wakeUps) /
               passed.count();
    }
    double milliseconds(std::size_t index) const {
        return after[index].activity.since(before[index].activity).processorMilliseconds;
    }

    std::string name;
    Stage stage;
    std::optional<test::TestApplication> notes;
    std::vector<xcb_window_t> windows;
    std::optional<test::ChildProcess> program;
    std::optional<test::ChildProcess> floor;
    std::array<Usage, 2> before;
    std::array<Usage, 2> after;
};

void start(Situation& situation, const Contestants& contestants) {
    Stage& stage = situation.stage;
    situation.floor.emplace(contestants.startSleepingFloor(stage));
    situation.program.emplace(contestants.startProgram(stage));
    stage.activateOther();
    if (!stage.firstAnswer()) throw std::runtime_error("Quorvel does not answer");
}

bool isAt(Situation& situation, xcb_window_t window, bool atRight) {
    const auto seen = situation.stage.session().probe().visibleFrame(window);
    return seen && seen->x == (atRight ? displayWidth - sliver : sliver - seen->width);
}

/// Nine windows by the shortcut to the left, the terminal by itself to the right.
void requireTucked(Situation& situation) {
    bool all = isAt(situation, situation.stage.terminal(), true);
    for (const xcb_window_t window : situation.windows) all = all && isAt(situation, window, false);
    if (!all) throw std::runtime_error("a window is not where it was tucked");
}

/// A program that has not heard yet which window is active only activates it: one press more.
void tuck(Situation& situation, xcb_window_t window) {
    situation.stage.activate(window);
    for (int press = 0; press < 3; ++press) {
        situation.stage.press("N");
        if (test::waitUntil([&] { return isAt(situation, window, false); }, 3s)) return;
    }
}

void tuckTen(Situation& situation, const Contestants& contestants) {
    Stage& stage = situation.stage;
    situation.notes.emplace(stage.session(), QUORVEL_TEST_APPLICATION,
                            test::TestApplication::Options{.name = "notes", .opensWindow = false});
    contestants.configureProgram(stage, {{terminalEntry, "T", "right", "topRight", true},
                                         {situation.notes->entry().string(), "N", "left"}});
    start(situation, contestants);
    for (int index = 0; index < windowsOfNotes; ++index) {
        const double y = 40 + 80.0 * index;
        const xcb_window_t window = situation.notes->open({200.0 + 10 * index, y, 320, 40});
        situation.windows.push_back(window);
        tuck(situation, window);
    }
    stage.activateOther();
    test::waitUntil([&] { return isAt(situation, stage.terminal(), true); }, 5s);
    requireTucked(situation);
}

void awaitRest(const Situation& situation) {
    const pid_t process = situation.program->pid();
    const Instant deadline = Clock::now() + 10s;
    situation.stage.observer().settle(200ms);
    Activity last = Activity::of(process);
    while (Clock::now() < deadline) {
        situation.stage.observer().sleepUntil(Clock::now() + restIsTold);
        Activity now = Activity::of(process);
        if (now == last) return;
        last = std::move(now);
    }
    throw std::runtime_error("the program does not come to rest");
}

}  // namespace

std::vector<Row> measureRest(const Contestants& contestants) {
    Situation none("nothing tucked");
    Contestants::configureProgram(none.stage);
    start(none, contestants);
    none.stage.activateOther();
    Situation ten("10 tucked, Auto corner");
    tuckTen(ten, contestants);

    for (const Situation* each : {&none, &ten}) awaitRest(*each);
    for (Situation* each : {&none, &ten}) each->begin();
    const auto seconds = span();
    none.stage.observer().sleepUntil(Clock::now() + seconds);
    for (Situation* each : {&none, &ten}) each->end();
    requireTucked(ten);

    std::vector<Row> rows;
    const std::string head = "at rest for " + std::to_string(seconds.count()) + " s, ";
    for (const Situation* each : {&none, &ten}) {
        rows.push_back({head + each->name + ": wake-ups per second", "1", text(each->wakeUps(0), 2),
                        text(each->wakeUps(1), 2), "", "", "≤ " + text(wakeUpsAllowed, 1),
                        each->wakeUps(0) <= wakeUpsAllowed});
        rows.push_back({"  processor time of all of it, ms", "1", text(each->milliseconds(0), 2),
                        text(each->milliseconds(1), 2)});
    }
    return rows;
}

}  // namespace quorvel::bench
