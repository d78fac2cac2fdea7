#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel {

/// The edge or corner of a display that a window is tucked to. There is deliberately no top.
/// A plain value: a case with the geometry of tucking.
class TuckEdge {
public:
    enum Case { left, right, bottom, topLeft, bottomLeft, topRight, bottomRight };
    enum class Side { left, right, bottom };

    /// What stays visible of a tucked window, in points.
    static constexpr double sliver = 2;
    /// The least thickness of the strip that reveals it, in points.
    static constexpr double minimumStripThickness = 6;

    constexpr TuckEdge(Case edge) : edge(edge) {}
    constexpr operator Case() const { return edge; }

    static const std::array<TuckEdge, 7> allCases;

    /// Exactly the stored spelling ("top-left").
    static std::optional<TuckEdge> fromRawValue(std::string_view raw);
    /// Tolerant: only the letters count, in any case.
    static std::optional<TuckEdge> parse(std::string_view text);

    std::string_view rawValue() const;
    Side side() const;
    bool isCorner() const { return edge > bottom; }

    /// Where the window stands when all but the sliver is off the display. All in AX space.
    Point tuckedOrigin(const Rect& windowAX, const Rect& screenAX) const;
    /// Where it stands flush inside the same edge. All in AX space.
    Point revealedOrigin(const Rect& windowAX, const Rect& screenAX) const;
    /// The thin rectangle that the cursor must enter to reveal it. All in Cocoa space.
    Rect revealStripCocoa(const Rect& tuckedFrameCocoa, const Rect& screenCocoa) const;

private:
    Case edge;
};

/// Whether this edge of the display borders another one, where the sliver would land. For a corner
/// only that half of the side counts. All in Cocoa space.
bool tuckEdgeIsShared(TuckEdge edge, const Rect& screenCocoa,
                      const std::vector<Rect>& allScreensCocoa);

}  // namespace quorvel

template <>
struct std::hash<quorvel::TuckEdge> {
    std::size_t operator()(quorvel::TuckEdge edge) const noexcept {
        return std::hash<quorvel::TuckEdge::Case>{}(edge);
    }
};
