#include "tests/property/Step.hpp"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace quorvel {
namespace {

struct Vocable {
    Deed deed;
    std::string_view name;
    std::size_t count;
    std::array<std::string_view, Step::maximumArguments> arguments;
};

/// Points are in Cocoa space for the cursor and the displays, in AX space for windows.
constexpr std::array vocabulary{
    Vocable{Deed::wait, "wait", 1, {"milliseconds"}},
    Vocable{Deed::stall, "stall", 1, {"milliseconds"}},
    Vocable{Deed::moveCursor, "move-cursor", 2, {"x", "y"}},
    Vocable{Deed::warpCursor, "warp-cursor", 2, {"x", "y"}},
    Vocable{Deed::rest, "rest-in-corner", 2, {"display", "corner"}},
    Vocable{Deed::hover, "hover", 1, {"window"}},
    Vocable{Deed::press, "press-button", 1, {"button"}},
    Vocable{Deed::release, "release-button", 1, {"button"}},
    Vocable{Deed::shortcut, "shortcut", 1, {"application"}},
    Vocable{Deed::open, "open", 5, {"application", "x", "y", "width", "height"}},
    Vocable{Deed::dialog, "dialog", 2, {"window", "modal"}},
    Vocable{Deed::close, "close", 1, {"window"}},
    Vocable{Deed::kill, "kill", 1, {"window"}},
    Vocable{Deed::quit, "quit", 1, {"application"}},
    Vocable{Deed::activate, "activate", 1, {"window"}},
    Vocable{Deed::deactivate, "deactivate", 0, {}},
    Vocable{Deed::iconify, "iconify", 1, {"window"}},
    Vocable{Deed::deiconify, "deiconify", 1, {"window"}},
    Vocable{Deed::maximize, "maximize", 1, {"window"}},
    Vocable{Deed::drag, "drag", 3, {"window", "right", "down"}},
    Vocable{Deed::resize, "resize", 3, {"window", "width", "height"}},
    Vocable{Deed::bind, "bind", 3, {"application", "shortcut", "auto"}},
    Vocable{Deed::unbind, "unbind", 1, {"application"}},
    Vocable{Deed::place, "place", 4, {"application", "display", "corner", "edge"}},
    Vocable{Deed::unplace, "unplace", 2, {"application", "display"}},
    Vocable{Deed::animate, "animate", 1, {"style"}},
    Vocable{Deed::dwell, "dwell", 1, {"milliseconds"}},
    Vocable{Deed::reload, "reload", 0, {}},
    Vocable{Deed::attach, "attach", 5, {"display", "x", "y", "width", "height"}},
    Vocable{Deed::detach, "detach", 1, {"display"}},
    Vocable{Deed::detachAll, "detach-all", 0, {}},
    Vocable{Deed::install, "install", 1, {"application"}},
    Vocable{Deed::uninstall, "uninstall", 1, {"application"}},
    Vocable{Deed::trust, "trust", 1, {"granted"}},
    Vocable{Deed::fault, "fault", 2, {"window", "kind"}},
};

const Vocable& vocable(Deed deed) {
    return *std::find_if(vocabulary.begin(), vocabulary.end(),
                         [&](const Vocable& each) { return each.deed == deed; });
}

}  // namespace

std::span<const std::string_view> Step::argumentNames() const {
    const Vocable& known = vocable(deed);
    return {known.arguments.data(), known.count};
}

std::string Step::text() const {
    std::string result(vocable(deed).name);
    const auto names = argumentNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        result += " " + std::string(names[i]) + "=" + std::to_string(arguments[i]);
    }
    return result;
}

std::optional<Step> Step::parse(std::string_view line) {
    std::istringstream words{std::string(line)};
    std::string word;
    words >> word;
    const auto known = std::find_if(vocabulary.begin(), vocabulary.end(),
                                    [&](const Vocable& each) { return each.name == word; });
    if (known == vocabulary.end()) return std::nullopt;
    Step step{known->deed};
    for (std::size_t i = 0; i < known->count; ++i) {
        const std::string beginning = std::string(known->arguments[i]) + "=";
        if (!(words >> word) || !word.starts_with(beginning)) return std::nullopt;
        const char* const end = word.data() + word.size();
        const auto read = std::from_chars(word.data() + beginning.size(), end, step.arguments[i]);
        if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    }
    if (words >> word) return std::nullopt;
    return step;
}

std::string text(const Script& script) {
    std::string result;
    for (const Step& step : script) result += step.text() + "\n";
    return result;
}

ParsedScript parseScript(const std::string& text) {
    ParsedScript result;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.empty() || line.front() == '#') continue;
        const auto step = Step::parse(line);
        if (!step) return {{}, "this is no step: " + line};
        result.script.push_back(*step);
    }
    return result;
}

}  // namespace quorvel
