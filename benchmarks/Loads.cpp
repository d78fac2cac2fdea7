#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"

namespace quorvel::bench {
namespace {

constexpr int starts = 30;
constexpr int programs = 100;
constexpr std::size_t displays = 3;

/// A desktop with three displays, and the program's files on it.
class Desk {
public:
    Desk() : session({.server = test::XServerKind::hotPlug}) {
        session.server().plug("DUMMY1", 1280, 0);
        session.server().plug("DUMMY2", 2560, 0);
    }

    /// From the start of the process to the line that says it is ready; ends it then.
    double millisecondsToReady(const Contestants& contestants) {
        std::filesystem::remove(log);
        const Instant launched = Clock::now();
        test::ChildProcess process = session.start({contestants.program.string()});
        const bool isReady = test::waitUntil(
            [&] { return content(log).find("Quorvel: ready") != std::string::npos; });
        const double passed = milliseconds(Clock::now() - launched);
        Contestants::endProgram(process);
        if (!isReady) throw std::runtime_error("the program does not say that it is ready");
        return passed;
    }

    void configure(int bindings) const {
        std::string bound;
        std::string placed;
        const auto identifiers = knownDisplays();
        for (int i = 0; i < bindings; ++i) {
            const std::string entry =
                R"({"appPath": "/opt/programs/)" + std::to_string(i) + R"(.desktop")";
            bound += (i == 0 ? "" : ", ") + entry + R"(, "hotKey": ")" + shortcut(i) +
                     R"(", "autoTuck": "false"})";
            // As people do: the corners taken once, the edges shared.
            constexpr const char* corners[] = {"topLeft", "topRight", "bottomLeft", "bottomRight"};
            constexpr const char* edges[] = {"left", "right", "bottom"};
            for (const std::string& display : identifiers) {
                placed += (placed.empty() ? "" : ", ") + entry + R"(, "display": ")" + display +
                          R"(", "corner": ")" + (i < 4 ? corners[i] : "none") +
                          R"(", "tuckEdge": ")" + edges[i % 3] + R"("})";
            }
        }
        std::filesystem::create_directories(defaults.parent_path());
        std::ofstream(defaults) << R"({"AppBindings": [)" << bound << R"(], "Placements": [)"
                                << placed << R"(], "KnownDisplays": {)" << names(identifiers)
                                << R"(}, "DidOfferLoginItem": true, "DidFlattenPlacements": true,)"
                                << R"( "DidMigrateLegacySettings": true})";
    }

    std::vector<std::string> knownDisplays() const {
        const std::string text = content(defaults);
        const std::regex entry(R"re("([0-9A-F-]{36})"\s*:)re");
        std::vector<std::string> found;
        for (std::sregex_iterator i(text.begin(), text.end(), entry), end; i != end; ++i) {
            found.push_back((*i)[1]);
        }
        return found;
    }

private:
    static std::string content(const std::filesystem::path& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    static std::string names(const std::vector<std::string>& identifiers) {
        std::string result;
        for (const std::string& identifier : identifiers) {
            result += (result.empty() ? "\"" : ", \"") + identifier + R"(": "Display")";
        }
        return result;
    }

    /// A letter, with other modifiers for each time through the alphabet.
    static std::string shortcut(int index) {
        constexpr const char* modifiers[] = {"control,option", "control,command", "option,command",
                                             "control,option,command"};
        return std::string(modifiers[index / 26]) + ',' + static_cast<char>('A' + index % 26);
    }

    test::XSession session;
    const std::filesystem::path log = session.folder() / "home/Library/Logs/Quorvel.log";
    const std::filesystem::path defaults =
        session.folder() / "config/com.tessivane.quorvel/defaults.json";
};

}  // namespace

std::vector<Row> measureLoads(const Contestants& contestants) {
    Desk desk;
    // It stores the displays on its way up.
    desk.configure(0);
    desk.millisecondsToReady(contestants);
    if (desk.knownDisplays().size() != displays) {
        throw std::runtime_error("the program does not store the displays that it runs on");
    }
    Sample none;
    Sample many;
    for (int round = 0; round <= starts; ++round) {
        desk.configure(0);
        const double without = desk.millisecondsToReady(contestants);
        desk.configure(programs);
        const double with = desk.millisecondsToReady(contestants);
        if (round == 0) continue;
        none.add(without);
        many.add(with);
    }
    const auto row = [&](const std::string& figure, double share) {
        return Row{figure,
                   std::to_string(starts),
                   text(many.quantile(share), 2) + " with 100",
                   text(none.quantile(share), 2) + " with none",
                   "",
                   text(many.quantile(share) / none.quantile(share), 2)};
    };
    return {row("start → ready, 3 displays, 100 bindings, median ms", 0.5),
            row("start → ready, 3 displays, 100 bindings, p95 ms", 0.95)};
}

}  // namespace quorvel::bench
