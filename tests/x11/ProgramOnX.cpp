#include "tests/x11/ProgramOnX.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/X11Screens.hpp"
#include "platform/linux/XConnection.hpp"
#include "tests/support/Printers.hpp"

namespace quorvel::test {
namespace {

constexpr uid_t nobody = 65534;

std::string jsonText(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        if (c == '\n') {
            result += "\\n";
        } else {
            result += c;
        }
    }
    return result + "\"";
}

}  // namespace

ProgramOnX::ProgramOnX(XSessionOptions options) : session(options) {}

std::filesystem::path ProgramOnX::defaultPath() {
    return QUORVEL_PROGRAM;
}

std::string ProgramOnX::contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> ProgramOnX::displayIdentifiers() const {
    std::string reason;
    const auto x = native::XConnection::open(session.displayName(), reason);
    if (!x) throw std::runtime_error(reason);
    native::GlibRunLoop loop;
    std::vector<std::string> identifiers;
    for (const Screen& screen : native::X11Screens(*x, loop).screens()) {
        identifiers.push_back(screen.uuid.value());
    }
    return identifiers;
}

void ProgramOnX::bind(const std::vector<Binding>& bindings, std::string_view animation) {
    const std::vector<std::string> displays = displayIdentifiers();
    std::set<std::string> paths;
    std::string bound;
    std::string placed;
    for (const Binding& binding : bindings) {
        if (paths.insert(binding.appPath).second) {
            bound += (bound.empty() ? "" : ", ") + ("{\"appPath\": " + jsonText(binding.appPath)) +
                     ", \"hotKey\": " + jsonText(binding.hotKey) +
                     ", \"autoTuck\": " + jsonText(binding.autoTuck) + "}";
        }
        placed += (placed.empty() ? "" : ", ") + ("{\"appPath\": " + jsonText(binding.appPath)) +
                  ", \"display\": " + jsonText(displays.at(binding.display)) +
                  ", \"corner\": " + jsonText(binding.corner) +
                  ", \"tuckEdge\": " + jsonText(binding.edge) + "}";
    }
    writeSettings("{\"AppBindings\": [" + bound + "],\n\"Placements\": [" + placed +
                  "],\n\"TuckAnimation\": " + jsonText(animation) +
                  ",\n\"DidFlattenPlacements\": true, \"DidMigrateLegacySettings\": true, "
                  "\"DidOfferLoginItem\": true}\n");
}

void ProgramOnX::writeSettings(std::string_view text) {
    std::filesystem::create_directories(settingsFolder);
    std::ofstream(settingsFile, std::ios::binary | std::ios::trunc) << text;
}

void ProgramOnX::launch(const Launch& launch) {
    Environment all = session.environment();
    for (const auto& [name, value] : launch.environment) all[name] = value;
    for (const std::string& name : launch.without) all.erase(name);
    std::vector<std::string> arguments = launch.prefix;
    arguments.push_back(launch.executable);
    arguments.insert(arguments.end(), launch.arguments.begin(), launch.arguments.end());
    process.reset();
    process.emplace(Command{arguments, all, session.folder() / "Quorvel.output", {}});
}

void ProgramOnX::start(const Launch& options) {
    const auto starts = [this] {
        const auto lines = logLines();
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.starts_with("Quorvel: accessibility ");
        });
    };
    const auto before = starts();
    launch(options);
    waitUntil([&] { return starts() > before || !isRunning(); });
    if (starts() == before) throw std::runtime_error("the program does not get ready");
}

std::vector<std::string> ProgramOnX::asOrdinaryUser() {
    if (geteuid() != 0) return {};
    const std::string id = std::to_string(nobody);
    return {"setpriv", "--reuid", id, "--regid", id, "--clear-groups", "--"};
}

std::vector<std::string> ProgramOnX::boundByPermissions() {
    if (geteuid() != 0) return {};
    return {"setpriv", "--bounding-set=-dac_override", "--"};
}

void ProgramOnX::handOver() const {
    using std::filesystem::perms;
    const std::filesystem::path root = session.folder().path();
    std::filesystem::permissions(root, perms::owner_all | perms::group_exec | perms::group_read |
                                           perms::others_read | perms::others_exec);
    if (geteuid() != 0) return;
    for (const auto& each : std::filesystem::recursive_directory_iterator(root)) {
        if (each.is_symlink()) continue;
        if (chown(each.path().c_str(), nobody, nobody) != 0) {
            throw std::system_error(errno, std::generic_category(), each.path());
        }
    }
}

