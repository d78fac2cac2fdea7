#include "platform/linux/WindowNotes.hpp"

#include <unistd.h>

#include <set>

namespace quorvel::native {
namespace {

constexpr std::int32_t layout = 1;
constexpr std::size_t headerLength = 2;

}  // namespace

WindowNotes::WindowNotes(XConnection& x, std::string property, std::size_t length)
    : x(x), property(std::move(property)), length(length) {}

void WindowNotes::write(xcb_window_t window, const Content& content) const {
    Content note{layout, static_cast<std::int32_t>(geteuid())};
    note.insert(note.end(), content.begin(), content.end());
    const auto cookie = xcb_change_property_checked(
        x.xcb(), XCB_PROP_MODE_REPLACE, window, x.atom(property), XCB_ATOM_INTEGER, 32,
        static_cast<std::uint32_t>(note.size()), note.data());
    xcb_discard_reply(x.xcb(), cookie.sequence);
}

void WindowNotes::erase(xcb_window_t window) const {
    const auto cookie = xcb_delete_property_checked(x.xcb(), window, x.atom(property));
    xcb_discard_reply(x.xcb(), cookie.sequence);
}

std::vector<std::pair<xcb_window_t, WindowNotes::Content>> WindowNotes::all() const {
    const auto tree = xcb_query_tree(x.xcb(), x.root());
    const auto listed = x.property32(x.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW);
    std::set<xcb_window_t> windows(listed.begin(), listed.end());
    if (const Reply<xcb_query_tree_reply_t> reply{xcb_query_tree_reply(x.xcb(), tree, nullptr)}) {
        const xcb_window_t* const children = xcb_query_tree_children(reply.get());
        windows.insert(children, children + xcb_query_tree_children_length(reply.get()));
    }

    const auto wanted = static_cast<std::uint32_t>(headerLength + length);
    std::vector<std::pair<xcb_window_t, xcb_get_property_cookie_t>> questions;
    for (const xcb_window_t window : windows) {
        questions.emplace_back(window, xcb_get_property(x.xcb(), 0, window, x.atom(property),
                                                        XCB_ATOM_INTEGER, 0, wanted));
    }
    std::vector<std::pair<xcb_window_t, Content>> notes;
    for (const auto& [window, question] : questions) {
        const Reply<xcb_get_property_reply_t> reply{
            xcb_get_property_reply(x.xcb(), question, nullptr)};
        if (!reply || reply->format != 32 || reply->bytes_after != 0) continue;
        const auto* const numbers =
            static_cast<const std::int32_t*>(xcb_get_property_value(reply.get()));
        const auto count =
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof *numbers;
        if (count != wanted || numbers[0] != layout ||
            numbers[1] != static_cast<std::int32_t>(geteuid())) {
            continue;
        }
        notes.emplace_back(window, Content(numbers + headerLength, numbers + count));
    }
    return notes;
}

}  // namespace quorvel::native
