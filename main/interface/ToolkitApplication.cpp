#include "main/interface/ToolkitApplication.hpp"

#include <QFile>
#include <QIcon>
#include <QLibrary>
#include <QThread>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <string>

#include "main/interface/IndicatorStyle.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

// Without its plug-in the toolkit would end the whole process.
bool hasPlatformPlugin() {
    for (const QString& folder : QCoreApplication::libraryPaths()) {
        if (QLibrary(folder + QStringLiteral("/platforms/libqxcb.so")).load()) return true;
    }
    return false;
}

/// Puts back what the start of the toolkit changes in the process.
class ProcessState {
public:
    ProcessState() : locale(std::setlocale(LC_ALL, nullptr)), noGlib(qgetenv(noGlibName)) {
        // The loop that runs is GLib's, whatever the user prefers for programs of this toolkit.
        qunsetenv(noGlibName);
    }
    ~ProcessState() {
        std::setlocale(LC_ALL, locale.c_str());
        if (!noGlib.isNull()) qputenv(noGlibName, noGlib);
    }
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

private:
    static constexpr const char* noGlibName = "QT_NO_GLIB";
    std::string locale;
    QByteArray noGlib;
};

/// Outside the desktops that it knows the toolkit has no theme, and programs would have no icons.
void findIcons() {
    for (const char* const name : {"Adwaita", "breeze", "elementary-xfce", "gnome", "mate"}) {
        const QString theme = QString::fromUtf8(name);
        const QStringList folders = QIcon::themeSearchPaths();
        const bool isThere = std::any_of(folders.begin(), folders.end(), [&](const QString& each) {
            return QFile::exists(each + QLatin1Char('/') + theme + QStringLiteral("/index.theme"));
        });
        if (!isThere) continue;
        QIcon::setFallbackThemeName(theme);
        break;
    }
    QIcon own;
    const QString program = QCoreApplication::applicationDirPath();
    for (const char* const folder : {"/share/icons", "/../share/icons"}) {
        for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
            const QString file = program + QString::fromUtf8(folder) +
                                 QStringLiteral("/hicolor/%1x%1/apps/com.tessivane.quorvel.png");
            if (QFile::exists(file.arg(size))) own.addFile(file.arg(size));
        }
        if (!own.isNull()) break;
    }
    QGuiApplication::setWindowIcon(own);
}

}  // namespace

std::unique_ptr<ToolkitApplication> ToolkitApplication::start(const InterfaceHost& host) {
    if (!hasPlatformPlugin()) {
        host.desktop.log.line("Quorvel: the toolkit has no plug-in for X11");
        return nullptr;
    }
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
    QCoreApplication::setApplicationName(QStringLiteral("Quorvel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tessivane.quorvel"));
    qInstallMessageHandler(&forwardMessage);
    const ProcessState kept;
    std::unique_ptr<ToolkitApplication> application(new ToolkitApplication(host));
    findIcons();
    IndicatorStyle::install();
    return application;
}

ToolkitApplication::ToolkitApplication(const InterfaceHost& host)
    : QApplication(count, values), host(host) {
    setQuitOnLastWindowClosed(false);
    setQuitLockEnabled(false);
}

void ToolkitApplication::forwardMessage(QtMsgType type, const QMessageLogContext&,
                                        const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    const std::string line = formatted("Quorvel: interface — %@", text.toStdString());
    const auto* const application = dynamic_cast<ToolkitApplication*>(instance());
    if (application == nullptr) {
        // While it starts there is no way to the host yet, but standard error is the log as well.
        std::fprintf(stderr, "%s\n", line.c_str());
        return;
    }
    // The toolkit's reaction to a lost server is to end the process in its own words.
    if (QThread::currentThread() == application->thread()) application->host.endIfServerIsGone();
    application->host.desktop.log.line(line);
}

}  // namespace quorvel
