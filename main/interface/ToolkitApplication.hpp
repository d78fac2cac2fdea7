#pragma once

#include <QApplication>
#include <memory>

#include "main/shell/InterfaceEntry.hpp"

namespace quorvel {

/// The command line that the toolkit is given; it must outlive the application made of it.
struct ToolkitArguments {
    char program[8] = "Quorvel";
    char option[10] = "-platform";
    char platform[4] = "xcb";
    char* values[4] = {program, option, platform, nullptr};
    int count = 3;
};

/// The toolkit, started as a guest in a process that runs already: it takes its turns on the loop
/// that runs, and leaves alone the locale, the environment of the programs launched later, the
/// session and the way this process ends.
class ToolkitApplication final : private ToolkitArguments, public QApplication {
public:
    /// Null, and a line in the log, when the toolkit has no way to the window server. The host
    /// outlives the application.
    static std::unique_ptr<ToolkitApplication> start(const InterfaceHost& host);

private:
    explicit ToolkitApplication(const InterfaceHost& host);
    static void forwardMessage(QtMsgType type, const QMessageLogContext& context,
                               const QString& text);

    const InterfaceHost& host;
};

}  // namespace quorvel
