#include "platform/linux/status/TrayWindow.hpp"

#include <unistd.h>
#include <xcb/xcb_renderutil.h>

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace quorvel::native {
namespace {

constexpr int naturalSize = 22;
constexpr std::uint32_t xembedVersion = 0;
constexpr std::uint32_t xembedMapped = 1;
constexpr std::uint32_t requestDock = 0;
/// No tray shows more of it, and a picture must fit into one request.
constexpr int largestSize = 256;
/// After a window was destroyed under us: longer than a tray takes to go away, and the longer the
/// more often it happens.
constexpr std::chrono::milliseconds firstPatience{200};
constexpr std::chrono::seconds longestPatience{60};

int screenNumber(const XConnection& x) {
    int number = 0;
    for (auto i = xcb_setup_roots_iterator(xcb_get_setup(x.xcb())); i.rem > 0;
         xcb_screen_next(&i), ++number) {
        if (i.data->root == x.root()) return number;
    }
    return 0;
}

std::uint8_t depthOf(const XConnection& x, xcb_visualid_t visual) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&x.screen()); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto i = xcb_depth_visuals_iterator(depth.data); i.rem > 0; xcb_visualtype_next(&i)) {
            if (i.data->visual_id == visual) return depth.data->depth;
        }
    }
    return 0;
}

/// The visual that the tray asks for, where it names one that exists.
xcb_visualid_t visualFor(const XConnection& x, xcb_window_t tray) {
    const auto named = x.property32(tray, "_NET_SYSTEM_TRAY_VISUAL", XCB_ATOM_VISUALID);
    if (!named.empty() && depthOf(x, named.front()) != 0) return named.front();
    return x.screen().root_visual;
}

void setText(const XConnection& x, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
             std::string_view text) {
    xcb_change_property(x.xcb(), XCB_PROP_MODE_REPLACE, window, name, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

}  // namespace

TrayWindow::TrayWindow(XConnection& x, RunLoop& runLoop, const StatusItemContent& content,
                       std::function<void(const StatusItemEvent&)> clicked)
    : x(x),
      runLoop(runLoop),
      content(content),
      clicked(std::move(clicked)),
      patience(firstPatience),
      selection(x.atom("_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber(x)))),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {
    // Trays announce themselves there.
    x.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
}

TrayWindow::~TrayWindow() {
    destroy();
}

void TrayWindow::setWanted(bool nowWanted) {
    if (std::exchange(wanted, nowWanted) == nowWanted) return;
    if (wanted) {
        lookForTray();
    } else {
        leaveTray();
    }
}

void TrayWindow::contentChanged() {
    if (window == XCB_WINDOW_NONE) return;
    setProperties();
    draw();
}

void TrayWindow::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (message.window == x.root() && message.type == x.atom("MANAGER") &&
                message.data.data32[1] == selection && wanted) {
                leaveTray();
                patience = firstPatience;
                lookForTray();
            }
            return;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            const bool isOurs = gone == window && window != XCB_WINDOW_NONE;
            if (!isOurs && (gone != tray || tray == XCB_WINDOW_NONE)) return;
            if (isOurs) window = XCB_WINDOW_NONE;
            leaveTray();
            tryAgain();
            return;
        }
        case XCB_REPARENT_NOTIFY: {
            const auto& moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            // Thrown out: it must not stand about on the desktop.
            if (moved.window == window && moved.parent == x.root()) {
                xcb_unmap_window(x.xcb(), window);
                x.flush();
            }
            return;
        }
        case XCB_CONFIGURE_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (change.window == window) sizeChanged(change.width, change.height);
            return;
        }
        case XCB_EXPOSE: {
            const auto& exposed = reinterpret_cast<const xcb_expose_event_t&>(event);
            if (exposed.window == window && exposed.count == 0) draw();
            return;
        }
        case XCB_BUTTON_RELEASE:
            return handleRelease(reinterpret_cast<const xcb_button_release_event_t&>(event));
        default:
            return;
    }
}

