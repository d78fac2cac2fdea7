#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "main/settings/Settings.hpp"

/// What is taken over, once, from the preferences of the two programs that came before this one.
namespace quorvel::Migration {

/// In the order in which they are tried.
inline constexpr std::array<std::string_view, 2> earlierDomains{"com.tessivane.pellomarch",
                                                                "com.tessivane.vintrosk"};

/// All that is ever taken over, in this order.
inline constexpr std::array keys{Keys::targetAppPath, Keys::hotKey,      Keys::hotZone,
                                 Keys::tuckEdge,      Keys::tuckAuto,    Keys::hotZoneDwellMs,
                                 Keys::tuckAnimation, Keys::appBindings, Keys::placements,
                                 Keys::knownDisplays};

/// An earlier program's domain as it is found.
struct Source {
    std::string domain;
    std::vector<std::string> keysPresent;  ///< in any order

    bool operator==(const Source&) const = default;
};

struct Plan {
    std::optional<std::string> source;  ///< the domain to copy from; absent to copy nothing
    std::vector<std::string> keys;      ///< in the order of the migration keys
    bool setMarker = false;

    bool operator==(const Plan&) const = default;
};

/// The first source that has anything to offer is copied, unless it was done before or this program
/// has settings of its own.
Plan plan(bool markerSet, bool newDomainOccupied, const std::vector<Source>& sources);

}  // namespace quorvel::Migration
