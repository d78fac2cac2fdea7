#include "main/settings/HotZoneCorner.hpp"

#include "platform/Text.hpp"

namespace quorvel {
namespace {

struct Row {
    HotZoneCorner corner;
    std::string_view raw;
    std::string_view label;
};

constexpr std::array<Row, 4> rows{{{HotZoneCorner::bottomLeft, "bottomLeft", "Bottom left"},
                                   {HotZoneCorner::bottomRight, "bottomRight", "Bottom right"},
                                   {HotZoneCorner::topLeft, "topLeft", "Top left"},
                                   {HotZoneCorner::topRight, "topRight", "Top right"}}};

const Row& rowOf(HotZoneCorner corner) {
    return rows[static_cast<std::size_t>(corner)];
}

}  // namespace

std::string_view rawValue(HotZoneCorner corner) {
    return rowOf(corner).raw;
}

std::string_view label(HotZoneCorner corner) {
    return rowOf(corner).label;
}

std::optional<HotZoneCorner> hotZoneCornerFromRawValue(std::string_view raw) {
    for (const Row& row : rows) {
        if (row.raw == raw) return row.corner;
    }
    return std::nullopt;
}

std::optional<HotZoneCorner> parseHotZoneCorner(std::string_view text) {
    const std::string letters = lettersOnly(text);
    for (const Row& row : rows) {
        if (lettersOnly(row.raw) == letters) return row.corner;
    }
    return std::nullopt;
}

}  // namespace quorvel
