#include "platform/linux/WindowRaiser.hpp"

#include <algorithm>
#include <unordered_map>

#include "platform/linux/MoveRequests.hpp"
#include "platform/linux/WindowManagerTraits.hpp"

namespace quorvel::native {

WindowRaiser::WindowRaiser(XConnection& x, FrameReader& frames, const WindowManagerInfo& manager)
    : x(x), frames(frames), manager(manager) {}

void WindowRaiser::raise(xcb_window_t client) {
    if (!traitsByName(manager.name(), false).raisesOnRequest) return raisePastIt(client);
    if (manager.supports("_NET_RESTACK_WINDOW")) {
        constexpr std::uint32_t fromPager = 2;
        x.sendToRoot(client, "_NET_RESTACK_WINDOW",
                     {fromPager, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE, 0, 0});
        return;
    }
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    const auto cookie =
        xcb_configure_window_checked(x.xcb(), client, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_discard_reply(x.xcb(), cookie.sequence);
    x.flush();
}

void WindowRaiser::raisePastIt(xcb_window_t client) {
    const auto window = frames.read(client);
    const auto tree = Reply<xcb_query_tree_reply_t>(
        xcb_query_tree_reply(x.xcb(), xcb_query_tree(x.xcb(), x.root()), nullptr));
    if (!window || !tree) return;
    std::unordered_map<xcb_window_t, xcb_window_t> clientOfFrame;
    for (const xcb_window_t other : x.property32(x.root(), "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)) {
        if (const auto reading = frames.read(other)) clientOfFrame[reading->frame] = other;
    }
    // Right above the foremost ordinary window, so that panels stay where they are.
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    for (int i = xcb_query_tree_children_length(tree.get()) - 1; i >= 0; --i) {
        if (children[i] == window->frame) return;
        const auto other = clientOfFrame.find(children[i]);
        if (other == clientOfFrame.end() || keepsToTheFront(other->second)) continue;
        overrideStacking(x, window->frame, window->frameIsOverrideRedirect, children[i]);
        return;
    }
}

bool WindowRaiser::keepsToTheFront(xcb_window_t client) const {
    const auto has = [&](std::string_view property, std::string_view atom) {
        const auto values = x.property32(client, property, XCB_ATOM_ATOM);
        return std::find(values.begin(), values.end(), x.atom(atom)) != values.end();
    };
    return has("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK") ||
           has("_NET_WM_STATE", "_NET_WM_STATE_ABOVE") ||
           has("_NET_WM_STATE", "_NET_WM_STATE_FULLSCREEN");
}

}  // namespace quorvel::native
