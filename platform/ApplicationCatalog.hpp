#pragma once

#include <string>
#include <vector>

namespace quorvel {

/// How an application is drawn: names of the icon theme to try in order, or a file.
struct ApplicationIcon {
    std::vector<std::string> themeNames;
    std::string file;  ///< absolute; empty when the theme names are to be used

    bool operator==(const ApplicationIcon&) const = default;
};

struct InstalledApplication {
    std::string path;  ///< absolute path of its desktop entry
    std::string name;  ///< localized
    ApplicationIcon icon;

    bool operator==(const InstalledApplication&) const = default;
};

/// The programs that are installed, for choosing from and for showing.
class ApplicationCatalog {
public:
    virtual ~ApplicationCatalog() = default;

    /// Those meant to be shown to the user, sorted by name.
    virtual std::vector<InstalledApplication> installed() const = 0;

    /// The localized name of a desktop entry; for every other path its last component without the
    /// extension.
    virtual std::string nameOf(const std::string& path) const = 0;

    /// A generic executable's icon for a path that has none of its own.
    virtual ApplicationIcon iconOf(const std::string& path) const = 0;
};

}  // namespace quorvel
