#include "platform/linux/WindowNotes.hpp"

#include <unistd.h>

#include <set>

#include "platform/linux/PropertyReply.hpp"

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

std::optional<WindowNotes::Content> WindowNotes::of(xcb_window_t window) const {
    const auto question = xcb_get_property(x.xcb(), 0, window, x.atom(property), XCB_ATOM_INTEGER,
                                           0, static_cast<std::uint32_t>(headerLength + length));
    const Reply<xcb_get_property_reply_t> reply{xcb_get_property_reply(x.xcb(), question, nullptr)};
    return contentIn(reply.get(), length);
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
        if (auto content = contentIn(reply.get(), length)) {
            notes.emplace_back(window, std::move(*content));
        }
    }
    return notes;
}

std::optional<WindowNotes::Content> WindowNotes::contentIn(const xcb_get_property_reply_t* reply,
                                                           std::size_t length) {
    if (reply == nullptr || reply->bytes_after != 0) return std::nullopt;
    const std::vector<std::uint32_t> numbers = numbersIn(reply, XCB_ATOM_INTEGER);
    if (numbers.size() != headerLength + length) return std::nullopt;
    const Content note(numbers.begin(), numbers.end());
    if (note[0] != layout || note[1] != static_cast<std::int32_t>(geteuid())) return std::nullopt;
    return Content(note.begin() + headerLength, note.end());
}

}  // namespace quorvel::native
