#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// The few questions that the logic asks of the file system.
class Files {
public:
    virtual ~Files() = default;

    /// Follows symbolic links; a dangling one does not exist.
    virtual bool exists(std::string_view path) const = 0;

    /// Whether nothing can be written to the file system that holds it; nothing when that cannot be
    /// found out.
    virtual std::optional<bool> isOnReadOnlyVolume(std::string_view path) const = 0;

    /// Absolute, without a trailing slash.
    virtual std::string homeDirectory() const = 0;
};

}  // namespace quorvel
