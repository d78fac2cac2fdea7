#include "benchmarks/Contestants.hpp"

#include <signal.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

#include "benchmarks/Figures.hpp"

namespace quorvel::bench {
namespace {

std::filesystem::path defaultsFile(Stage& stage) {
    return std::filesystem::path(stage.session().environment().at("XDG_CONFIG_HOME")) /
           "com.tessivane.quorvel" / "defaults.json";
}

/// Without a display nothing is placed on it.
void writeDefaults(Stage& stage, const std::vector<Binding>& bindings, const std::string& display) {
    const std::filesystem::path file = defaultsFile(stage);
    std::filesystem::create_directories(file.parent_path());
    std::string bound;
    std::string placed;
    for (const Binding& each : bindings) {
        const std::string separator = bound.empty() ? "" : ", ";
        const std::string path = R"({"appPath": ")" + each.entry;
        bound += separator + path + R"(", "hotKey": "control,option,)" + each.letter +
                 R"(", "autoTuck": ")" + (each.isAuto ? "true" : "false") + R"("})";
        placed += separator + path + R"(", "display": ")" + display + R"(", "corner": ")" +
                  each.corner + R"(", "tuckEdge": ")" + each.edge + R"("})";
    }
    if (display.empty()) placed.clear();
    std::ofstream(file) << R"({"AppBindings": [)" << bound << R"(], "Placements": [)" << placed
                        << R"(], "TuckAnimation": "slide", "DidOfferLoginItem": true,)"
                        << R"( "DidFlattenPlacements": true, "DidMigrateLegacySettings": true})"
                        << '\n';
}

/// The identifier of the only display that the program has come to know; empty before.
std::string knownDisplay(Stage& stage) {
    std::ifstream stream(defaultsFile(stage));
    const std::string content{std::istreambuf_iterator<char>(stream), {}};
    const std::regex entry(R"re("KnownDisplays"\s*:\s*\{\s*"([^"]+)")re");
    std::smatch found;
    return std::regex_search(content, found, entry) ? found[1].str() : std::string();
}

}  // namespace

void Contestants::configureProgram(Stage& stage) {
    writeDefaults(stage, {{terminalEntry, "T"}}, "");
}

void Contestants::configureProgram(Stage& stage, const std::vector<Binding>& bindings) const {
    configureProgram(stage);
    stage.activateOther();
    test::ChildProcess process = startProgram(stage);
    // It stores the display on its way up, and ends in order once it is up.
    if (!stage.firstAnswer()) throw std::runtime_error("Quorvel does not answer");
    const std::string display = knownDisplay(stage);
    if (display.empty()) {
        throw std::runtime_error("the program does not store the display that it runs on");
    }
    endProgram(process);
    writeDefaults(stage, bindings, display);
}

test::ChildProcess Contestants::startProgram(Stage& stage) const {
    return stage.session().start({program.string()});
}

void Contestants::endProgram(test::ChildProcess& process) {
    process.signal(SIGTERM);
    if (process.waitForExit() != 0) throw std::runtime_error("the program does not end when asked");
}

test::ChildProcess Contestants::startFloor(Stage& stage) const {
    return stage.session().start(
        {floor.string(), "activate", std::to_string(stage.terminal()), keysymT});
}

test::ChildProcess Contestants::startSlidingFloor(Stage& stage, xcb_window_t window,
                                                  int distance) const {
    return stage.session().start(
        {floor.string(), "slide", std::to_string(window), keysymY, std::to_string(distance)});
}

test::ChildProcess Contestants::startDwellingFloor(Stage& stage, const Rect& area,
                                                   int dwell) const {
    std::vector<std::string> arguments{floor.string(), "dwell", dwellProperty};
    for (const double number : {area.x, area.y, area.width, area.height}) {
        arguments.push_back(text(number, 0));
    }
    arguments.push_back(std::to_string(dwell));
    return stage.session().start(arguments);
}

test::ChildProcess Contestants::startSleepingFloor(Stage& stage) const {
    return stage.session().start({floor.string(), "sleep"});
}

test::ChildProcess Contestants::startSxhkd(Stage& stage) {
    const auto configuration =
        stage.session().folder().write("sxhkdrc", "ctrl + alt + t\n    wmctrl -xa xterm.XTerm\n");
    return stage.session().start({"sxhkd", "-c", configuration.string()},
                                 {{"SXHKD_SHELL", "/bin/sh"}});
}

}  // namespace quorvel::bench
