#include "main/tucking/TuckAnimationStyle.hpp"

#include <cmath>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

struct Row {
    TuckAnimationStyle style;
    std::string_view raw;
    std::string_view displayName;
    std::chrono::milliseconds duration;
};

constexpr std::array<Row, 5> rows{
    {{TuckAnimationStyle::instant, "instant", "Instant", std::chrono::milliseconds{0}},
     {TuckAnimationStyle::slide, "slide", "Slide", std::chrono::milliseconds{160}},
     {TuckAnimationStyle::easeOut, "easeout", "Ease Out", std::chrono::milliseconds{180}},
     {TuckAnimationStyle::easeInOut, "easeinout", "Ease In-Out", std::chrono::milliseconds{200}},
     {TuckAnimationStyle::spring, "spring", "Spring", std::chrono::milliseconds{280}}}};

const Row& rowOf(TuckAnimationStyle style) {
    return rows[static_cast<std::size_t>(style)];
}

}  // namespace

std::string_view rawValue(TuckAnimationStyle style) {
    return rowOf(style).raw;
}

std::string_view displayName(TuckAnimationStyle style) {
    return rowOf(style).displayName;
}

std::chrono::milliseconds duration(TuckAnimationStyle style) {
    return rowOf(style).duration;
}

std::optional<TuckAnimationStyle> tuckAnimationStyleFromRawValue(std::string_view raw) {
    for (const Row& row : rows) {
        if (row.raw == raw) return row.style;
    }
    return std::nullopt;
}

std::optional<TuckAnimationStyle> parseTuckAnimationStyle(std::string_view text) {
    return tuckAnimationStyleFromRawValue(lettersOnly(text));
}

double progress(TuckAnimationStyle style, double t) {
    constexpr double overshoot = 1.70158;
    if (style == TuckAnimationStyle::instant) return 1;
    if (t >= 1) return 1;
    if (!(t > 0)) return 0;
    switch (style) {
        case TuckAnimationStyle::instant:
        case TuckAnimationStyle::slide:
            break;
        case TuckAnimationStyle::easeOut:
            return 1 - std::pow(1 - t, 3);
        case TuckAnimationStyle::easeInOut:
            return t < 0.5 ? 4 * t * t * t : 1 - 0.5 * std::pow(2 - 2 * t, 3);
        case TuckAnimationStyle::spring: {
            const double u = t - 1;
            return 1 + (overshoot + 1) * std::pow(u, 3) + overshoot * u * u;
        }
    }
    return t;
}

}  // namespace quorvel
