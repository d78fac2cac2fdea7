#pragma once

#include <ostream>

#include "main/tucking/TuckEdge.hpp"
#include "platform/Geometry.hpp"

// How values look in the message of a failed expectation.
namespace quorvel {

inline void PrintTo(const Point& point, std::ostream* stream) {
    *stream << "(" << point.x << ", " << point.y << ")";
}

inline void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << "(" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << ")";
}

inline void PrintTo(const TuckEdge& edge, std::ostream* stream) {
    *stream << edge.rawValue();
}

}  // namespace quorvel
