#include "main/shell/Chronicle.hpp"

#include <utility>

namespace quorvel {

void Chronicle::begin(std::string trigger) {
    story = {std::move(trigger), runLoop.uptimeNanoseconds(), {}};
}

void Chronicle::line(std::string_view message) {
    constexpr std::string_view own = "Quorvel: ";
    remember(message.starts_with(own) ? message.substr(own.size()) : message);
    log.line(message);
}

void Chronicle::note(std::string_view text) {
    remember(text);
}

void Chronicle::remember(std::string_view text) {
    if (!story || story->steps.size() >= mostSteps) return;
    const RunLoop::Duration age(runLoop.uptimeNanoseconds() - story->beganNanoseconds);
    if (age <= span) story->steps.emplace_back(text);
}

}  // namespace quorvel
