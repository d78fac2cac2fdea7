#include "tests/support/x11/XProbe.hpp"

#include <xcb/shape.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "tests/support/x11/ChildProcess.hpp"

namespace quorvel::test {
namespace {

constexpr std::uint32_t colourMask = 0xFFFFFF;

XReply<xcb_get_geometry_reply_t> geometry(xcb_connection_t* x, xcb_window_t window) {
    return XReply<xcb_get_geometry_reply_t>(
        xcb_get_geometry_reply(x, xcb_get_geometry(x, window), nullptr));
}

/// With the server-side border, in root coordinates.
std::optional<Rect> outerRect(xcb_connection_t* x, xcb_window_t root, xcb_window_t window) {
    const auto size = geometry(x, window);
    const XReply<xcb_translate_coordinates_reply_t> inside(xcb_translate_coordinates_reply(
        x, xcb_translate_coordinates(x, window, root, 0, 0), nullptr));
    if (!size || !inside) return std::nullopt;
    const double border = size->border_width;
    return Rect{inside->dst_x - border, inside->dst_y - border, size->width + 2 * border,
                size->height + 2 * border};
}

}  // namespace

XProbe::XProbe(const std::string& displayName) : displayName(displayName), client(displayName) {}

bool XProbe::windowManagerIsReady() const {
    const auto check = client.property32(client.root(), "_NET_SUPPORTING_WM_CHECK");
    if (check.empty() || client.property32(client.root(), "_NET_SUPPORTED").empty()) return false;
    return client.property32(check[0], "_NET_SUPPORTING_WM_CHECK") == check;
}

xcb_window_t XProbe::activeWindow() const {
    const auto active = client.property32(client.root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active[0];
}

std::vector<xcb_window_t> XProbe::clientList() const {
    return client.property32(client.root(), "_NET_CLIENT_LIST");
}

bool XProbe::isManaged(xcb_window_t window) const {
    const auto list = clientList();
    return std::find(list.begin(), list.end(), window) != list.end();
}

std::optional<std::uint32_t> XProbe::wmState(xcb_window_t window) const {
    const auto state = client.property32(window, "WM_STATE");
    if (state.empty()) return std::nullopt;
    return state[0];
}

std::vector<std::string> XProbe::netWmState(xcb_window_t window) const {
    std::vector<std::string> names;
    for (const xcb_atom_t atom : client.property32(window, "_NET_WM_STATE")) {
        names.push_back(client.atomName(atom));
    }
    return names;
}

xcb_window_t XProbe::windowOfClass(const std::string& name) const {
    for (const xcb_window_t window : clientList()) {
        const std::string both = client.propertyText(window, "WM_CLASS");
        const std::size_t end = both.find('\0');
        if (end == std::string::npos) continue;
        const std::string instance = both.substr(0, end);
        const std::string className = both.substr(end + 1, both.find('\0', end + 1) - end - 1);
        if (instance == name || className == name) return window;
    }
    return XCB_WINDOW_NONE;
}

std::optional<std::uint32_t> XProbe::pid(xcb_window_t window) const {
    const auto pid = client.property32(window, "_NET_WM_PID");
    if (pid.empty()) return std::nullopt;
    return pid[0];
}

bool XProbe::exists(xcb_window_t window) const {
    return geometry(client.xcb(), window) != nullptr;
}

bool XProbe::isViewable(xcb_window_t window) const {
    const XReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        client.xcb(), xcb_get_window_attributes(client.xcb(), window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

xcb_window_t XProbe::inputFocus() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(client.xcb(), xcb_get_input_focus(client.xcb()), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

xcb_window_t XProbe::frameOf(xcb_window_t window) const {
    while (true) {
        const XReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(client.xcb(), xcb_query_tree(client.xcb(), window), nullptr));
        if (!tree || tree->parent == XCB_WINDOW_NONE) return XCB_WINDOW_NONE;
        if (tree->parent == client.root()) return window;
        window = tree->parent;
    }
}

std::optional<Rect> XProbe::clientArea(xcb_window_t window) const {
    return outerRect(client.xcb(), client.root(), window);
}

std::optional<Rect> XProbe::visibleFrame(xcb_window_t window) const {
    const xcb_window_t frame = frameOf(window);
    if (frame == XCB_WINDOW_NONE) return std::nullopt;
    std::optional<Rect> seen = outerRect(client.xcb(), client.root(), frame);
    // Measured inside the frame, or a move between the two readings would tear them apart.
    std::optional<Rect> inner = outerRect(client.xcb(), frame, window);
    const auto border = geometry(client.xcb(), frame);
    if (!seen || !inner || !border) return std::nullopt;
    inner->x += seen->x + border->border_width;
    inner->y += seen->y + border->border_width;

    // A shaped frame is seen only where its shape is.
    const XReply<xcb_shape_query_extents_reply_t> shape(xcb_shape_query_extents_reply(
        client.xcb(), xcb_shape_query_extents(client.xcb(), frame), nullptr));
    if (shape && shape->bounding_shaped != 0) {
        const Rect extents{seen->x + shape->bounding_shape_extents_x,
                           seen->y + shape->bounding_shape_extents_y,
                           double(shape->bounding_shape_extents_width),
                           double(shape->bounding_shape_extents_height)};
        if (!extents.isEmpty()) seen = seen->intersection(extents);
    }

    const auto shrink = [&seen](const std::vector<std::uint32_t>& sides) {
        if (sides.size() < 4) return;
        seen->x += sides[0];
        seen->y += sides[2];
        seen->width -= sides[0] + sides[1];
        seen->height -= sides[2] + sides[3];
    };
    if (frame == window) {
        shrink(client.property32(window, "_GTK_FRAME_EXTENTS"));
        return seen;
    }

    // What the frame has beyond the declared decoration is for grabbing, not for looking at.
    const auto declared = client.property32(window, "_NET_FRAME_EXTENTS");
    if (declared.size() >= 4) {
        const Rect decorated{inner->x - declared[0], inner->y - declared[2],
                             inner->width + declared[0] + declared[1],
                             inner->height + declared[2] + declared[3]};
        seen = seen->intersection(decorated);
    }
    shrink(client.property32(window, "_GTK_FRAME_EXTENTS"));
    return seen;
}

std::vector<xcb_window_t> XProbe::stacking() const {
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(client.xcb(), xcb_query_tree(client.xcb(), client.root()), nullptr));
    if (!tree) return {};
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

bool XProbe::isAbove(xcb_window_t upper, xcb_window_t lower) const {
    const auto windows = stacking();
    const auto upperAt = std::find(windows.begin(), windows.end(), frameOf(upper));
    const auto lowerAt = std::find(windows.begin(), windows.end(), frameOf(lower));
    return upperAt != windows.end() && lowerAt != windows.end() && lowerAt < upperAt;
}

Point XProbe::pointer() const {
    const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        client.xcb(), xcb_query_pointer(client.xcb(), client.root()), nullptr));
    if (!reply) return {};
    return {double(reply->root_x), double(reply->root_y)};
}

void XProbe::paintRoot(std::uint32_t colour) const {
    xcb_change_window_attributes(client.xcb(), client.root(), XCB_CW_BACK_PIXEL, &colour);
    xcb_clear_area(client.xcb(), 0, client.root(), 0, 0, 0, 0);
    client.sync();
}

template <class Predicate>
std::optional<Rect> XProbe::boundsWhere(Predicate&& counts, const Rect& area) const {
    const auto size = geometry(client.xcb(), client.root());
    if (!size) return std::nullopt;
    const Rect part = area.intersection({0, 0, double(size->width), double(size->height)});
    const int width = static_cast<int>(part.width);
    const int height = static_cast<int>(part.height);
    const XReply<xcb_get_image_reply_t> image(xcb_get_image_reply(
        client.xcb(),
        xcb_get_image(client.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, client.root(),
                      static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0U),
        nullptr));
    if (!image) throw std::runtime_error("the root window cannot be read");
    const std::uint8_t* const bytes = xcb_get_image_data(image.get());
    int left = width;
    int top = height;
    int right = -1;
    int bottom = -1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint32_t value = 0;
            std::memcpy(&value, bytes + 4 * (std::ptrdiff_t{y} * width + x), 4);
            if (!counts(value & colourMask)) continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0) return std::nullopt;
    return Rect{part.x + left, part.y + top, double(right - left + 1), double(bottom - top + 1)};
}

std::optional<Rect> XProbe::boundsOfAllBut(std::uint32_t colour) const {
    return boundsWhere([colour](std::uint32_t value) { return value != colour; });
}

std::optional<Rect> XProbe::boundsOf(std::uint32_t colour) const {
    return boundsWhere([colour](std::uint32_t value) { return value == colour; });
}

std::optional<Rect> XProbe::boundsOfColoursNear(std::uint32_t colour, int tolerance,
                                                const Rect& area) const {
    const auto isNear = [=](std::uint32_t value) {
        for (int shift = 0; shift < 24; shift += 8) {
            const auto channel = [shift](std::uint32_t of) {
                return static_cast<int>(of >> shift & 0xFF);
            };
            if (std::abs(channel(value) - channel(colour)) > tolerance) return false;
        }
        return true;
    };
    return boundsWhere(isNear, area);
}

std::uint32_t XProbe::pixel(int x, int y) const {
    const XReply<xcb_get_image_reply_t> image(xcb_get_image_reply(
        client.xcb(),
        xcb_get_image(client.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, client.root(),
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1, ~0U),
        nullptr));
    if (!image) throw std::out_of_range("no such pixel");
    std::uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(image.get()), 4);
    return value & colourMask;
}

