#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <utility>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/linux/WindowNotes.hpp"

namespace quorvel::native {

/// The notes on windows that are hidden.
class HiddenNotes {
public:
    static constexpr std::size_t length = 3;

    explicit HiddenNotes(XConnection& x) : notes(x, "_QUORVEL_HIDDEN", length) {}

    /// Where its frame belongs, if that is moved off the screen; root coordinates.
    void write(xcb_window_t window, std::optional<Point> frameHome = std::nullopt) const {
        const Point home = frameHome.value_or(Point{});
        notes.write(window, {frameHome ? 1 : 0, static_cast<std::int32_t>(home.x),
                             static_cast<std::int32_t>(home.y)});
    }
    void erase(xcb_window_t window) const { notes.erase(window); }

    std::vector<std::pair<xcb_window_t, std::optional<Point>>> all() const {
        std::vector<std::pair<xcb_window_t, std::optional<Point>>> hidden;
        for (const auto& [window, content] : notes.all()) {
            hidden.emplace_back(window, homeIn(content));
        }
        return hidden;
    }

    /// Of a note of `length` numbers, whatever they are.
    static std::optional<Point> homeIn(const WindowNotes::Content& content) {
        if (content[0] == 0) return std::nullopt;
        return Point{static_cast<double>(content[1]), static_cast<double>(content[2])};
    }

private:
    WindowNotes notes;
};

}  // namespace quorvel::native
