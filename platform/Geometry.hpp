#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quorvel {

/// One point is one pixel of the root window. A name that holds a point or a rectangle ends in
/// `AX` (origin at the top left of the primary display, y down) or `Cocoa` (origin at the bottom
/// left of the primary display, y up); these types themselves belong to neither space.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// A rectangle with a non-negative size. "min" and "max" are the smaller and larger coordinate in
/// whichever space the rectangle lives in.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;

    double minX() const { return x; }
    double minY() const { return y; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    Point origin() const { return {x, y}; }
    Size size() const { return {width, height}; }
    bool isEmpty() const { return width <= 0 || height <= 0; }

    /// True when the two share some area; touching borders do not count.
    bool intersects(const Rect& other) const { return !intersection(other).isEmpty(); }

    /// The shared area; an empty rectangle when there is none.
    Rect intersection(const Rect& other) const {
        const double left = std::max(minX(), other.minX());
        const double bottom = std::max(minY(), other.minY());
        const double right = std::min(maxX(), other.maxX());
        const double top = std::min(maxY(), other.maxY());
        if (right <= left || top <= bottom) return {};
        return {left, bottom, right - left, top - bottom};
    }

    /// The lower bounds belong to the rectangle, the upper ones do not.
    bool contains(Point p) const {
        return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
    }

    /// All four bounds belong to the rectangle.
    bool containsInclusive(Point p) const {
        return p.x >= minX() && p.x <= maxX() && p.y >= minY() && p.y <= maxY();
    }

    /// Grown by `margin` on every side.
    Rect grown(double margin) const {
        return {x - margin, y - margin, width + 2 * margin, height + 2 * margin};
    }
};

/// A coordinate of a display, a window or the cursor, without its fraction.
inline std::int64_t truncated(double coordinate) {
    return static_cast<std::int64_t>(coordinate);
}

/// Whether the display with this Cocoa frame shows the cursor. The topmost pixel row has the
/// Cocoa y of the frame's maximum, so here the lower bound in y is open and the upper one closed.
inline bool cursorIsOn(const Rect& frameCocoa, Point cursorCocoa) {
    return cursorCocoa.x >= frameCocoa.minX() && cursorCocoa.x < frameCocoa.maxX() &&
           cursorCocoa.y > frameCocoa.minY() && cursorCocoa.y <= frameCocoa.maxY();
}

/// Turns a rectangle of one space into the other; the same formula serves both directions.
inline Rect flipped(const Rect& rect, double primaryScreenMaxY) {
    return {rect.x, primaryScreenMaxY - rect.maxY(), rect.width, rect.height};
}

}  // namespace quorvel
