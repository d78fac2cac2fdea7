#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel::native {

/// What recognising an application needs of its desktop entry. Small, since there is one for every
/// program installed; what only launching and showing need is left to GIO.
struct DesktopEntry {
    std::string path;            ///< absolute
    std::string id;              ///< "org.example.App.desktop"
    std::string startupWMClass;  ///< empty for none
    std::string program;         ///< what Exec is about; see `programOf`
    std::string command;         ///< the first word of Exec
    std::string tryExec;
    bool isShown = true;  ///< false when it says NoDisplay

    bool operator==(const DesktopEntry&) const = default;
};

/// Nothing when the text is no entry of an application, or says that it is to count as deleted.
/// Reads the main group only, so that neither translations nor length cost anything.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, const std::string& path,
                                              const std::string& id);

/// The same of a file.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path, const std::string& id);

/// Whether a program named by Exec or TryExec can be run. A name without a folder is looked for in
/// PATH.
bool canBeRun(const std::string& program);

}  // namespace quorvel::native