void XProbe::screenshot(const std::filesystem::path& file) const {
    runToEnd({{"maim", file.string()},
              {{"DISPLAY", displayName}, {"PATH", "/usr/local/bin:/usr/bin:/bin"}},
              {},
              {}});
}

xcb_timestamp_t XProbe::serverTime() const {
    const XClient clock(displayName);
    const xcb_window_t window = xcb_generate_id(clock.xcb());
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(clock.xcb(), 0, window, clock.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    clock.setPropertyText(window, "WM_NAME", "STRING", "");
    xcb_flush(clock.xcb());
    std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(
        xcb_wait_for_event(clock.xcb()), &std::free);
    while (event && (event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) {
        event.reset(xcb_wait_for_event(clock.xcb()));
    }
    if (!event) throw std::runtime_error("the X server has gone away");
    return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
}

/// With the time of now: without one it would count as asked for when it is read, after whatever
/// the user does meanwhile.
void XProbe::activate(xcb_window_t window) const {
    client.sendToRoot(window, "_NET_ACTIVE_WINDOW", {2, serverTime(), 0, 0, 0});
}

void XProbe::iconify(xcb_window_t window) const {
    client.sendToRoot(window, "WM_CHANGE_STATE", {3, 0, 0, 0, 0});
}

void XProbe::close(xcb_window_t window) const {
    client.sendToRoot(window, "_NET_CLOSE_WINDOW", {0, 2, 0, 0, 0});
}

void XProbe::requestMove(xcb_window_t window, int x, int y) const {
    const std::uint32_t flags = XCB_GRAVITY_NORTH_WEST | 1U << 8U | 1U << 9U | 2U << 12U;
    client.sendToRoot(window, "_NET_MOVERESIZE_WINDOW",
                      {flags, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 0, 0});
}

}  // namespace quorvel::test
