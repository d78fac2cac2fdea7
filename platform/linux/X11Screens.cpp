#include "platform/linux/X11Screens.hpp"

#include <xcb/randr.h>

#include <algorithm>

#include "platform/linux/DisplayIdentity.hpp"

namespace quorvel::native {

namespace {

constexpr RunLoop::Duration settlingTime = std::chrono::milliseconds(100);

/// EDIDs have up to four blocks in practice; the first is enough for us.
constexpr std::uint32_t edidWords = 128 / 4;

}  // namespace

struct X11Screens::Monitor {
    std::uint32_t number = 0;
    bool isPrimary = false;
    Rect frameInRoot;
    ConnectedDisplay display;
};

X11Screens::X11Screens(XConnection& x, RunLoop& runLoop)
    : x(x),
      runLoop(runLoop),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })) {
    // Monitors that are set by hand change without any RandR event, but the root is reconfigured.
    x.selectOnRoot(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(x.xcb(), &xcb_randr_id);
    if (randr != nullptr && randr->present != 0) {
        firstRandrEvent = randr->first_event;
        const Reply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
            x.xcb(), xcb_randr_query_version(x.xcb(), 1, 5), nullptr));
        hasMonitors = version && (version->major_version > 1 ||
                                  (version->major_version == 1 && version->minor_version >= 5));
        xcb_randr_select_input(
            x.xcb(), x.root(),
            XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
    }
    announced = current();
    isOwedAnAnnouncement = false;
}

std::vector<Screen> X11Screens::screens() const {
    return current().screens;
}

Subscription X11Screens::onChange(std::function<void()> handler) {
    return subscribers.add(std::move(handler));
}

Point X11Screens::axOriginInRoot() const {
    return current().axOriginInRoot;
}

double X11Screens::primaryScreenMaxY() const {
    return current().primaryScreenMaxY;
}

std::vector<Rect> X11Screens::framesInRoot() const {
    const Arrangement& now = current();
    std::vector<Rect> frames;
    for (const Screen& screen : now.screens) {
        Rect frame = flipped(screen.frameCocoa, now.primaryScreenMaxY);
        frame.x += now.axOriginInRoot.x;
        frame.y += now.axOriginInRoot.y;
        frames.push_back(frame);
    }
    return frames;
}

const X11Screens::Arrangement& X11Screens::current() const {
    if (!isStale) return arrangement;
    isStale = false;
    arrangement = read();
    if (arrangement != announced) isOwedAnAnnouncement = true;
    return arrangement;
}

X11Screens::Arrangement X11Screens::read() const {
    // Without any screen the spaces stay as they were.
    Arrangement arrangement{
        {}, this->arrangement.axOriginInRoot, this->arrangement.primaryScreenMaxY};
    std::vector<Monitor> monitors = readMonitors();
    std::vector<Monitor> distinct;
    for (Monitor& monitor : monitors) {
        const bool isKnown = std::any_of(
            distinct.begin(), distinct.end(),
            [&](const Monitor& other) { return other.frameInRoot == monitor.frameInRoot; });
        if (!isKnown && !monitor.frameInRoot.isEmpty()) distinct.push_back(std::move(monitor));
    }
    if (distinct.empty()) return arrangement;

    auto primary = std::find_if(distinct.begin(), distinct.end(), [](const Monitor& monitor) {
        return monitor.frameInRoot.origin() == Point{};
    });
    if (primary == distinct.end()) {
        primary = std::find_if(distinct.begin(), distinct.end(),
                               [](const Monitor& monitor) { return monitor.isPrimary; });
    }
    if (primary != distinct.end()) std::rotate(distinct.begin(), primary, primary + 1);

    const Rect first = distinct.front().frameInRoot;
    arrangement.axOriginInRoot = first.origin();
    arrangement.primaryScreenMaxY = first.height;
    std::vector<ConnectedDisplay> displays;
    for (const Monitor& monitor : distinct) displays.push_back(monitor.display);
    const std::vector<std::string> identifiers = displayIdentifiers(displays);
    for (std::size_t i = 0; i < distinct.size(); ++i) {
        Rect frameAX = distinct[i].frameInRoot;
        frameAX.x -= first.x;
        frameAX.y -= first.y;
        arrangement.screens.push_back({distinct[i].number, identifiers[i], displays[i].name(),
                                       flipped(frameAX, arrangement.primaryScreenMaxY),
                                       displays[i].isBuiltin()});
    }
    return arrangement;
}

