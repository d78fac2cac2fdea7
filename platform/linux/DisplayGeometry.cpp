#include "platform/linux/DisplayGeometry.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorvel::native {
namespace {

Point originWithin(const Rect& display, const Rect& window) {
    return {std::max(display.minX(), std::min(window.x, display.maxX() - window.width)),
            std::max(display.minY(), std::min(window.y, display.maxY() - window.height))};
}

}  // namespace

bool isWhollyOnDisplays(const Rect& rect, const std::vector<Rect>& displays) {
    // What is left after each display has been cut out; displays may overlap.
    std::vector<Rect> rest{rect};
    for (const Rect& display : displays) {
        std::vector<Rect> next;
        for (const Rect& piece : rest) {
            const Rect shared = piece.intersection(display);
            if (shared.isEmpty()) {
                next.push_back(piece);
                continue;
            }
            const Rect around[]{
                {piece.x, piece.y, piece.width, shared.y - piece.y},
                {piece.x, shared.maxY(), piece.width, piece.maxY() - shared.maxY()},
                {piece.x, shared.y, shared.x - piece.x, shared.height},
                {shared.maxX(), shared.y, piece.maxX() - shared.maxX(), shared.height}};
            for (const Rect& part : around) {
                if (!part.isEmpty()) next.push_back(part);
            }
        }
        rest = std::move(next);
    }
    return rest.empty();
}

Point originOnNearestDisplay(const Rect& window, const std::vector<Rect>& displays) {
    Point nearest = window.origin();
    double shortest = std::numeric_limits<double>::infinity();
    for (const Rect& display : displays) {
        if (display.intersects(window)) return window.origin();
        const Point origin = originWithin(display, window);
        const double distance = std::hypot(origin.x - window.x, origin.y - window.y);
        if (distance < shortest) {
            shortest = distance;
            nearest = origin;
        }
    }
    return nearest;
}

}  // namespace quorvel::native
