#include "platform/linux/status/IconImage.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvel::native {
namespace {

using Channels = std::array<double, 4>;  // alpha first; the others multiplied by it

Channels channelsOf(std::uint32_t pixel) {
    const double alpha = static_cast<double>(pixel >> 24) / 255;
    return {alpha, alpha * static_cast<double>(pixel >> 16 & 0xFF),
            alpha * static_cast<double>(pixel >> 8 & 0xFF),
            alpha * static_cast<double>(pixel & 0xFF)};
}

std::uint32_t pixelOf(const Channels& mean) {
    const double alpha = mean[0];
    if (alpha <= 0) return 0;
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0)));
    };
    return byte(alpha * 255) << 24 | byte(mean[1] / alpha) << 16 | byte(mean[2] / alpha) << 8 |
           byte(mean[3] / alpha);
}

/// What the pixels first, first + 1, … contribute to one that covers [from, to).
struct Span {
    int first = 0;
    std::vector<double> weights;
};

Span spanOf(int index, int size, int sourceSize) {
    const double scale = static_cast<double>(sourceSize) / size;
    const double from = index * scale;
    const double to = from + scale;
    Span span{static_cast<int>(from), {}};
    for (int i = span.first; i < sourceSize && i < to; ++i) {
        span.weights.push_back((std::min<double>(to, i + 1) - std::max<double>(from, i)) / scale);
    }
    return span;
}

IconImage scaled(const IconImage& icon, int size) {
    std::vector<Span> spans;
    for (int i = 0; i < size; ++i) spans.push_back(spanOf(i, size, icon.size));

    IconImage result{size, {}};
    result.pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    for (const Span& rows : spans) {
        for (const Span& columns : spans) {
            Channels mean{};
            for (std::size_t y = 0; y < rows.weights.size(); ++y) {
                const std::size_t row = (static_cast<std::size_t>(rows.first) + y) *
                                        static_cast<std::size_t>(icon.size);
                for (std::size_t x = 0; x < columns.weights.size(); ++x) {
                    const double weight = rows.weights[y] * columns.weights[x];
                    const Channels part =
                        channelsOf(icon.pixels[row + static_cast<std::size_t>(columns.first) + x]);
                    for (std::size_t i = 0; i < mean.size(); ++i) mean[i] += weight * part[i];
                }
            }
            result.pixels.push_back(pixelOf(mean));
        }
    }
    return result;
}

}  // namespace

IconImage iconOfSize(const std::vector<IconImage>& icons, int size) {
    if (icons.empty() || size <= 0) return {};
    // Made smaller a picture stays sharp, made larger it does not.
    const IconImage* best = nullptr;
    for (const IconImage& icon : icons) {
        const bool isBetter =
            best == nullptr || (best->size < size ? icon.size > best->size
                                                  : icon.size >= size && icon.size < best->size);
        if (isBetter) best = &icon;
    }
    return best->size == size ? *best : scaled(*best, size);
}

std::vector<std::uint32_t> premultiplied(const IconImage& icon) {
    std::vector<std::uint32_t> result;
    result.reserve(icon.pixels.size());
    for (const std::uint32_t pixel : icon.pixels) {
        const std::uint32_t alpha = pixel >> 24;
        const auto times = [&](std::uint32_t value) {
            return ((value & 0xFF) * alpha + 127) / 255;
        };
        result.push_back(alpha << 24 | times(pixel >> 16) << 16 | times(pixel >> 8) << 8 |
                         times(pixel));
    }
    return result;
}

IconImage circleWithVerticalFill(int size) {
    constexpr std::uint32_t colour = 0x008A8A8A;
    constexpr int fine = 4;  // samples a pixel, in each direction
    const double radius = 0.46 * size;
    const double line = std::max(1.0, size / 14.0);
    const auto isInk = [&](double x, double y) {
        const double fromCentre = std::hypot(x - size / 2.0, y - size / 2.0);
        if (fromCentre > radius) return false;
        if (fromCentre > radius - line) return true;
        return std::fmod(x, 3 * line) < line;
    };
    IconImage icon{size, {}};
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            int hits = 0;
            for (int i = 0; i < fine * fine; ++i) {
                hits += isInk(x + (i % fine + 0.5) / fine, y + (i / fine + 0.5) / fine) ? 1 : 0;
            }
            const auto alpha = static_cast<std::uint32_t>(hits * 255 / (fine * fine));
            icon.pixels.push_back(alpha == 0 ? 0 : alpha << 24 | colour);
        }
    }
    return icon;
}

}  // namespace quorvel::native
