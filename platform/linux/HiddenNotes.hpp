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

    /// A frame that is moved off the screen, and where it belongs; root coordinates.
    struct MovedFrame {
        xcb_window_t frame = XCB_WINDOW_NONE;
        Point home;
    };

    void write(xcb_window_t window) const { write(window, MovedFrame{}); }
    void write(xcb_window_t window, const MovedFrame& moved) const {
        notes.write(window, {static_cast<std::int32_t>(moved.frame),
                             static_cast<std::int32_t>(moved.home.x),
                             static_cast<std::int32_t>(moved.home.y)});
    }
    void erase(xcb_window_t window) const { notes.erase(window); }

    bool saysMoved(xcb_window_t window) const {
        const auto content = notes.of(window);
        return content && movedFrameIn(*content);
    }

    /// Without a frame: it was not moved.
    std::vector<std::pair<xcb_window_t, std::optional<MovedFrame>>> all() const {
        std::vector<std::pair<xcb_window_t, std::optional<MovedFrame>>> hidden;
        for (const auto& [window, content] : notes.all()) {
            hidden.emplace_back(window, movedFrameIn(content));
        }
        return hidden;
    }

    /// Of a note of `length` numbers, whatever they are.
    static std::optional<MovedFrame> movedFrameIn(const WindowNotes::Content& content) {
        if (content[0] == 0) return std::nullopt;
        return MovedFrame{static_cast<xcb_window_t>(content[0]),
                          {static_cast<double>(content[1]), static_cast<double>(content[2])}};
    }

private:
    WindowNotes notes;
};

}  // namespace quorvel::native
