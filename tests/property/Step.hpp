#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// What the user, the other programs and the machine can do.
enum class Deed {
    wait,
    stall,
    moveCursor,
    warpCursor,
    rest,
    hover,
    press,
    release,
    shortcut,
    open,
    dialog,
    close,
    kill,
    quit,
    activate,
    deactivate,
    iconify,
    deiconify,
    maximize,
    drag,
    resize,
    bind,
    unbind,
    place,
    unplace,
    animate,
    dwell,
    reload,
    attach,
    detach,
    detachAll,
    install,
    uninstall,
    trust,
    fault,
};

/// One thing that happens to the program. A plain value with a text form ("open application=0 x=100
/// y=80 width=600 height=400") that reads back to an equal one. Every step can be taken at any
/// time: what it names is counted round, and where there is nothing of the kind nothing happens, so
/// a script stays one whatever is left out of it.
struct Step {
    static constexpr std::size_t maximumArguments = 5;

    Deed deed = Deed::wait;
    std::array<int, maximumArguments> arguments{};  ///< those beyond the deed's own are 0

    bool operator==(const Step&) const = default;

    /// The names of the deed's arguments.
    std::span<const std::string_view> argumentNames() const;
    std::string text() const;
    static std::optional<Step> parse(std::string_view line);
};

using Script = std::vector<Step>;

std::string text(const Script& script);

struct ParsedScript {
    Script script;
    std::string error;  ///< empty when all lines could be read
};
/// Blank lines and those that begin with '#' are skipped.
ParsedScript parseScript(const std::string& text);

}  // namespace quorvel
