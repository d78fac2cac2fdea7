// Tries every behaviour under every window manager and prints a table of what it saw, for the
// documentation.
//
//   quorvel-matrix [NAME …]           the window managers that are named, or all
//   quorvel-matrix --one NAME COLUMN  one cell: what fell short, or nothing

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "tests/x11/Behaviours.hpp"

namespace {

using namespace quorvel::test;

struct Cell {
    WindowManagerKind kind;
    std::size_t column = 0;
    std::string shortfall{};
};

int tryOne(const std::string& name, const std::string& column) {
    for (const auto kind : everyWindowManager()) {
        if (nameOf(kind) != name) continue;
        std::cout << allBehaviours().at(std::stoul(column)).tryOut(kind) << "\n";
        return 0;
    }
    return 2;
}

// A process of its own: a desktop session is that of a whole process.
std::string outcome(const std::string& self, const Cell& cell) {
    const std::string command = "'" + self + "' --one " + nameOf(cell.kind) + " " +
                                std::to_string(cell.column) + " 2>/dev/null";
    std::FILE* const output = popen(command.c_str(), "r");
    if (output == nullptr) return "cannot be tried";
    std::string text;
    std::array<char, 256> part{};
    while (std::fgets(part.data(), int(part.size()), output) != nullptr) text += part.data();
    if (pclose(output) != 0) return "the trial itself broke off";
    text.erase(std::min(text.find('\n'), text.size()));
    return text;
}

void printPage(const std::vector<WindowManagerKind>& kinds, const std::vector<Cell>& cells) {
    std::cout << "# What works on which window manager\n\n"
                 "Made by `make matrix`, which starts each of them on a private X server and tries "
                 "each\nbehaviour with real programs and real input. A \"yes\" is what was seen "
                 "on the screen,\nto the pixel where a place is exact.\n\n"
                 "| window manager |";
    for (const Behaviour& behaviour : allBehaviours()) std::cout << " " << behaviour.name << " |";
    std::cout << "\n|---|";
    for (std::size_t i = 0; i < allBehaviours().size(); ++i) std::cout << "---|";
    std::cout << "\n";
    std::vector<std::string> reasons;
    for (const auto kind : kinds) {
        std::cout << "| " << nameOf(kind) << " |";
        for (const Cell& cell : cells) {
            if (cell.kind != kind) continue;
            if (cell.shortfall.empty()) {
                std::cout << " yes |";
                continue;
            }
            auto reason = std::find(reasons.begin(), reasons.end(), cell.shortfall);
            if (reason == reasons.end()) reason = reasons.insert(reason, cell.shortfall);
            std::cout << " no (" << reason - reasons.begin() + 1 << ") |";
        }
        std::cout << "\n";
    }
    std::cout << "\n";
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        std::cout << i + 1 << ". " << reasons[i] << "\n";
    }
    std::cout
        << "\nA window of which more than two pixels stay on the screen is one that its window "
           "manager keeps\nthere and paints where it believes it to be, so that it cannot be "
           "moved past it. Quorvel says so\nin its log and leaves the window where it is. "
           "Metacity and Marco were tried without compositing;\nMetacity with it does as "
           "Mutter does.\n";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> given(arguments, arguments + argumentCount);
    if (given.size() == 4 && given[1] == "--one") return tryOne(given[2], given[3]);

    std::vector<WindowManagerKind> kinds;
    std::vector<Cell> cells;
    for (const auto kind : everyWindowManager()) {
        const bool isNamed = std::find(given.begin() + 1, given.end(), nameOf(kind)) != given.end();
        if (given.size() > 1 && !isNamed) continue;
        kinds.push_back(kind);
        for (std::size_t column = 0; column < allBehaviours().size(); ++column) {
            cells.push_back({kind, column});
        }
    }
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < cells.size(); i = next++) {
            cells[i].shortfall = outcome(self, cells[i]);
        }
    };
    std::vector<std::jthread> workers;
    for (unsigned i = 0; i < std::max(2U, std::thread::hardware_concurrency()); ++i) {
        workers.emplace_back(work);
    }
    workers.clear();
    printPage(kinds, cells);
    return 0;
}
