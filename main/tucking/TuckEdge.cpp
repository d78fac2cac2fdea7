#include "main/tucking/TuckEdge.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

/// In the order of the cases.
constexpr std::array<std::string_view, 7> rawValues{
    "left", "right", "bottom", "top-left", "bottom-left", "top-right", "bottom-right"};

/// Two displays whose borders are this close touch: layouts are not always exact.
constexpr double touchingTolerance = 1;

bool isTop(TuckEdge edge) {
    return edge == TuckEdge::topLeft || edge == TuckEdge::topRight;
}

/// The part of the display that counts for this edge: of a corner, its upper or lower half.
Rect bandCocoa(TuckEdge edge, const Rect& screenCocoa) {
    if (!edge.isCorner()) return screenCocoa;
    const double half = screenCocoa.height * 0.5;
    const double y = isTop(edge) ? screenCocoa.minY() + half : screenCocoa.minY();
    return {screenCocoa.minX(), y, screenCocoa.width, half};
}

/// A corner pins the window to the top or the bottom; a whole side leaves its height as it is.
double verticalOriginAX(TuckEdge edge, const Rect& windowAX, const Rect& screenAX) {
    if (!edge.isCorner()) return windowAX.minY();
    return isTop(edge) ? screenAX.minY() : screenAX.maxY() - windowAX.height;
}

}  // namespace

constinit const std::array<TuckEdge, 7> TuckEdge::allCases{
    left, right, bottom, topLeft, bottomLeft, topRight, bottomRight};

std::optional<TuckEdge> TuckEdge::fromRawValue(std::string_view raw) {
    for (const TuckEdge candidate : allCases) {
        if (candidate.rawValue() == raw) return candidate;
    }
    return std::nullopt;
}

std::optional<TuckEdge> TuckEdge::parse(std::string_view text) {
    const std::string letters = lettersOnly(text);
    for (const TuckEdge candidate : allCases) {
        if (lettersOnly(candidate.rawValue()) == letters) return candidate;
    }
    return std::nullopt;
}

std::string_view TuckEdge::rawValue() const {
    return rawValues[edge];
}

TuckEdge::Side TuckEdge::side() const {
    switch (edge) {
        case left:
        case topLeft:
        case bottomLeft:
            return Side::left;
        case right:
        case topRight:
        case bottomRight:
            return Side::right;
        case bottom:
            break;
    }
    return Side::bottom;
}

Point TuckEdge::tuckedOrigin(const Rect& windowAX, const Rect& screenAX) const {
    const double y = verticalOriginAX(edge, windowAX, screenAX);
    switch (side()) {
        case Side::left:
            return {screenAX.minX() - windowAX.width + sliver, y};
        case Side::right:
            return {screenAX.maxX() - sliver, y};
        case Side::bottom:
            break;
    }
    return {windowAX.minX(), screenAX.maxY() - sliver};
}

Point TuckEdge::revealedOrigin(const Rect& windowAX, const Rect& screenAX) const {
    const double y = verticalOriginAX(edge, windowAX, screenAX);
    switch (side()) {
        case Side::left:
            return {screenAX.minX(), y};
        case Side::right:
            return {screenAX.maxX() - windowAX.width, y};
        case Side::bottom:
            break;
    }
    return {windowAX.minX(), screenAX.maxY() - windowAX.height};
}

Rect TuckEdge::revealStripCocoa(const Rect& tuckedFrameCocoa, const Rect& screenCocoa) const {
    const Rect visible = tuckedFrameCocoa.intersection(screenCocoa);
    const Rect& extent = visible.isEmpty() ? tuckedFrameCocoa : visible;
    if (side() == Side::bottom) {
        return {extent.x, screenCocoa.minY(), extent.width,
                std::max(visible.height, minimumStripThickness)};
    }

    const double width = std::max(visible.width, minimumStripThickness);
    const double x = side() == Side::left ? screenCocoa.minX() : screenCocoa.maxX() - width;
    const Rect strip{x, extent.y, width, extent.height};
    if (!isCorner()) return strip;

    const Rect band = bandCocoa(edge, screenCocoa);
    const Rect clipped = strip.intersection(band);
    if (!clipped.isEmpty()) return clipped;
    return {x, band.y, width, band.height};
}

bool tuckEdgeIsShared(TuckEdge edge, const Rect& screenCocoa,
                      const std::vector<Rect>& allScreensCocoa) {
    const Rect band = bandCocoa(edge, screenCocoa);
    const auto touches = [](double border, double other) {
        return std::abs(border - other) <= touchingTolerance;
    };
    return std::any_of(allScreensCocoa.begin(), allScreensCocoa.end(), [&](const Rect& other) {
        if (other == screenCocoa) return false;
        const bool overlapsVertically = other.minY() < band.maxY() && band.minY() < other.maxY();
        const bool overlapsHorizontally = other.minX() < band.maxX() && band.minX() < other.maxX();
        switch (edge.side()) {
            case TuckEdge::Side::left:
                return touches(other.maxX(), screenCocoa.minX()) && overlapsVertically;
            case TuckEdge::Side::right:
                return touches(other.minX(), screenCocoa.maxX()) && overlapsVertically;
            case TuckEdge::Side::bottom:
                break;
        }
        return touches(other.maxY(), screenCocoa.minY()) && overlapsHorizontally;
    });
}

}  // namespace quorvel
