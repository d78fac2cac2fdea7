#include "main/tucking/TuckAnimator.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorvel {
namespace {

constexpr RunLoop::Duration tickInterval{std::chrono::nanoseconds(std::chrono::seconds(1)) / 60};

}  // namespace

TuckAnimator::TuckAnimator(AXWindows windows, RunLoop& runLoop)
    : windows(windows), runLoop(runLoop) {}

void TuckAnimator::move(AXWindow window, Point from, Point to, TuckAnimationStyle style,
                        Completion completion) {
    cancel(window);
    if (style == TuckAnimationStyle::instant) {
        const bool written = windows.setOriginAX(to, window);
        if (completion) completion(written);
        return;
    }
    timers.emplace(window,
                   Slide{from, to, style, std::move(completion), runLoop.uptimeNanoseconds(),
                         runLoop.repeating(tickInterval, RunLoop::Duration::zero(),
                                           [this, window] { tick(window); })});
}

void TuckAnimator::cancel(AXWindow window) {
    timers.erase(window);
}

std::optional<Point> TuckAnimator::destination(AXWindow window) const {
    const auto at = timers.find(window);
    if (at == timers.end()) return std::nullopt;
    return at->second.to;
}

void TuckAnimator::tick(AXWindow window) {
    const auto at = timers.find(window);
    if (at == timers.end()) return;
    const Slide& slide = at->second;
    const std::chrono::duration<double, std::nano> elapsed(
        static_cast<double>(runLoop.uptimeNanoseconds() - slide.startNanoseconds));
    const double fraction = std::min(elapsed / duration(slide.style), 1.0);
    if (fraction < 1) {
        const double p = progress(slide.style, fraction);
        const Point origin{slide.from.x + (slide.to.x - slide.from.x) * p,
                           slide.from.y + (slide.to.y - slide.from.y) * p};
        if (windows.setOriginAX(origin, window, MoveStep::intermediate)) return;
    }
    finish(window, fraction >= 1);
}

void TuckAnimator::finish(AXWindow window, bool isOver) {
    // The completion may start the next move of this window, or bring about the end of this object.
    auto ended = timers.extract(window);
    if (ended.empty()) return;
    const Slide& slide = ended.mapped();
    const bool written = isOver && windows.setOriginAX(slide.to, window);
    if (const Completion completion = slide.completion) completion(written);
}

void TuckAnimator::finishAll() {
    // From copies alone: after a completion this object may be no more.
    const AXWindows access = windows;
    for (const auto& [window, slide] : std::exchange(timers, {})) {
        const bool written = access.setOriginAX(slide.to, window);
        if (slide.completion) slide.completion(written);
    }
}

}  // namespace quorvel
