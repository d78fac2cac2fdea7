#include <functional>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"

namespace quorvel::bench {
namespace {

constexpr int starts = 30;

std::optional<double> start(Stage& stage, const std::function<test::ChildProcess()>& launch,
                            const std::function<void(test::ChildProcess&)>& end) {
    stage.activateOther();
    const Instant launched = Clock::now();
    test::ChildProcess process = launch();
    const auto answered = stage.firstAnswer();
    end(process);
    if (!answered) return std::nullopt;
    return milliseconds(*answered - launched);
}

}  // namespace

std::vector<Row> measureStarts(const Contestants& contestants) {
    Stage stage(test::WindowManagerKind::openbox);
    Contestants::configureProgram(stage);
    const auto startProgram = [&] {
        return start(
            stage, [&] { return contestants.startProgram(stage); }, Contestants::endProgram);
    };
    const auto kill = [](test::ChildProcess& process) { process.end(); };
    const auto startFloor = [&] {
        return start(
            stage, [&] { return contestants.startFloor(stage); }, kill);
    };
    const auto startSxhkd = [&] {
        return start(
            stage, [&] { return Contestants::startSxhkd(stage); }, kill);
    };

    Sample program;
    Sample floor;
    Sample sxhkd;
    // The first round fills the page cache and is not counted.
    for (int round = 0; round <= starts; ++round) {
        const std::optional<double> times[] = {startProgram(), startFloor(), startSxhkd()};
        if (round == 0) continue;
        if (times[0]) program.add(*times[0]);
        if (times[1]) floor.add(*times[1]);
        if (times[2]) sxhkd.add(*times[2]);
    }

    // A start without an answer is no time, but it is told.
    const auto told = [](const Sample& sample, double share) {
        const std::string lost = std::to_string(starts - static_cast<int>(sample.count()));
        return text(sample.quantile(share), 2) + (lost == "0" ? "" : " (" + lost + " lost)");
    };
    const auto row = [&](const std::string& figure, double share) {
        return Row{figure,
                   std::to_string(starts),
                   told(program, share),
                   told(floor, share),
                   told(sxhkd, share),
                   text(program.quantile(share) / floor.quantile(share), 2)};
    };
    std::vector<Row> rows{row("start → first answer, median ms", 0.5),
                          row("start → first answer, p95 ms", 0.95)};
    rows[0].goal = "≤ 3 × floor";
    rows[0].met = program.count() == starts && program.median() <= 3 * floor.median();
    return rows;
}

}  // namespace quorvel::bench
