#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace quorvel {

/// A corner of a display. The order is used for sorting.
enum class HotZoneCorner { bottomLeft, bottomRight, topLeft, topRight };

inline constexpr std::array<HotZoneCorner, 4> allHotZoneCorners{
    HotZoneCorner::bottomLeft, HotZoneCorner::bottomRight, HotZoneCorner::topLeft,
    HotZoneCorner::topRight};

/// "bottomLeft" …: what is stored.
std::string_view rawValue(HotZoneCorner corner);
/// "Bottom left" …: what the user sees.
std::string_view label(HotZoneCorner corner);

/// Exact stored text only.
std::optional<HotZoneCorner> hotZoneCornerFromRawValue(std::string_view raw);
/// Tolerant: only the letters count, in any case ("Top Left", "TOP_LEFT", "top left 2").
std::optional<HotZoneCorner> parseHotZoneCorner(std::string_view text);

}  // namespace quorvel
