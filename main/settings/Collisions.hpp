#pragma once

#include <string>

namespace quorvel {

/// A corner of an attached display that brings up an application.
struct ArmedCorner {
    std::string appPath;
    std::string corner;   ///< the raw value of a `HotZoneCorner`
    std::string display;  ///< the identifier of the attached display

    bool operator==(const ArmedCorner&) const = default;
};

/// Where an application is tucked on the one display that the list of claims is about.
struct EdgeClaim {
    std::string appPath;
    std::string tuckEdge;  ///< as stored, or "none"

    bool operator==(const EdgeClaim&) const = default;
};

}  // namespace quorvel
