#include "platform/linux/HoldNote.hpp"

#include <cmath>

namespace quorvel::native {
namespace {

enum Flag : std::int32_t {
    fullscreen = 1,
    maximizedVertically = 2,
    maximizedHorizontally = 4,
    hasGiven = 8,
    hasNormal = 16,
};

void append(WindowNotes::Content& content, const Rect& rect) {
    for (const double number : {rect.x, rect.y, rect.width, rect.height}) {
        content.push_back(static_cast<std::int32_t>(std::lround(number)));
    }
}

Rect rectAt(const WindowNotes::Content& content, std::size_t index) {
    const auto at = [&](std::size_t i) { return static_cast<double>(content[index + i]); };
    return {at(0), at(1), at(2), at(3)};
}

}  // namespace

HoldNote::HoldNote(const WindowNotes::Content& content) : home(rectAt(content, 0)) {
    const std::int32_t flags = content[4];
    if ((flags & hasGiven) == 0) return;
    given.emplace();
    given->states = {(flags & fullscreen) != 0, (flags & maximizedVertically) != 0,
                     (flags & maximizedHorizontally) != 0};
    given->filledSeen = rectAt(content, 5);
    if ((flags & hasNormal) == 0) return;
    given->normal = {rectAt(content, 9),
                     {static_cast<double>(content[13]), static_cast<double>(content[14])}};
}

WindowNotes::Content HoldNote::content() const {
    WindowNotes::Content content;
    append(content, home);
    std::int32_t flags = 0;
    Rect normal;
    Size clientSize;
    if (given) {
        flags |= hasGiven;
        if (given->states.fullscreen) flags |= fullscreen;
        if (given->states.maximizedVertically) flags |= maximizedVertically;
        if (given->states.maximizedHorizontally) flags |= maximizedHorizontally;
        if (given->normal) {
            flags |= hasNormal;
            normal = given->normal->seen;
            clientSize = given->normal->clientSize;
        }
    }
    content.push_back(flags);
    append(content, given ? given->filledSeen : Rect{});
    append(content, normal);
    content.push_back(static_cast<std::int32_t>(std::lround(clientSize.width)));
    content.push_back(static_cast<std::int32_t>(std::lround(clientSize.height)));
    return content;
}

}  // namespace quorvel::native