void ProgramOnX::press(const std::string& shortcut) {
    static const std::map<std::string, std::string> keys{
        {"control", "Control"}, {"option", "Alt"}, {"shift", "Shift"}, {"command", "Super"}};
    std::vector<std::string> modifiers;
    std::istringstream parts(shortcut);
    for (std::string part; std::getline(parts, part, ',');) {
        const auto key = keys.find(part);
        modifiers.push_back(key == keys.end() ? part : key->second);
    }
    const std::string last = modifiers.back();
    modifiers.pop_back();
    session.input().chord(modifiers, last);
}

int ProgramOnX::waitForExit() {
    const auto status = process->waitForExit();
    return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1;
}

int ProgramOnX::terminate() {
    sendTerminate();
    return waitForExit();
}

std::vector<std::string> ProgramOnX::logLines() const {
    std::vector<std::string> lines;
    std::istringstream stream(contentOf(logFile));
    for (std::string line; std::getline(stream, line);) {
        const std::size_t prefix = line.find(" Quorvel[");
        const std::size_t end = prefix == std::string::npos ? prefix : line.find("] ", prefix);
        lines.push_back(end == std::string::npos ? line : line.substr(end + 2));
    }
    return lines;
}

std::vector<std::string> ProgramOnX::linesSinceReady() const {
    std::vector<std::string> lines = logLines();
    const auto ready = std::find_if(lines.rbegin(), lines.rend(), [](const std::string& line) {
        return line.starts_with("Quorvel: accessibility ");
    });
    lines.erase(lines.begin(), ready.base());
    return lines;
}

bool ProgramOnX::waitForLine(const std::string& message) const {
    return waitUntil([&] {
        const auto lines = logLines();
        return std::find(lines.begin(), lines.end(), message) != lines.end();
    });
}

testing::AssertionResult ProgramOnX::waitForFrame(xcb_window_t window, const Rect& frame) const {
    if (waitUntil([&] { return seen(window) == frame; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it is at " << testing::PrintToString(seen(window))
                                       << " instead of " << testing::PrintToString(frame);
}

testing::AssertionResult ProgramOnX::staysAt(xcb_window_t window, const Rect& frame) const {
    const auto isThere = [&] { return seen(window) == frame && probe().isViewable(window); };
    if (neverWithin(300ms, [&] { return !isThere(); })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it is at " << testing::PrintToString(seen(window))
                                       << " instead of " << testing::PrintToString(frame);
}

bool ProgramOnX::waitUntilActive(xcb_window_t window) const {
    return waitUntil(
        [&] { return probe().activeWindow() == window && probe().isViewable(window); });
}

Rect ProgramOnX::settledFrame(xcb_window_t window) const {
    Rect last = seen(window);
    while (!neverWithin(250ms, [&] { return seen(window) != last; })) last = seen(window);
    return last;
}

Rect ProgramOnX::atLeftEdge(const Rect& frame) {
    return {2 - frame.width, frame.y, frame.width, frame.height};
}

xcb_window_t ProgramOnX::waitForWindow(const std::string& windowClass) const {
    xcb_window_t window = XCB_WINDOW_NONE;
    waitUntil([&] {
        window = probe().windowOfClass(windowClass);
        return window != XCB_WINDOW_NONE;
    });
    if (window == XCB_WINDOW_NONE) throw std::runtime_error("no window of " + windowClass);
    session.waitUntilShown(window);
    if (!waitUntilActive(window)) throw std::runtime_error(windowClass + " is not in front");
    return window;
}

std::string ProgramOnX::titleOf(xcb_window_t window) const {
    return probe().connection().propertyText(window, "_NET_WM_NAME");
}

bool ProgramOnX::waitUntilGone(xcb_window_t window) const {
    return waitUntil([&] { return !probe().exists(window) || !probe().isManaged(window); });
}

xcb_window_t ProgramWithNotes::startWithWindow(const std::string& edge,
                                               std::string_view animation) {
    bind({{path, shortcut, edge}}, animation);
    start();
    press(shortcut);
    const xcb_window_t window = notes.waitForWindow();
    if (!waitUntilActive(window)) throw std::runtime_error("the application is not in front");
    return window;
}

}  // namespace quorvel::test
