#pragma once

#include <string>

namespace quorvel {

/// Whether this desktop lets a program move the windows of others. Evaluated afresh by every call.
class Trust {
public:
    virtual ~Trust() = default;

    virtual bool isTrusted() const = 0;

    /// Why not, in plain words for the user; empty while trusted.
    virtual std::string reason() const = 0;

    /// Shows the reason to the user unless trusted; at most one such message at a time. Returns
    /// whether trusted.
    virtual bool isTrustedWithPrompt() = 0;

    /// Opens the place where the permission is given; false where the desktop has none.
    virtual bool openSettingsPane() = 0;
};

}  // namespace quorvel
