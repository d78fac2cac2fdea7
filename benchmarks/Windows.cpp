#include <xcb/xcb.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

#include "benchmarks/Measurements.hpp"
#include "platform/Text.hpp"

namespace quorvel::bench {
namespace {

constexpr int rebuilds = 60;
constexpr int openings = 30;
constexpr double rebuildGoal = 50;
constexpr double openingGoal = 150;

std::string content(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

Row row(const std::string& figure, const Sample& program, const Sample& floor, double share) {
    return {figure,
            std::to_string(program.count()),
            text(program.quantile(share), 2),
            text(floor.quantile(share), 2),
            "",
            text(program.quantile(share) / floor.quantile(share), 2)};
}

void setGoal(Row& row, double median, double goal) {
    row.goal = "≤ " + text(goal, 0) + " ms";
    row.met = median <= goal;
}

/// Whether there is text to be seen near the upper left corner of a window, where both have some:
/// its edges have many shades, and nothing else there has.
bool hasContent(const test::XProbe& probe, xcb_window_t window) {
    constexpr std::uint16_t width = 240;
    constexpr std::uint16_t height = 60;
    constexpr std::size_t shades = 12;
    xcb_connection_t* const x = probe.connection().xcb();
    xcb_generic_error_t* error = nullptr;
    xcb_get_image_reply_t* const image = xcb_get_image_reply(
        x, xcb_get_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, width, height, ~0U), &error);
    std::free(error);
    if (image == nullptr) return false;
    const auto* const bytes = xcb_get_image_data(image);
    std::set<std::uint32_t> colours;
    for (int at = 0; at + 3 < xcb_get_image_data_length(image); at += 4) {
        colours.insert(
            static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16));
    }
    std::free(image);
    return colours.size() >= shades;
}

/// A desktop on which a window opens, over and over.
class Desk {
public:
    Desk() : watching(session.displayName()) {
        watching.select(watching.connection().root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    }

    double millisecondsToSettings(const Contestants& contestants) {
        std::filesystem::remove(log);
        test::ChildProcess resident = session.start({contestants.program.string()});
        if (!test::waitUntil(
                [&] { return content(log).find("Quorvel: ready") != std::string::npos; })) {
            throw std::runtime_error("the program does not say that it is ready");
        }
        // Without programs it opens the window by itself; these have one.
        if (!session.probe().clientList().empty()) {
            throw std::runtime_error("a window is open before it was asked for");
        }
        const double passed =
            millisecondsToContent([&] { return session.start({contestants.program.string()}); });
        Contestants::endProgram(resident);
        waitUntilEmpty();
        return passed;
    }

    double millisecondsToPlain(const Contestants& contestants) {
        const double passed = millisecondsToContent([&] {
            return session.start({contestants.interface.string(), "window", "680", "620"});
        });
        waitUntilEmpty();
        return passed;
    }

    /// Three programs, as most have.
    void configure() const {
        std::filesystem::create_directories(defaults.parent_path());
        std::ofstream(defaults) << R"({"AppBindings": [)"
                                << R"({"appPath": "/usr/share/applications/debian-xterm.desktop",)"
                                << R"( "hotKey": "control,option,T", "autoTuck": "false"},)"
                                << R"({"appPath": "/usr/share/applications/featherpad.desktop",)"
                                << R"( "hotKey": "control,option,F", "autoTuck": "false"},)"
                                << R"({"appPath": "/usr/share/applications/debian-uxterm.desktop",)"
                                << R"( "hotKey": "none", "autoTuck": "false"}],)"
                                << R"( "DidOfferLoginItem": true, "DidFlattenPlacements": true,)"
                                << R"( "DidMigrateLegacySettings": true})";
    }

private:
    /// From the start of the process to a window that shows something.
    template <class Launch>
    double millisecondsToContent(Launch&& launch) {
        watching.settle(std::chrono::milliseconds(50));
        const Instant begun = Clock::now();
        const test::ChildProcess process = launch();
        const Instant deadline = begun + std::chrono::seconds(20);
        while (Clock::now() < deadline) {
            const auto clients = session.probe().clientList();
            if (!clients.empty() && hasContent(session.probe(), clients.back())) {
                return milliseconds(Clock::now() - begun);
            }
            watching.sleepUntil(Clock::now() + std::chrono::microseconds(500));
        }
        throw std::runtime_error("no window opens");
    }

    void waitUntilEmpty() {
        if (!test::waitUntil([&] { return session.probe().clientList().empty(); })) {
            throw std::runtime_error("a window stays");
        }
    }

    test::XSession session;
    Observer watching;
    const std::filesystem::path log = session.folder() / "home/Library/Logs/Quorvel.log";
    const std::filesystem::path defaults =
        session.folder() / "config/com.tessivane.quorvel/defaults.json";
};

std::vector<Row> measureRebuilds(const Contestants& contestants) {
    test::XSession session;
    test::ChildProcess process =
        session.start({contestants.interface.string(), "rebuilds", std::to_string(rebuilds)});
    if (process.waitForExit() != 0) throw std::runtime_error("the rebuilds do not end");
    Sample program;
    Sample floor;
    std::istringstream lines(
        content(session.folder() / (contestants.interface.filename().string() + ".log")));
    for (double ours = 0, plain = 0; lines >> ours >> plain;) {
        program.add(ours);
        floor.add(plain);
    }
    if (program.count() != rebuilds) throw std::runtime_error("the rebuilds print no times");
    const std::string figure = "settings rebuilt, 100 programs, 4 displays, ";
    std::vector<Row> rows{row(figure + "median ms", program, floor, 0.5),
                          row(figure + "p95 ms", program, floor, 0.95)};
    setGoal(rows[0], program.median(), rebuildGoal);
    return rows;
}

std::vector<Row> measureOpenings(const Contestants& contestants) {
    Desk desk;
    desk.configure();
    Sample program;
    Sample floor;
    // The first round fills the page cache and is not counted.
    for (int round = 0; round <= openings; ++round) {
        const double ours = desk.millisecondsToSettings(contestants);
        const double plain = desk.millisecondsToPlain(contestants);
        if (round == 0) continue;
        program.add(ours);
        floor.add(plain);
    }
    const std::string figure = "asked → first settings window, ";
    std::vector<Row> rows{row(figure + "median ms", program, floor, 0.5),
                          row(figure + "p95 ms", program, floor, 0.95)};
    setGoal(rows[0], program.median(), openingGoal);
    return rows;
}

}  // namespace

std::vector<Row> measureWindows(const Contestants& contestants) {
    std::vector<Row> rows = measureRebuilds(contestants);
    const std::vector<Row> more = measureOpenings(contestants);
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

}  // namespace quorvel::bench
