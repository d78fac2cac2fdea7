#pragma once

#include <cstdint>
#include <variant>

namespace quorvel {

/// Whether the cursor has rested somewhere for long enough. A plain value that is stepped once a
/// poll; all it knows of the world are the arguments.
struct HotZoneState {
    /// Ready; the cursor is not dwelling.
    struct Armed {
        bool operator==(const Armed&) const = default;
    };
    struct Dwelling {
        std::uint64_t since = 0;  ///< uptime in nanoseconds

        bool operator==(const Dwelling&) const = default;
    };
    /// It has rested long enough, once, and has not left since.
    struct Fired {
        bool operator==(const Fired&) const = default;
    };
    using Phase = std::variant<Armed, Dwelling, Fired>;

    Phase phase = Armed{};

    bool operator==(const HotZoneState&) const = default;

    bool isDwelling() const { return std::holds_alternative<Dwelling>(phase); }

    /// What one poll saw.
    struct Poll {
        bool cursorIsInside = false;
        unsigned pressedButtons = 0;  ///< a mask; 0 when no button is down
        std::uint64_t now = 0;        ///< uptime in nanoseconds

        bool operator==(const Poll&) const = default;
    };

    /// True when with this poll the dwell is over: at most once a visit. A pressed button starts
    /// the dwell afresh, and a clock that reads earlier than its beginning does not end it.
    bool step(const Poll& poll, std::uint64_t dwellNanos);
};

}  // namespace quorvel
