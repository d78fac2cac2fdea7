#pragma once

#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel::native {

/// Whether all of `rect` is on some display. All rectangles in one space.
bool isWhollyOnDisplays(const Rect& rect, const std::vector<Rect>& displays);

/// Where a window that no display shows must go to stand wholly on the one that it reaches by the
/// shortest way; its own origin when a display shows some of it or there is none. A window larger
/// than that display gets its upper left corner onto it.
Point originOnNearestDisplay(const Rect& window, const std::vector<Rect>& displays);

}  // namespace quorvel::native
