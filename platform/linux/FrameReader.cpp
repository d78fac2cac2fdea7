#include "platform/linux/FrameReader.hpp"

#include <algorithm>

#include "platform/linux/PropertyReply.hpp"

namespace quorvel::native {
namespace {

// Deeper than any window manager nests, and an end for a tree that changes while we climb it.
constexpr std::size_t deepest = 16;

// Window managers carry out what they are asked in one go; a pause this long ends it.
constexpr auto quiet = std::chrono::milliseconds(40);

xcb_get_property_cookie_t askProperty(const XConnection& x, xcb_window_t window,
                                      std::string_view name) {
    return xcb_get_property(x.xcb(), 0, window, x.atom(name), XCB_ATOM_ANY, 0, 64);
}

std::vector<std::uint32_t> items(const XConnection& x, xcb_get_property_cookie_t cookie) {
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x.xcb(), cookie, nullptr));
    return numbersIn(reply.get(), XCB_ATOM_ANY);
}

Rect withBorder(const xcb_get_geometry_reply_t& geometry, Point outerCorner) {
    return {outerCorner.x, outerCorner.y, geometry.width + 2.0 * geometry.border_width,
            geometry.height + 2.0 * geometry.border_width};
}

Rect trimmed(const Rect& rect, const Extents& by) {
    return {rect.x + by.left, rect.y + by.top, rect.width - by.left - by.right,
            rect.height - by.top - by.bottom};
}

Rect padded(const Rect& rect, const Extents& by) {
    return trimmed(rect, {-by.left, -by.right, -by.top, -by.bottom});
}

/// What one round trip brings of a window and its frame.
struct Answers {
    Reply<xcb_get_geometry_reply_t> geometry;
    Reply<xcb_get_geometry_reply_t> frameGeometry;
    Reply<xcb_translate_coordinates_reply_t> place;
    Reply<xcb_get_window_attributes_reply_t> attributes;
    Reply<xcb_get_window_attributes_reply_t> frameAttributes;
    Extents shadow;
    Extents decoration;
    std::vector<std::uint32_t> states;
    std::vector<std::uint32_t> management;

    bool isWithdrawn() const {
        const bool isManaged = !management.empty() && management[0] != 0;
        return !isManaged && attributes->map_state == XCB_MAP_STATE_UNMAPPED;
    }
};

FillingStates fillingStates(const XConnection& x, const std::vector<std::uint32_t>& states) {
    const auto has = [&](std::string_view name) {
        return std::find(states.begin(), states.end(), x.atom(name)) != states.end();
    };
    return {has("_NET_WM_STATE_FULLSCREEN"), has("_NET_WM_STATE_MAXIMIZED_VERT"),
            has("_NET_WM_STATE_MAXIMIZED_HORZ")};
}

WindowReading readingOf(const XConnection& x, xcb_window_t client, xcb_window_t frame,
                        const Answers& answers) {
    WindowReading reading;
    reading.client = client;
    reading.frame = frame;
    reading.clientArea = {double(answers.place->dst_x), double(answers.place->dst_y),
                          double(answers.geometry->width), double(answers.geometry->height)};
    reading.clientBorder = answers.geometry->border_width;
    reading.frameArea = withBorder(*answers.frameGeometry, {double(answers.frameGeometry->x),
                                                            double(answers.frameGeometry->y)});
    reading.seen =
        seenArea(withBorder(*answers.geometry, {reading.clientArea.x - reading.clientBorder,
                                                reading.clientArea.y - reading.clientBorder}),
                 reading.frameArea, answers.shadow, answers.decoration);
    reading.drawsOwnShadow = answers.shadow.any();
    reading.frameIsOverrideRedirect = answers.frameAttributes->override_redirect != 0;
    reading.states = fillingStates(x, answers.states);
    return reading;
}

enum class Concern { none, other, geometry };

