#pragma once

#include <QApplication>
#include <memory>

#include "platform/Log.hpp"

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
    /// Null, and a line in the log, when the toolkit has no way to the window server.
    static std::unique_ptr<ToolkitApplication> start(Log& log);
    ~ToolkitApplication() override;

private:
    explicit ToolkitApplication(Log& log);
    static void forwardMessage(QtMsgType type, const QMessageLogContext& context,
                               const QString& text);

    Log& log;
    QtMessageHandler messageHandlerBefore;
};

}  // namespace quorvel
