#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "main/settings/Displays.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "platform/Value.hpp"

namespace quorvel {

/// Where an application lives on one display.
struct Placement {
    std::string appPath;  ///< that of an `AppBinding`
    std::string display;  ///< as stored: "builtin" or a display's identifier
    std::string corner = "none";
    std::string tuckEdge = "none";

    bool operator==(const Placement&) const = default;

    /// As `AppBinding::decode`; records without a path or a display are skipped.
    static std::vector<Placement> decode(const std::optional<Value>& value);
    static Value encode(const std::vector<Placement>& list);

    /// Whether the stored display text means this display.
    bool isOn(const DisplayInfo& shown) const;

    /// The first placement of exactly this application on this display.
    static std::optional<Placement> matching(std::string_view appPath, const DisplayInfo& on,
                                             const std::vector<Placement>& placements);

    /// Without those whose display text is exactly `display`.
    static std::vector<Placement> forgetting(const std::vector<Placement>& placements,
                                             std::string_view display);

    /// Without those of the removed application, unless it is still configured.
    static std::vector<Placement> pruning(const std::vector<Placement>& placements,
                                          std::string_view removedAppPath,
                                          const std::vector<std::string>& stillConfigured);
};

/// A side of a display that a window can be tucked to.
enum class Side { left, right, bottom };

/// One position that the picture of a display offers.
struct Slot {
    struct BottomHide {
        bool operator==(const BottomHide&) const = default;
    };

    std::variant<HotZoneCorner, Side, BottomHide> position;

    bool operator==(const Slot&) const = default;

    static Slot corner(HotZoneCorner corner) { return {corner}; }
    static Slot side(Side side) { return {side}; }
    static Slot bottomHide() { return {BottomHide{}}; }
};

}  // namespace quorvel

template <>
struct std::hash<quorvel::Slot> {
    std::size_t operator()(const quorvel::Slot& slot) const noexcept;
};
