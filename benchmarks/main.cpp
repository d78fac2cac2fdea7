// Prints one table: each figure beside its baseline from the same run. The baselines are the least
// that a program can do (floor.cpp) and a well-known hot-key daemon.
//
//   quorvel-bench PROGRAM FLOOR INTERFACE
//       [residents|starts|loads|rest|polls|dwells|windows|slides|NAME …]
//
// measures all, or only the parts that are named; NAME is a window manager to slide under.

#include <sys/utsname.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/Measurements.hpp"

namespace {

using namespace quorvel::bench;

struct Part {
    std::string group;
    std::string name;
    std::function<std::vector<Row>(const Contestants&)> measure;
};

std::vector<Part> allParts() {
    std::vector<Part> parts{{"residents", "residents", measureResidents},
                            {"starts", "starts", measureStarts},
                            {"loads", "loads", measureLoads},
                            {"rest", "rest", measureRest},
                            {"polls", "polls", [](const Contestants&) { return measurePolls(); }},
                            {"dwells", "dwells", measureDwells},
                            {"windows", "windows", measureWindows}};
    for (const auto kind : quorvel::test::allWindowManagers()) {
        parts.push_back({"slides", quorvel::test::nameOf(kind),
                         [kind](const Contestants& all) { return measureSlides(all, kind); }});
    }
    return parts;
}

std::string machine() {
    utsname names{};
    uname(&names);
    double load = 0;
    getloadavg(&load, 1);
    return "Linux " + std::string(names.release) + ", " +
           std::to_string(std::thread::hardware_concurrency()) + " cores, load " + text(load, 2);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> given(arguments, arguments + argumentCount);
    if (given.size() < 4) {
        std::cerr << "usage: quorvel-bench PROGRAM FLOOR INTERFACE "
                     "[residents|starts|loads|rest|polls|dwells|windows|slides|NAME …]\n";
        return 2;
    }
    const Contestants contestants{given[1], given[2], given[3]};
    const auto isWanted = [&](const Part& part) {
        return given.size() == 4 ||
               std::any_of(given.begin() + 4, given.end(), [&](const std::string& word) {
                   return word == part.group || word == part.name;
               });
    };
    try {
        const Instant start = Clock::now();
        const std::string before = machine();
        std::vector<Row> rows;
        for (const Part& part : allParts()) {
            if (!isWanted(part)) continue;
            const std::vector<Row> more = part.measure(contestants);
            rows.insert(rows.end(), more.begin(), more.end());
        }
        std::cout
            << "Xvfb, openbox where no other window manager is named. " << before << " before, "
            << machine().substr(machine().find("load")) << " after, "
            << text(milliseconds(Clock::now() - start) / 1000, 0) << " s.\n\n"
            << table(rows)
            << "\nfloor: a bare xcb program that does only this; of windows, plain widgets. sxhkd "
               "runs `wmctrl -xa`. "
               "MB are millions of bytes.\n";
    } catch (const std::exception& failure) {
        std::cerr << "quorvel-bench: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
