#pragma once

#include <optional>
#include <string>
#include <vector>

#include "main/settings/Collisions.hpp"
#include "platform/Value.hpp"

namespace quorvel {

/// An application that takes part, with its one shortcut. The same on every display.
struct AppBinding {
    std::string appPath;             ///< identity; compared exactly, untrimmed
    std::string hotKey = "none";     ///< as stored; "none" in any case for no shortcut
    std::string autoTuck = "false";  ///< as stored; its readers decide what counts as true

    bool operator==(const AppBinding&) const = default;

    /// An array of text dictionaries; anything else, or one malformed element, reads as an empty
    /// list. Records without a path are skipped.
    static std::vector<AppBinding> decode(const std::optional<Value>& value);
    static Value encode(const std::vector<AppBinding>& list);

    struct Validation;
    /// Drops the bindings whose shortcut cannot be used, each with a reason for the log.
    static Validation validated(const std::vector<AppBinding>& list);

    /// A sentence for each two applications that share a corner of a display, in the order of the
    /// list; once, on however many displays they meet.
    static std::vector<std::string> cornerCollisions(const std::vector<ArmedCorner>& armed);
    /// A sentence for each claim that would stack its window on that of an earlier one. All claims
    /// are about one display.
    static std::vector<std::string> tuckEdgeCollisions(const std::vector<EdgeClaim>& claims);

    /// Whether the stored shortcut text says that there is none.
    bool hasNoHotKey() const;
};

struct AppBinding::Validation {
    std::vector<AppBinding> kept;
    std::vector<std::string> dropped;
};

}  // namespace quorvel
