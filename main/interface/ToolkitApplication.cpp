#include "main/interface/ToolkitApplication.hpp"

#include <QLibrary>
#include <clocale>
#include <string>

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

}  // namespace

std::unique_ptr<ToolkitApplication> ToolkitApplication::start(Log& log) {
    if (!hasPlatformPlugin()) {
        log.line("Quorvel: the toolkit has no plug-in for X11");
        return nullptr;
    }
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager);
    QCoreApplication::setApplicationName(QStringLiteral("Quorvel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tessivane.quorvel"));
    const ProcessState kept;
    return std::unique_ptr<ToolkitApplication>(new ToolkitApplication(log));
}

ToolkitApplication::ToolkitApplication(Log& log)
    : QApplication(count, values),
      log(log),
      messageHandlerBefore(qInstallMessageHandler(&forwardMessage)) {
    setQuitOnLastWindowClosed(false);
    setQuitLockEnabled(false);
}

ToolkitApplication::~ToolkitApplication() {
    qInstallMessageHandler(messageHandlerBefore);
}

void ToolkitApplication::forwardMessage(QtMsgType type, const QMessageLogContext&,
                                        const QString& text) {
    if (type == QtDebugMsg || type == QtInfoMsg) return;
    static_cast<ToolkitApplication*>(instance())
        ->log.line(formatted("Quorvel: interface — %@", text.toStdString()));
}

}  // namespace quorvel
