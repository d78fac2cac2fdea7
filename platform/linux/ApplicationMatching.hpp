#pragma once

#include <optional>
#include <string>

#include "platform/linux/DesktopEntries.hpp"
#include "platform/linux/ProcessFacts.hpp"

namespace quorvel::native {

/// All that is looked at to tell which application a window belongs to. Texts are empty when the
/// window does not say.
struct WindowEvidence {
    /// What is known of the window that it is transient for.
    std::optional<std::string> parentApplication;
    std::string gtkApplicationId;  ///< _GTK_APPLICATION_ID
    std::string kdeDesktopFile;    ///< _KDE_NET_WM_DESKTOP_FILE
    std::string instanceName;      ///< WM_CLASS, the first part
    std::string className;         ///< and the second
    std::optional<ProcessFacts> process;
};

/// The entry that a window belongs to: the first evidence that names one decides. Null when none
/// does. The window that it is transient for is not looked at here.
const DesktopEntry* entryOf(const WindowEvidence& evidence, const DesktopEntries& entries);

/// The path by which the application of a window is known: that of its entry, else that of its
/// program. Nothing when neither is known.
std::optional<std::string> applicationPathOf(const WindowEvidence& evidence,
                                             const DesktopEntries& entries);

}  // namespace quorvel::native
