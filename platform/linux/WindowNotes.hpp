#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Notes that this program leaves on the windows of others: what it takes to bring a window back.
/// They outlive this process, however it ends, and go with the window.
///
/// A note is a property of type INTEGER, format 32: its layout's version, the user's identifier,
/// then the content. Notes of other users, and of other versions, are none of ours.
class WindowNotes {
public:
    using Content = std::vector<std::int32_t>;

    /// The name of the property, and how many numbers a content has.
    WindowNotes(XConnection& x, std::string property, std::size_t length);

    /// Before the window is touched. One that is gone is no error.
    void write(xcb_window_t window, const Content& content) const;
    void erase(xcb_window_t window) const;

    std::optional<Content> of(xcb_window_t window) const;

    /// All windows that carry such a note: those that the window manager lists, and those right
    /// under the root. Two round trips.
    std::vector<std::pair<xcb_window_t, Content>> all() const;

    /// What a property says, if it is a note of ours of that length.
    static std::optional<Content> contentIn(const xcb_get_property_reply_t* reply,
                                            std::size_t length);

private:
    XConnection& x;
    std::string property;
    std::size_t length;
};

}  // namespace quorvel::native
