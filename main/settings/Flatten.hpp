#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Displays.hpp"
#include "main/settings/Placement.hpp"
#include "main/settings/Settings.hpp"
#include "platform/Value.hpp"

namespace quorvel {

/// An application as earlier versions stored it: one corner and one edge for all displays.
struct OldBinding {
    std::string appPath;
    std::string hotKey = "none";
    std::string corner = "none";
    std::string tuckEdge = "none";
    std::string autoTuck = "false";

    bool operator==(const OldBinding&) const = default;
};

/// The settings of earlier versions in today's shape: what stood for every display is placed on
/// each of those attached now.
namespace Flatten {

/// Those of the versions that knew a single application. They are always removed.
inline constexpr std::array retiredKeys{Keys::targetAppPath, Keys::hotKey, Keys::hotZone,
                                        Keys::tuckEdge, Keys::tuckAuto};

/// What earlier versions left behind.
struct Stored {
    std::optional<std::string> targetPath;
    std::optional<std::string> hotKey;
    std::optional<std::string> hotZone;
    std::optional<std::string> tuckEdge;
    std::optional<std::string> tuckAuto;
    std::optional<Value> rawBindings;

    bool operator==(const Stored&) const = default;
};

struct Plan {
    std::vector<AppBinding> bindings;
    std::vector<Placement> placements;  ///< those stored before, then the new ones
    std::vector<std::string> retiredKeys;
    bool setMarker = false;

    bool operator==(const Plan&) const = default;
};

/// As `AppBinding::decode`.
std::vector<OldBinding> decodeOld(const std::optional<Value>& value);

/// Empty when the marker is set. Of a path with a tilde only the own home folder's is expanded.
Plan plan(bool markerSet, const Stored& stored, const std::vector<Placement>& placements,
          const std::vector<DisplayInfo>& attached, std::string_view homeDirectory);

}  // namespace Flatten
}  // namespace quorvel
