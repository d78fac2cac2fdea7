#pragma once

#include <cstdint>
#include <vector>

namespace quorvel::native {

/// A square picture. Each pixel is 0xAARRGGBB; the colours are not multiplied by alpha.
struct IconImage {
    int size = 0;                       ///< width and height, in pixels
    std::vector<std::uint32_t> pixels;  ///< row by row, the top one first

    bool operator==(const IconImage&) const = default;
};

/// The one of these pictures that looks best at `size`, brought to exactly that size: each pixel is
/// the mean of what it covers. Empty where there is none.
IconImage iconOfSize(const std::vector<IconImage>& icons, int size);

/// The colours multiplied by alpha, as X wants them.
std::vector<std::uint32_t> premultiplied(const IconImage& icon);

/// The character ◍, a circle with a vertical fill, as a picture that shows on light and dark.
IconImage circleWithVerticalFill(int size);

}  // namespace quorvel::native
