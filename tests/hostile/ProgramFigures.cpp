#include "tests/hostile/ProgramFigures.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <ostream>
#include <string_view>

namespace quorvel::test {
namespace {

constexpr double warmUp = 60;

double residentMegabytes(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
    double size = 0;
    double resident = 0;
    file >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

double processorSeconds(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string field;
    double user = 0;
    double system = 0;
    // The program's name has no space in it.
    for (int i = 0; i < 13; ++i) file >> field;
    file >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

bool isUnwanted(std::string_view line) {
    constexpr std::array<std::string_view, 9> signs{
        "Sanitizer",  "runtime error:", "Assertion", "assertion",   "CRITICAL",
        "terminate ", "pure virtual",   "corrupt",   "Segmentation"};
    return std::any_of(signs.begin(), signs.end(), [&](std::string_view sign) {
        return line.find(sign) != std::string_view::npos;
    });
}

}  // namespace

void ProgramFigures::sample(pid_t pid) {
    const double resident = residentMegabytes(pid);
    if (resident == 0) return;
    const auto now = Clock::now();
    if (runs.empty() || runs.back().pid != pid) runs.push_back({.pid = pid, .begin = now});
    Run& run = runs.back();
    run.seconds = std::chrono::duration<double>(now - run.begin).count();
    run.processor = processorSeconds(pid);
    if (run.seconds <= warmUp) run.atFirst = resident;
    run.now = resident;
    run.most = std::max(run.most, resident);
}

void ProgramFigures::print(std::ostream& out) const {
    if (runs.empty()) return;
    double processor = 0;
    double seconds = 0;
    double most = 0;
    for (const Run& run : runs) {
        processor += run.processor;
        seconds += run.seconds;
        most = std::max(most, run.most);
    }
    const Run& longest = *std::max_element(
        runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.seconds < b.seconds; });
    char text[400];
    std::snprintf(text, sizeof text,
                  "the program: %zu runs, %.2f s of processor time in %.0f s (%.1f %%), %.1f MB "
                  "resident at most\nits longest run: %.0f s, %.1f MB resident after a minute, "
                  "%.1f MB at its end\n",
                  runs.size(), processor, seconds, seconds > 0 ? 100 * processor / seconds : 0,
                  most, longest.seconds, longest.atFirst, longest.now);
    out << text;
}

LogFigures readLog(const std::filesystem::path& log, const std::filesystem::path& output) {
    LogFigures figures;
    std::map<std::string, int> perSecond;
    std::ifstream file(log, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        ++figures.lines;
        // "YYYY-MM-DD HH:MM:SS"
        if (line.starts_with("20") && line.size() > 19) ++perSecond[line.substr(0, 19)];
        if (isUnwanted(line)) figures.unwanted.push_back(line);
    }
    for (const auto& [second, count] : perSecond) {
        if (count <= figures.mostInOneSecond) continue;
        figures.mostInOneSecond = count;
        figures.busiest = second;
    }
    std::ifstream other(output, std::ios::binary);
    for (std::string line; std::getline(other, line);) {
        if (isUnwanted(line)) figures.unwanted.push_back(line);
    }
    return figures;
}

}  // namespace quorvel::test
