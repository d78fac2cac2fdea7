#include <array>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"
#include "benchmarks/Processes.hpp"
#include "tests/support/x11/Panel.hpp"

namespace quorvel::bench {
namespace {

using namespace std::chrono_literals;

constexpr int presses = 50;
constexpr auto restSpan = 10s;

struct Contestant {
    std::string name;
    std::unique_ptr<Stage> stage;
    std::unique_ptr<test::ChildProcess> process;
    Sample answers;
};

/// In megabytes of a million bytes.
struct Memory {
    double resident = 0;
    double proportional = 0;
    double own = 0;
};

Memory memoryOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    Memory memory;
    std::string word;
    double kibibytes = 0;
    while (file >> word) {
        if (!word.ends_with(':')) continue;
        if (!(file >> kibibytes)) break;
        const double megabytes = kibibytes * 1024 / 1'000'000;
        if (word == "Rss:") memory.resident = megabytes;
        if (word == "Pss:") memory.proportional = megabytes;
        if (word.starts_with("Private_")) memory.own += megabytes;
    }
    return memory;
}

bool hasLoadedInterface(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/maps");
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    return content.find("quorvel-interface") != std::string::npos ||
           content.find("libQt6") != std::string::npos;
}

/// Resident, with its item in a panel of this kind.
Row itemRow(const Contestants& contestants, test::PanelKind kind) {
    constexpr double allowed = 12;
    Stage stage(test::WindowManagerKind::openbox);
    const test::Panel panel(kind, stage.session());
    Contestants::configureProgram(stage);
    const test::ChildProcess process = contestants.startProgram(stage);
    panel.waitForItem();
    stage.observer().settle(500ms);
    const double resident = memoryOf(process.pid()).resident;
    const bool interface = hasLoadedInterface(process.pid());
    return {"resident, with its item in " + test::nameOf(kind) + ", MB",
            "1",
            text(resident, 2),
            "",
            "",
            "",
            "≤ " + text(allowed, 0),
            !interface && resident <= allowed};
}

Row answerRow(const std::string& figure, double share, const std::array<Contestant, 3>& all) {
    const auto of = [&](std::size_t index) { return all[index].answers.quantile(share); };
    return {figure,         std::to_string(all[0].answers.count()) + "/" + std::to_string(presses),
            text(of(0), 2), text(of(1), 2),
            text(of(2), 2), text(of(0) / of(1), 2)};
}

}  // namespace

std::vector<Row> measureResidents(const Contestants& contestants) {
    std::array<Contestant, 3> all{
        {{"Quorvel", {}, {}, {}}, {"floor", {}, {}, {}}, {"sxhkd", {}, {}, {}}}};
    for (Contestant& one : all) {
        one.stage = std::make_unique<Stage>(test::WindowManagerKind::openbox);
    }
    Contestants::configureProgram(*all[0].stage);
    all[0].process = std::make_unique<test::ChildProcess>(contestants.startProgram(*all[0].stage));
    all[1].process = std::make_unique<test::ChildProcess>(contestants.startFloor(*all[1].stage));
    all[2].process = std::make_unique<test::ChildProcess>(Contestants::startSxhkd(*all[2].stage));
    for (Contestant& one : all) {
        one.stage->activateOther();
        if (!one.stage->firstAnswer()) throw std::runtime_error(one.name + " does not answer");
    }

    for (std::size_t round = 0; round < presses; ++round) {
        for (std::size_t turn = 0; turn < all.size(); ++turn) {
            Contestant& one = all[(round + turn) % all.size()];
            one.stage->activateOther();
            if (const auto answer = one.stage->answer()) one.answers.add(*answer);
        }
    }

    // The span begins when every desktop has come to rest.
    for (Contestant& one : all) one.stage->observer().settle(200ms);
    std::array<Activity, 3> before;
    for (std::size_t i = 0; i < all.size(); ++i) before[i] = Activity::of(all[i].process->pid());
    const Instant start = Clock::now();
    all[0].stage->observer().sleepUntil(start + restSpan);
    std::array<double, 3> wakeUps{};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        const auto done = Activity::of(all[i].process->pid()).since(before[i]);
        wakeUps[i] = static_cast<double>(done.wakeUps) / seconds;
    }
    std::array<Memory, 3> memory{};
    for (std::size_t i = 0; i < all.size(); ++i) memory[i] = memoryOf(all[i].process->pid());
    const bool interface = hasLoadedInterface(all[0].process->pid());

    std::vector<Row> rows;
    const auto median = [&](std::size_t index) { return all[index].answers.median(); };
    rows.push_back(answerRow("shortcut → window active, median ms", 0.5, all));
    rows.back().goal = "≤ 2 × floor, < sxhkd";
    rows.back().met =
        all[0].answers.count() == presses && median(0) <= 2 * median(1) && median(0) < median(2);
    rows.push_back(answerRow("shortcut → window active, p95 ms", 0.95, all));

    const auto memoryRow = [&](const std::string& figure, double Memory::*part) {
        return Row{figure,
                   "1",
                   text(memory[0].*part, 2),
                   text(memory[1].*part, 2),
                   text(memory[2].*part, 2),
                   text(memory[0].*part / (memory[1].*part), 2)};
    };
    rows.push_back(memoryRow(interface ? "resident, with the interface, MB" : "resident, MB",
                             &Memory::resident));
    rows.back().goal = "≤ 10";
    rows.back().met = !interface && memory[0].resident <= 10;
    rows.push_back(memoryRow("proportional, MB", &Memory::proportional));
    rows.push_back(memoryRow("its own (private), MB", &Memory::own));
    for (const test::PanelKind kind : {test::PanelKind::trayer, test::PanelKind::lxqtPanel}) {
        rows.push_back(itemRow(contestants, kind));
    }
    rows.push_back({"wake-ups at rest, per second over 10 s", "1", text(wakeUps[0], 2),
                    text(wakeUps[1], 2), text(wakeUps[2], 2), ""});
    return rows;
}

}  // namespace quorvel::bench
