#include "platform/linux/WindowTree.hpp"

#include <cstdint>
#include <utility>

namespace quorvel::native {
namespace {

Reply<xcb_query_tree_reply_t> takeTree(const XConnection& x, xcb_query_tree_cookie_t cookie) {
    return Reply<xcb_query_tree_reply_t>(xcb_query_tree_reply(x.xcb(), cookie, nullptr));
}

std::vector<xcb_window_t> childrenIn(const xcb_query_tree_reply_t* reply) {
    if (reply == nullptr) return {};
    const xcb_window_t* first = xcb_query_tree_children(reply);
    return {first, first + xcb_query_tree_children_length(reply)};
}

/// WM_STATE with anything but "withdrawn".
bool isManagedBy(const xcb_get_property_reply_t* state) {
    if (state == nullptr || state->format != 32 || xcb_get_property_value_length(state) < 4) {
        return false;
    }
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(state)) != 0;
}

}  // namespace

std::vector<xcb_window_t> windowsOnScreen(const XConnection& x) {
    const xcb_atom_t wmState = x.atom("WM_STATE");
    struct Candidate {
        xcb_window_t window;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_property_cookie_t state;
        xcb_query_tree_cookie_t tree;
    };
    const auto ask = [&](const std::vector<xcb_window_t>& windows) {
        std::vector<Candidate> candidates;
        candidates.reserve(windows.size());
        for (const xcb_window_t window : windows) {
            candidates.push_back({window, xcb_get_window_attributes(x.xcb(), window),
                                  xcb_get_property(x.xcb(), 0, window, wmState, wmState, 0, 2),
                                  xcb_query_tree(x.xcb(), window)});
        }
        return candidates;
    };
    std::vector<xcb_window_t> result;
    const auto collect = [&](const auto& self, const std::vector<xcb_window_t>& windows,
                             int depth) -> bool {
        bool anyManaged = false;
        for (const Candidate& candidate : ask(windows)) {
            const Reply<xcb_get_window_attributes_reply_t> attributes(
                xcb_get_window_attributes_reply(x.xcb(), candidate.attributes, nullptr));
            const Reply<xcb_get_property_reply_t> state(
                xcb_get_property_reply(x.xcb(), candidate.state, nullptr));
            const auto tree = takeTree(x, candidate.tree);
            if (!attributes || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) continue;
            if (isManagedBy(state.get())) {
                result.push_back(candidate.window);
                anyManaged = true;
            } else if (depth < 2 && self(self, childrenIn(tree.get()), depth + 1)) {
                anyManaged = true;
            } else if (depth == 0 && attributes->override_redirect == 0 &&
                       attributes->map_state == XCB_MAP_STATE_VIEWABLE) {
                result.push_back(candidate.window);
            }
        }
        return anyManaged;
    };
    const auto tree = takeTree(x, xcb_query_tree(x.xcb(), x.root()));
    collect(collect, childrenIn(tree.get()), 0);
    return result;
}

std::vector<xcb_window_t> byStacking(const XConnection& x,
                                     const std::vector<xcb_window_t>& windows) {
    struct Climb {
        xcb_window_t window;
        xcb_window_t ancestor;
        bool isAtTop = false;
    };
    std::vector<Climb> climbs;
    for (const xcb_window_t window : windows) climbs.push_back({window, window});
    const xcb_query_tree_cookie_t rootTree = xcb_query_tree(x.xcb(), x.root());
    // One round trip a level; no window manager nests its frames nearly as deep.
    for (int level = 0; level < 16; ++level) {
        std::vector<std::pair<Climb*, xcb_query_tree_cookie_t>> asked;
        for (Climb& climb : climbs) {
            if (!climb.isAtTop) asked.emplace_back(&climb, xcb_query_tree(x.xcb(), climb.ancestor));
        }
        if (asked.empty()) break;
        for (const auto& [climb, cookie] : asked) {
            const auto tree = takeTree(x, cookie);
            climb->isAtTop = !tree || tree->parent == x.root();
            if (!climb->isAtTop) climb->ancestor = tree->parent;
        }
    }
    const auto rootReply = takeTree(x, rootTree);
    const auto children = childrenIn(rootReply.get());
    std::vector<xcb_window_t> result;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        for (const Climb& climb : climbs) {
            if (climb.isAtTop && climb.ancestor == *child) result.push_back(climb.window);
        }
    }
    return result;
}

xcb_window_t frameOf(const XConnection& x, xcb_window_t window) {
    xcb_window_t parent = parentOf(x, window);
    while (parent != x.root() && parent != XCB_WINDOW_NONE) {
        window = parent;
        parent = parentOf(x, window);
    }
    return parent == XCB_WINDOW_NONE ? parent : window;
}

xcb_window_t parentOf(const XConnection& x, xcb_window_t window) {
    const auto tree = takeTree(x, xcb_query_tree(x.xcb(), window));
    return tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
}

}  // namespace quorvel::native