/// Whether the event may have changed what a reading of the window gives.
Concern concernOf(const WindowReading& window, const xcb_generic_event_t& event) {
    xcb_window_t subject = XCB_WINDOW_NONE;
    switch (event.response_type & 0x7F) {
        case XCB_CONFIGURE_NOTIFY:
            // A sent one is an answer too: the window manager has looked at what was asked.
            subject = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
            return subject == window.frame || subject == window.client ? Concern::geometry
                                                                       : Concern::none;
        case XCB_PROPERTY_NOTIFY:
            subject = reinterpret_cast<const xcb_property_notify_event_t&>(event).window;
            break;
        case XCB_REPARENT_NOTIFY:
            subject = reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window;
            break;
        case XCB_UNMAP_NOTIFY:
            subject = reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window;
            break;
        case XCB_DESTROY_NOTIFY:
            subject = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            break;
        default:
            break;
    }
    return subject == window.client ? Concern::other : Concern::none;
}

bool isInside(const Rect& inner, const Rect& outer) {
    return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() &&
           inner.minY() >= outer.minY() && inner.maxY() <= outer.maxY();
}

}  // namespace

Extents extentsIn(const std::vector<std::uint32_t>& values) {
    constexpr std::uint32_t largest = 0x7FFF;  // of a coordinate on the wire
    if (values.size() < 4) return {};
    for (std::size_t i = 0; i < 4; ++i) {
        if (values[i] > largest) return {};
    }
    return {static_cast<double>(values[0]), static_cast<double>(values[1]),
            static_cast<double>(values[2]), static_cast<double>(values[3])};
}

Rect seenArea(const Rect& clientWithBorder, const Rect& frame, const Extents& shadow,
              const Extents& decoration) {
    if (shadow.any() && clientWithBorder == frame) {
        const Rect content = trimmed(frame, shadow);
        if (!content.isEmpty()) return content;
    }
    if (decoration.any()) {
        const Rect decorated = padded(clientWithBorder, decoration);
        // A shaded window is larger than its frame: then the frame is what is left of it.
        if (isInside(decorated, frame)) return decorated;
    }
    return frame;
}

FrameReader::FrameReader(XConnection& x)
    : x(x), events(x.onEvent([this](const xcb_generic_event_t& event) {
          if ((event.response_type & 0x7F) != XCB_DESTROY_NOTIFY) return;
          lineages.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
      })) {}

bool FrameReader::trace(xcb_window_t client, Lineage& lineage) const {
    lineage.clear();
    for (xcb_window_t window = client; lineage.size() < deepest;) {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(x.xcb(), xcb_query_tree(x.xcb(), window), nullptr));
        if (!tree || tree->parent == XCB_WINDOW_NONE) return false;
        lineage.push_back(window);
        if (tree->parent == tree->root) return true;
        window = tree->parent;
    }
    return false;
}

FrameReader::Question FrameReader::ask(xcb_window_t client, const Lineage& lineage) const {
    xcb_connection_t* const connection = x.xcb();
    const xcb_window_t frame = lineage.back();
    Question question;
    question.client = client;
    question.lineage = lineage;
    for (const xcb_window_t window : lineage) {
        question.parents.push_back(xcb_query_tree(connection, window));
    }
    question.geometry = xcb_get_geometry(connection, client);
    question.frameGeometry = xcb_get_geometry(connection, frame);
    question.place = xcb_translate_coordinates(connection, client, x.root(), 0, 0);
    question.attributes = xcb_get_window_attributes(connection, client);
    question.frameAttributes = xcb_get_window_attributes(connection, frame);
    question.shadow = askProperty(x, client, "_GTK_FRAME_EXTENTS");
    question.decoration = askProperty(x, client, "_NET_FRAME_EXTENTS");
    question.states = askProperty(x, client, "_NET_WM_STATE");
    question.management = askProperty(x, client, "WM_STATE");
    return question;
}

