#pragma once

#include <QIcon>
#include <map>
#include <string>

#include "platform/ApplicationCatalog.hpp"
#include "platform/Files.hpp"

namespace quorvel {

/// The icons of applications, as the desktop's theme has them. Each is looked up once.
class AppIcons {
public:
    AppIcons(const ApplicationCatalog& catalog, const Files& files)
        : catalog(catalog), files(files) {}

    /// For a path where nothing is installed: a question mark, in the colour of labels.
    QIcon iconFor(const std::string& appPath);

    bool isInstalled(const std::string& appPath) const { return files.exists(appPath); }

    /// Looks everything up anew from now on: something was installed or removed.
    void forget() { known.clear(); }

    static QIcon fromTheme(const ApplicationIcon& icon);

private:
    const ApplicationCatalog& catalog;
    const Files& files;
    std::map<std::string, QIcon> known;
};

}  // namespace quorvel
