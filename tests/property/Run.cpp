#include "tests/property/Run.hpp"

#include <chrono>
#include <exception>
#include <string_view>

#include "tests/property/Invariants.hpp"
#include "tests/property/World.hpp"

namespace quorvel {
namespace {

std::string clockOf(const World& world) {
    const auto sinceStart = world.sim.runLoop.uptime() - std::chrono::hours(1);
    return std::to_string(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

/// How the windows stand after a step, in one line.
std::string situation(const World& world) {
    std::string result;
    const TuckController& tucking = world.controller.tucking();
    for (const auto& [appPath, window, edge] : tucking.tuckedWindows()) {
        result += result.empty() ? "  [" : ", ";
        result += std::to_string(window.element) + " " + std::string(edge.rawValue());
        if (tucking.isRevealed(window)) result += " revealed";
        if (tucking.isMoving(window)) result += " moving";
    }
    return result.empty() ? result : result + "]";
}

}  // namespace

std::optional<Breach> run(const Script& script, std::ostream* narration) {
    std::size_t steps = 0;
    try {
        World world;
        Invariants invariants(world);
        std::string heard;
        if (narration) {
            world.witness.narrate = [&](std::string_view line) {
                heard += "  | " + std::string(line);
            };
        }
        const auto tell = [&](const std::string& what) {
            if (!narration) return;
            *narration << clockOf(world) << " ms: " << what << heard << situation(world) << "\n";
            heard.clear();
        };
        for (const Step& step : script) {
            invariants.beforeStep();
            world.play(step);
            ++steps;
            invariants.afterStep(step);
            tell(step.text());
            if (world.witness.violation()) return Breach{*world.witness.violation(), steps};
        }
        invariants.beforeStep();
        world.end();
        invariants.atTheEnd();
        tell("the end");
        if (world.witness.violation()) return Breach{*world.witness.violation(), steps + 1};
    } catch (const std::exception& exception) {
        return Breach{"no exception: " + std::string(exception.what()), steps + 1};
    }
    return std::nullopt;
}

}  // namespace quorvel
