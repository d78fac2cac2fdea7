#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Trust.hpp"
#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Trusted while an EWMH window manager runs that lists its windows and activates them, except
/// under a Wayland compositor, whose own windows no X client can reach.
class X11Trust final : public Trust {
public:
    /// Shows the reason without waiting for the user, and calls `closed` when that is over.
    using Prompt = std::function<void(const std::string& reason, std::function<void()> closed)>;

    /// Whether the session is a Wayland one, by its environment.
    static bool isWaylandSession();

    X11Trust(XConnection& x, bool isWaylandSession, Prompt prompt);

    bool isTrusted() const override { return reason().empty(); }
    std::string reason() const override;
    bool isTrustedWithPrompt() override;
    /// There is none: false.
    bool openSettingsPane() override { return false; }

private:
    bool isUnderWayland() const;
    bool windowManagerRuns() const;
    bool followsEwmh() const;

    XConnection& x;
    bool waylandSession;
    Prompt prompt;
    bool isPrompting = false;
    mutable std::optional<bool> serverIsXwayland;
    Lifetime life;
};

}  // namespace quorvel::native