void TrayWindow::handleRelease(const xcb_button_release_event_t& event) const {
    if (event.event != window) return;
    const bool isInside =
        event.event_x >= 0 && event.event_y >= 0 && event.event_x < width && event.event_y < height;
    if (!isInside) return;
    const bool control = (event.state & XCB_MOD_MASK_CONTROL) != 0;
    if (event.detail == XCB_BUTTON_INDEX_1) {
        clicked({StatusItemEvent::Type::leftMouseUp, control});
    } else if (event.detail == XCB_BUTTON_INDEX_3) {
        clicked({StatusItemEvent::Type::rightMouseUp, control});
    }
}

/// Another tray may have taken the place of the one that has gone.
void TrayWindow::tryAgain() {
    runLoop.after(patience, [this, alive = life.watch()] {
        if (!alive.expired() && wanted && tray == XCB_WINDOW_NONE) lookForTray();
    });
    patience = std::min<RunLoop::Duration>(patience * 2, longestPatience);
}

void TrayWindow::lookForTray() {
    // Or it could go between the answer and the watch on it.
    xcb_grab_server(x.xcb());
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        x.xcb(), xcb_get_selection_owner(x.xcb(), selection), nullptr));
    tray = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
    if (tray != XCB_WINDOW_NONE) x.select(tray, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_ungrab_server(x.xcb());
    x.flush();
    if (tray != XCB_WINDOW_NONE) dock();
}

