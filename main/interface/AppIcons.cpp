#include "main/interface/AppIcons.hpp"

#include <QApplication>

#include "main/interface/Style.hpp"
#include "main/interface/Symbols.hpp"

namespace quorvel {

QIcon AppIcons::iconFor(const std::string& appPath) {
    if (!isInstalled(appPath)) {
        return Symbols::symbol(
            QStringLiteral("questionmark.app.dashed"),
            Style::colour(Style::Colour::secondaryLabel, QApplication::palette()));
    }
    const auto found = known.find(appPath);
    if (found != known.end()) return found->second;
    const QIcon icon = fromTheme(catalog.iconOf(appPath));
    known.emplace(appPath, icon);
    return icon;
}

QIcon AppIcons::fromTheme(const ApplicationIcon& icon) {
    if (!icon.file.empty()) return QIcon(QString::fromStdString(icon.file));
    for (const std::string& name : icon.themeNames) {
        const QIcon found = QIcon::fromTheme(QString::fromStdString(name));
        if (!found.isNull()) return found;
    }
    return QIcon::fromTheme(QStringLiteral("application-x-executable"));
}

}  // namespace quorvel