std::optional<WindowReading> FrameReader::answer(const Question& question,
                                                 bool& isOfThisLineage) const {
    xcb_connection_t* const connection = x.xcb();
    const Lineage& lineage = question.lineage;
    isOfThisLineage = true;
    for (std::size_t i = 0; i < lineage.size(); ++i) {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, question.parents[i], nullptr));
        const xcb_window_t parent = i + 1 < lineage.size() ? lineage[i + 1] : x.root();
        isOfThisLineage = isOfThisLineage && tree && tree->parent == parent;
    }
    Answers answers;
    answers.geometry.reset(xcb_get_geometry_reply(connection, question.geometry, nullptr));
    answers.frameGeometry.reset(
        xcb_get_geometry_reply(connection, question.frameGeometry, nullptr));
    answers.place.reset(xcb_translate_coordinates_reply(connection, question.place, nullptr));
    answers.attributes.reset(
        xcb_get_window_attributes_reply(connection, question.attributes, nullptr));
    answers.frameAttributes.reset(
        xcb_get_window_attributes_reply(connection, question.frameAttributes, nullptr));
    answers.shadow = extentsIn(items(x, question.shadow));
    answers.decoration = extentsIn(items(x, question.decoration));
    answers.states = items(x, question.states);
    answers.management = items(x, question.management);
    isOfThisLineage = isOfThisLineage && answers.geometry && answers.frameGeometry &&
                      answers.place && answers.attributes && answers.frameAttributes;
    if (!isOfThisLineage || answers.isWithdrawn()) return std::nullopt;
    return readingOf(x, question.client, lineage.back(), answers);
}

std::vector<FrameReader::Question> FrameReader::ask(const std::vector<xcb_window_t>& clients) {
    std::vector<Question> questions;
    for (const xcb_window_t client : clients) {
        const auto known = lineages.find(client);
        if (known != lineages.end() && !known->second.empty()) {
            questions.push_back(ask(client, known->second));
        } else {
            questions.emplace_back().client = client;
        }
    }
    return questions;
}

std::optional<WindowReading> FrameReader::answer(const Question& question) {
    if (question.lineage.empty()) return read(question.client);
    bool isOfThisLineage = false;
    auto reading = answer(question, isOfThisLineage);
    if (!isOfThisLineage) return read(question.client);
    if (!reading) lineages.erase(question.client);
    return reading;
}

std::optional<WindowReading> FrameReader::read(xcb_window_t client) {
    Lineage& lineage = lineages[client];
    // A window manager that comes or goes changes the lineage; a third change in between is one
    // too many to wait for.
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (lineage.empty() && !trace(client, lineage)) break;
        bool isOfThisLineage = false;
        auto reading = answer(ask(client, lineage), isOfThisLineage);
        if (isOfThisLineage && !reading) break;
        if (reading) return reading;
        lineage.clear();
    }
    lineages.erase(client);
    return std::nullopt;
}

bool FrameReader::exists(xcb_window_t client) const {
    const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        x.xcb(), xcb_get_window_attributes(x.xcb(), client), nullptr));
    return attributes != nullptr;
}

void FrameReader::watch(const WindowReading& window, bool statesToo) const {
    x.select(window.frame, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    x.select(window.client, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (statesToo) x.select(window.client, XCB_EVENT_MASK_PROPERTY_CHANGE);
}

std::optional<WindowReading> FrameReader::await(
    xcb_window_t client, const std::function<bool(const WindowReading&)>& done,
    Clock::time_point latest) {
    return await(client, done, latest, false);
}

std::optional<WindowReading> FrameReader::awaitAnswer(
    xcb_window_t client, const std::function<bool(const WindowReading&)>& done,
    Clock::time_point latest) {
    return await(client, done, latest, true);
}

std::optional<WindowReading> FrameReader::await(
    xcb_window_t client, const std::function<bool(const WindowReading&)>& done,
    Clock::time_point latest, bool endsWhenQuiet) {
    xcb_window_t watchedFrame = XCB_WINDOW_NONE;
    while (true) {
        const auto reading = read(client);
        if (!reading || done(*reading) || Clock::now() >= latest) return reading;
        if (watchedFrame != XCB_WINDOW_NONE && watchedFrame != reading->frame) watch(*reading);
        watchedFrame = reading->frame;
        Concern concern = Concern::none;
        x.waitFor(
            [&](const xcb_generic_event_t& event) {
                concern = concernOf(*reading, event);
                return concern != Concern::none;
            },
            latest);
        if (concern == Concern::none) return reading;
        if (endsWhenQuiet && concern == Concern::geometry)
            latest = std::min(latest, Clock::now() + quiet);
    }
}

}  // namespace quorvel::native
