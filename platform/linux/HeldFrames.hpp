#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/linux/FrameReader.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Where the held windows stand, kept up to date by the server's events: to know them all again
/// takes a reading only of those to which something has happened.
class HeldFrames {
public:
    /// For how long a window that is withdrawn or gets another frame still counts as where it was:
    /// when one window manager hands it over to the next it is both, and for a moment anywhere.
    static constexpr std::chrono::milliseconds handover{500};

    HeldFrames(XConnection& x, FrameReader& frames);

    /// Anew, if it is there already: nothing that was known of it counts.
    void add(xcb_window_t client);
    void remove(xcb_window_t client);

    /// Asks about the windows of which something is not known; `take` waits for the answers.
    void ask();
    void take();

    /// What the last `ask` and `take` have found. Outer: not known, or changed by us since. Inner:
    /// the window is gone.
    std::optional<std::optional<WindowReading>> known(xcb_window_t client) const;
    /// Asks the server at once, about any window. Nothing when it is gone.
    std::optional<WindowReading> read(xcb_window_t client);
    /// We are about to change it.
    void invalidate(xcb_window_t client);

    /// Something has happened to a held window.
    [[nodiscard]] Subscription onChange(std::function<void()> handler) {
        return changes.add(std::move(handler));
    }

private:
    using Clock = FrameReader::Clock;

    struct Entry {
        std::optional<WindowReading> reading;
        std::optional<WindowReading> settled;
        std::optional<Clock::time_point> unsettledSince;
        bool wasChanged = false;  ///< by us, after `settled`
        bool isKnown = false;
        std::uint64_t observation = 0;  ///< the last one that it was part of
        /// Of the request that the reading answers: events up to there are part of it.
        std::uint32_t sequence = 0;
    };

    /// What a reading that was made now means.
    std::optional<WindowReading> judged(xcb_window_t client, Entry& entry,
                                        std::optional<WindowReading> reading) const;
    Entry* subjectOf(const xcb_generic_event_t& event);
    bool isEndOfClient(const xcb_generic_event_t& event) const;

    XConnection& x;
    FrameReader& frames;
    std::unordered_map<xcb_window_t, Entry> entries;         ///< by client
    std::unordered_map<xcb_window_t, xcb_window_t> clients;  ///< of their frames
    std::vector<FrameReader::Question> questions;
    std::uint64_t observations = 0;
    Subscribers<> changes;
    Subscription arrivals;
    Subscription events;
};

}  // namespace quorvel::native
