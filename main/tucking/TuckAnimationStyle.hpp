#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <string_view>

namespace quorvel {

/// How a window moves into and out of its tucked position. In the order of the settings menu.
enum class TuckAnimationStyle { instant, slide, easeOut, easeInOut, spring };

inline constexpr std::array<TuckAnimationStyle, 5> allTuckAnimationStyles{
    TuckAnimationStyle::instant, TuckAnimationStyle::slide, TuckAnimationStyle::easeOut,
    TuckAnimationStyle::easeInOut, TuckAnimationStyle::spring};

std::string_view rawValue(TuckAnimationStyle style);     ///< "easeout"
std::string_view displayName(TuckAnimationStyle style);  ///< "Ease Out"
/// Zero for `instant`.
std::chrono::milliseconds duration(TuckAnimationStyle style);

/// Exactly the stored spelling.
std::optional<TuckAnimationStyle> tuckAnimationStyleFromRawValue(std::string_view raw);
/// Tolerant: only the letters count, in any case.
std::optional<TuckAnimationStyle> parseTuckAnimationStyle(std::string_view text);

/// The fraction of the way travelled after the fraction `t` of the time; may exceed 1 on the way.
/// Penner's easing equations: linear, cubic, and "back" with overshoot 1.70158.
double progress(TuckAnimationStyle style, double t);

}  // namespace quorvel
