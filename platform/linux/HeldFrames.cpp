#include "platform/linux/HeldFrames.hpp"

#include <utility>

namespace quorvel::native {
namespace {

bool isInReading(const XConnection& x, xcb_atom_t property) {
    return property == x.atom("_NET_WM_STATE") || property == x.atom("WM_STATE") ||
           property == x.atom("_NET_FRAME_EXTENTS") || property == x.atom("_GTK_FRAME_EXTENTS");
}

/// The window of which an event may have changed the reading.
xcb_window_t windowIn(const XConnection& x, const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
        case XCB_CONFIGURE_NOTIFY:
            return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
        case XCB_PROPERTY_NOTIFY: {
            const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (isInReading(x, property.atom)) return property.window;
            return XCB_WINDOW_NONE;
        }
        case XCB_REPARENT_NOTIFY:
            return reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window;
        case XCB_MAP_NOTIFY:
            return reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
        case XCB_UNMAP_NOTIFY:
            return reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window;
        case XCB_DESTROY_NOTIFY:
            return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        default:
            return XCB_WINDOW_NONE;
    }
}

bool isBefore(std::uint32_t sequence, std::uint32_t other) {
    return static_cast<std::int32_t>(sequence - other) < 0;
}

}  // namespace

HeldFrames::HeldFrames(XConnection& x, FrameReader& frames)
    : x(x),
      frames(frames),
      arrivals(x.onArrival([this](const xcb_generic_event_t& event) {
          Entry* const entry = subjectOf(event);
          if (entry && !isBefore(event.full_sequence, entry->sequence)) entry->isKnown = false;
          // The next window with this identifier is another one.
          if (entry && isEndOfClient(event)) *entry = Entry{};
      })),
      events(x.onEvent([this](const xcb_generic_event_t& event) {
          if (subjectOf(event)) changes.notify();
      })) {}

bool HeldFrames::isEndOfClient(const xcb_generic_event_t& event) const {
    return (event.response_type & 0x7F) == XCB_DESTROY_NOTIFY &&
           entries.contains(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
}

HeldFrames::Entry* HeldFrames::subjectOf(const xcb_generic_event_t& event) {
    if (entries.empty()) return nullptr;
    xcb_window_t window = windowIn(x, event);
    if (const auto frame = clients.find(window); frame != clients.end()) window = frame->second;
    const auto found = entries.find(window);
    return found == entries.end() ? nullptr : &found->second;
}

void HeldFrames::add(xcb_window_t client) {
    remove(client);
    entries.emplace(client, Entry{});
}

void HeldFrames::remove(xcb_window_t client) {
    entries.erase(client);
    std::erase_if(clients, [&](const auto& entry) { return entry.second == client; });
}

void HeldFrames::invalidate(xcb_window_t client) {
    if (const auto found = entries.find(client); found != entries.end()) {
        found->second.isKnown = false;
        found->second.observation = 0;
        found->second.wasChanged = true;
    }
}

void HeldFrames::ask() {
    ++observations;
    std::vector<xcb_window_t> unknown;
    for (auto& [client, entry] : entries) {
        if (entry.isKnown) {
            entry.observation = observations;
        } else {
            unknown.push_back(client);
        }
    }
    questions = frames.ask(unknown);
}

void HeldFrames::take() {
    for (const FrameReader::Question& question : std::exchange(questions, {})) {
        auto reading = frames.answer(question);
        const auto found = entries.find(question.client);
        if (found == entries.end()) continue;
        Entry& entry = found->second;
        entry.reading = judged(question.client, entry, std::move(reading));
        entry.observation = observations;
        // Known only from the moment on at which the server tells of every change of it.
        const bool isWatched = !entry.reading || clients.contains(entry.reading->frame);
        entry.isKnown = isWatched && !question.parents.empty() && !entry.unsettledSince;
        if (entry.isKnown) entry.sequence = question.parents.front().sequence;
        if (!isWatched) {
            frames.watch(*entry.reading, true);
            std::erase_if(clients,
                          [&](const auto& other) { return other.second == question.client; });
            clients.emplace(entry.reading->frame, question.client);
        }
    }
}

std::optional<WindowReading> HeldFrames::judged(xcb_window_t client, Entry& entry,
                                                std::optional<WindowReading> reading) const {
    // Where it was before a change of ours is no place to believe in.
    const bool hasAnotherFrame =
        reading && entry.settled && !entry.wasChanged && reading->frame != entry.settled->frame;
    const bool isSettled = reading ? !hasAnotherFrame : !frames.exists(client);
    const auto now = Clock::now();
    if (!isSettled && entry.settled) {
        if (!entry.unsettledSince) entry.unsettledSince = now;
        if (now - *entry.unsettledSince < handover) return entry.settled;
    }
    entry.unsettledSince.reset();
    entry.wasChanged = false;
    entry.settled = reading;
    return reading;
}

std::optional<WindowReading> HeldFrames::read(xcb_window_t client) {
    auto reading = frames.read(client);
    const auto found = entries.find(client);
    return found == entries.end() ? reading : judged(client, found->second, std::move(reading));
}

std::optional<std::optional<WindowReading>> HeldFrames::known(xcb_window_t client) const {
    const auto found = entries.find(client);
    if (found == entries.end() || found->second.observation != observations) return std::nullopt;
    return found->second.reading;
}

}  // namespace quorvel::native
