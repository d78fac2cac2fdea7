#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/Screens.hpp"

namespace quorvel {

/// What a display is called in the settings: "builtin", whatever panel that is, or an identifier
/// that survives re-plugging and reboots. Compared exactly.
struct DisplayRef {
    std::string raw;

    bool operator==(const DisplayRef&) const = default;

    /// Trimmed; any capitalisation of "builtin" becomes that form. Nothing for an empty text.
    static std::optional<DisplayRef> parse(std::string_view text);
};

/// One attached display at the moment of the snapshot.
struct DisplayInfo {
    DisplayRef ref;  ///< its identifier, never the alias
    std::string name;
    Rect frameCocoa;
    bool isBuiltin = false;

    bool operator==(const DisplayInfo&) const = default;
};

namespace Displays {

/// A fresh snapshot in the order of the screens; screens without a number or an identifier are
/// left out.
std::vector<DisplayInfo> attached(const Screens& screens);

/// The first built-in display for "builtin", else the first with exactly this identifier.
std::optional<DisplayInfo> resolve(const DisplayRef& ref, const std::vector<DisplayInfo>& in);

}  // namespace Displays
}  // namespace quorvel
