#pragma once

#include <string>
#include <string_view>

#include "main/shell/Alert.hpp"
#include "main/tucking/TuckAnimationStyle.hpp"
#include "main/tucking/TuckEdge.hpp"

namespace quorvel {

/// What the settings window asks of the running program. It stores by itself; this is how what it
/// has stored takes effect.
class SettingsHost {
public:
    virtual ~SettingsHost() = default;

    /// The one way in which settings take effect.
    virtual void reloadFromSettings() = 0;

    /// Only what depends on the bindings and the corners, with this dwell time.
    virtual void applyHotZone(int dwellMs) = 0;

    /// For the slides from now on.
    virtual void setAnimationStyle(TuckAnimationStyle style) = 0;

    /// For an edge text that means `bottom`: whether the application is hidden. Else whether it has
    /// a tucked window, at whichever edge.
    virtual bool isTucked(const std::string& appPath, std::string_view edgeRaw) const = 0;

    /// Shows it and waits for the answer; everything else waits too. `alertFirstButtonReturn` plus
    /// the index of the button.
    virtual int runAlert(const Alert& alert) = 0;

    /// Tucks the focused window of a running application, or puts it back.
    virtual void toggleTuck(const std::string& appPath, TuckEdge edge) = 0;
};

}  // namespace quorvel
