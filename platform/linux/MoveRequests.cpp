#include "platform/linux/MoveRequests.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvel::native {
namespace {

/// What fits on the wire; a cast of anything beyond would be undefined.
std::uint32_t coordinate(double value) {
    const double fitting = std::isnan(value) ? 0 : std::clamp(value, -32768.0, 32767.0);
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(fitting)));
}

std::uint32_t length(double value) {
    const double fitting = std::isnan(value) ? 1 : std::clamp(value, 1.0, 32767.0);
    return static_cast<std::uint32_t>(std::lround(fitting));
}

}  // namespace

void sendMoveResize(const XConnection& x, xcb_window_t client, Point corner,
                    std::optional<Size> clientSize) {
    constexpr std::uint32_t northWest = 1;
    constexpr std::uint32_t hasX = 1U << 8;
    constexpr std::uint32_t hasY = 1U << 9;
    constexpr std::uint32_t hasSize = (1U << 10) | (1U << 11);
    constexpr std::uint32_t fromPager = 2U << 12;
    const std::uint32_t flags = northWest | hasX | hasY | (clientSize ? hasSize : 0) | fromPager;
    x.sendToRoot(
        client, "_NET_MOVERESIZE_WINDOW",
        {flags, coordinate(corner.x), coordinate(corner.y),
         clientSize ? length(clientSize->width) : 0, clientSize ? length(clientSize->height) : 0});
}

void sendConfigure(const XConnection& x, xcb_window_t client, Point corner,
                   std::optional<Size> clientSize) {
    std::uint16_t mask = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
    std::array<std::uint32_t, 4> values{coordinate(corner.x), coordinate(corner.y)};
    if (clientSize) {
        mask |= XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
        values[2] = length(clientSize->width);
        values[3] = length(clientSize->height);
    }
    const auto cookie = xcb_configure_window_checked(x.xcb(), client, mask, values.data());
    // The next reading tells when the window has gone; the error itself tells no more.
    xcb_discard_reply(x.xcb(), cookie.sequence);
    x.flush();
}

std::uint8_t overrideFrame(const XConnection& x, xcb_window_t frame, bool isOverrideRedirect,
                           Point outerCorner) {
    xcb_connection_t* const connection = x.xcb();
    const std::array<std::uint32_t, 2> corner{coordinate(outerCorner.x), coordinate(outerCorner.y)};
    constexpr std::uint16_t both = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
    if (isOverrideRedirect) {
        return x.check(xcb_configure_window_checked(connection, frame, both, corner.data()));
    }
    // Nobody may see the attribute changed, and it must not stay so if we end in between: the
    // server carries out what one write brings it while we hold it.
    const std::uint32_t on = 1;
    const std::uint32_t off = 0;
    x.flush();
    xcb_grab_server(connection);
    const auto set =
        xcb_change_window_attributes_checked(connection, frame, XCB_CW_OVERRIDE_REDIRECT, &on);
    const auto move = xcb_configure_window_checked(connection, frame, both, corner.data());
    const auto reset =
        xcb_change_window_attributes_checked(connection, frame, XCB_CW_OVERRIDE_REDIRECT, &off);
    xcb_ungrab_server(connection);
    // The last one first, so that the three answers take one round trip.
    const std::uint8_t errors[]{x.check(reset), x.check(move), x.check(set)};
    for (const std::uint8_t error : {errors[1], errors[2], errors[0]}) {
        if (error != 0) return error;
    }
    return 0;
}

}  // namespace quorvel::native