std::vector<X11Screens::Monitor> X11Screens::readMonitors() const {
    std::vector<Monitor> monitors;
    if (!hasMonitors) {
        const Reply<xcb_get_geometry_reply_t> root(
            xcb_get_geometry_reply(x.xcb(), xcb_get_geometry(x.xcb(), x.root()), nullptr));
        if (root) {
            monitors.push_back({x.root(),
                                true,
                                {0, 0, double(root->width), double(root->height)},
                                {"screen", {}}});
        }
        return monitors;
    }

    const xcb_atom_t edidAtom = x.atom("EDID");
    const Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        x.xcb(), xcb_randr_get_monitors(x.xcb(), x.root(), 1), nullptr));
    if (!reply) return monitors;
    struct Requests {
        xcb_get_atom_name_cookie_t name;
        xcb_randr_output_t output;
        xcb_randr_get_output_info_cookie_t info;
        xcb_randr_get_output_property_cookie_t edid;
    };
    std::vector<Requests> requests;
    for (auto i = xcb_randr_get_monitors_monitors_iterator(reply.get()); i.rem > 0;
         xcb_randr_monitor_info_next(&i)) {
        const xcb_randr_monitor_info_t& info = *i.data;
        monitors.push_back(
            {info.name,
             info.primary != 0,
             {double(info.x), double(info.y), double(info.width), double(info.height)},
             {}});
        Requests asked{xcb_get_atom_name(x.xcb(), info.name), XCB_NONE, {}, {}};
        if (xcb_randr_monitor_info_outputs_length(&info) > 0) {
            asked.output = *xcb_randr_monitor_info_outputs(&info);
            asked.info = xcb_randr_get_output_info(x.xcb(), asked.output, reply->timestamp);
            asked.edid = xcb_randr_get_output_property(x.xcb(), asked.output, edidAtom,
                                                       XCB_ATOM_ANY, 0, edidWords, 0, 0);
        }
        requests.push_back(asked);
    }
    for (std::size_t i = 0; i < requests.size(); ++i) {
        ConnectedDisplay& display = monitors[i].display;
        const Reply<xcb_get_atom_name_reply_t> name(
            xcb_get_atom_name_reply(x.xcb(), requests[i].name, nullptr));
        if (name) {
            display.connector.assign(
                xcb_get_atom_name_name(name.get()),
                static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
        }
        if (requests[i].output == XCB_NONE) continue;
        const Reply<xcb_randr_get_output_info_reply_t> info(
            xcb_randr_get_output_info_reply(x.xcb(), requests[i].info, nullptr));
        if (info && info->name_len > 0) {
            display.connector.assign(
                reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                info->name_len);
        }
        const Reply<xcb_randr_get_output_property_reply_t> edid(
            xcb_randr_get_output_property_reply(x.xcb(), requests[i].edid, nullptr));
        if (edid && edid->format == 8) {
            display.edid = parseEdid(
                {xcb_randr_get_output_property_data(edid.get()),
                 static_cast<std::size_t>(xcb_randr_get_output_property_data_length(edid.get()))});
        }
    }
    return monitors;
}

void X11Screens::handle(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7F;
    const bool isRandr = firstRandrEvent != 0 &&
                         (type == firstRandrEvent || type == firstRandrEvent + XCB_RANDR_NOTIFY);
    const bool isRoot =
        type == XCB_CONFIGURE_NOTIFY &&
        reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == x.root();
    if (!isRandr && !isRoot) return;
    isStale = true;
    lastEvent = runLoop.uptimeNanoseconds();
    if (!isSettling) announceWhenSettled(settlingTime);
}

void X11Screens::announceWhenSettled(RunLoop::Duration delay) {
    isSettling = true;
    runLoop.after(delay, [this, alive = life.watch()] {
        if (alive.expired()) return;
        const RunLoop::Duration quiet(runLoop.uptimeNanoseconds() - lastEvent);
        if (quiet < settlingTime) {
            announceWhenSettled(settlingTime - quiet);
            return;
        }
        isSettling = false;
        current();
        if (!std::exchange(isOwedAnAnnouncement, false)) return;
        announced = arrangement;
        subscribers.notify();
    });
}

}  // namespace quorvel::native