void TrayWindow::dock() {
    create();
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = tray;
    message.type = x.atom("_NET_SYSTEM_TRAY_OPCODE");
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = requestDock;
    message.data.data32[2] = window;
    xcb_send_event(x.xcb(), 0, tray, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    x.flush();
}

void TrayWindow::create() {
    visual = visualFor(x, tray);
    const std::uint8_t depth = depthOf(x, visual);
    colormap = xcb_generate_id(x.xcb());
    xcb_create_colormap(x.xcb(), XCB_COLORMAP_ALLOC_NONE, colormap, x.root(), visual);
    window = xcb_generate_id(x.xcb());
    width = height = naturalSize;
    const bool isOfParentsDepth = depth == x.screen().root_depth;
    const std::uint32_t mask =
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {
        // Transparent by alpha where the tray knows how, else by showing what lies below.
        isOfParentsDepth ? std::uint32_t{XCB_BACK_PIXMAP_PARENT_RELATIVE}
                         : std::uint32_t{XCB_BACK_PIXMAP_NONE},
        0,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
            XCB_EVENT_MASK_BUTTON_RELEASE,
        colormap};
    xcb_create_window(x.xcb(), depth, window, x.root(), -100, -100, naturalSize, naturalSize, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual, mask, values);
    setProperties();
}

void TrayWindow::setProperties() const {
    constexpr std::string_view className("Quorvel\0Quorvel", 16);
    setText(x, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, className);
    setText(x, window, XCB_ATOM_WM_NAME, x.atom("UTF8_STRING"), content.accessibilityLabel);
    setText(x, window, x.atom("_NET_WM_NAME"), x.atom("UTF8_STRING"), content.accessibilityLabel);
    const auto set32 = [this](xcb_atom_t name, xcb_atom_t type,
                              const std::vector<std::uint32_t>& values) {
        xcb_change_property(x.xcb(), XCB_PROP_MODE_REPLACE, window, name, type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    };
    set32(x.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(getpid())});
    set32(x.atom("_XEMBED_INFO"), x.atom("_XEMBED_INFO"), {xembedVersion, xembedMapped});
    // Trays that keep their items' sizes look at the least one.
    constexpr std::uint32_t programMinimumSize = 1 << 4;
    std::vector<std::uint32_t> hints(18, 0);
    hints[0] = programMinimumSize;
    hints[5] = hints[6] = naturalSize;
    set32(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints);
}

void TrayWindow::destroy() {
    if (window != XCB_WINDOW_NONE) {
        xcb_discard_reply(x.xcb(), xcb_destroy_window_checked(x.xcb(), window).sequence);
    }
    if (colormap != XCB_NONE) xcb_free_colormap(x.xcb(), colormap);
    window = XCB_WINDOW_NONE;
    colormap = XCB_NONE;
    x.flush();
}

void TrayWindow::leaveTray() {
    destroy();
    tray = XCB_WINDOW_NONE;
}

void TrayWindow::sizeChanged(int newWidth, int newHeight) {
    if (newWidth == width && newHeight == height) return;
    width = newWidth;
    height = newHeight;
    draw();
}

void TrayWindow::draw() const {
    const IconImage icon = iconOfSize(content.icons, std::min({width, height, largestSize}));
    const xcb_render_query_pict_formats_reply_t* const formats =
        xcb_render_util_query_formats(x.xcb());
    if (formats == nullptr || icon.size <= 0) return;
    const xcb_render_pictforminfo_t* const argb =
        xcb_render_util_find_standard_format(formats, XCB_PICT_STANDARD_ARGB_32);
    const xcb_render_pictvisual_t* const own = xcb_render_util_find_visual_format(formats, visual);
    if (argb == nullptr || own == nullptr) return;

    // A window that is just being destroyed by its tray is no error of ours.
    std::vector<xcb_void_cookie_t> requests;
    const auto size = static_cast<std::uint16_t>(icon.size);
    const xcb_pixmap_t pixmap = xcb_generate_id(x.xcb());
    const xcb_gcontext_t context = xcb_generate_id(x.xcb());
    requests.push_back(xcb_create_pixmap_checked(x.xcb(), 32, pixmap, x.root(), size, size));
    requests.push_back(xcb_create_gc_checked(x.xcb(), context, pixmap, 0, nullptr));
    const auto pixels = premultiplied(icon);
    requests.push_back(xcb_put_image_checked(x.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context,
                                             size, size, 0, 0, 0, 32,
                                             static_cast<std::uint32_t>(pixels.size() * 4),
                                             reinterpret_cast<const std::uint8_t*>(pixels.data())));

    const xcb_render_picture_t source = xcb_generate_id(x.xcb());
    const xcb_render_picture_t target = xcb_generate_id(x.xcb());
    requests.push_back(
        xcb_render_create_picture_checked(x.xcb(), source, pixmap, argb->id, 0, nullptr));
    requests.push_back(
        xcb_render_create_picture_checked(x.xcb(), target, window, own->format, 0, nullptr));
    const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(width),
                              static_cast<std::uint16_t>(height)};
    if (depthOf(x, visual) == x.screen().root_depth) {
        requests.push_back(xcb_clear_area_checked(x.xcb(), 0, window, 0, 0, 0, 0));
    } else {
        requests.push_back(xcb_render_fill_rectangles_checked(x.xcb(), XCB_RENDER_PICT_OP_SRC,
                                                              target, {0, 0, 0, 0}, 1, &all));
    }
    requests.push_back(xcb_render_composite_checked(
        x.xcb(), XCB_RENDER_PICT_OP_OVER, source, XCB_RENDER_PICTURE_NONE, target, 0, 0, 0, 0,
        static_cast<std::int16_t>((width - icon.size) / 2),
        static_cast<std::int16_t>((height - icon.size) / 2), size, size));
    requests.push_back(xcb_render_free_picture_checked(x.xcb(), source));
    requests.push_back(xcb_render_free_picture_checked(x.xcb(), target));
    requests.push_back(xcb_free_gc_checked(x.xcb(), context));
    requests.push_back(xcb_free_pixmap_checked(x.xcb(), pixmap));
    for (const xcb_void_cookie_t request : requests) {
        xcb_discard_reply(x.xcb(), request.sequence);
    }
    x.flush();
}

}  // namespace quorvel::native
