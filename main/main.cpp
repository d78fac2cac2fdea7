// The composition root: makes the desktop of this platform and the program, and lets it run.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "main/shell/Application.hpp"
#include "main/shell/InterfaceEntry.hpp"
#include "main/shell/LauncherController.hpp"
#include "main/shell/LogFile.hpp"
#include "platform/linux/ExecutablePath.hpp"
#include "platform/linux/PosixFiles.hpp"
#include "platform/linux/SingleInstance.hpp"
#include "platform/linux/StandardErrorLog.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/XdgLoginItem.hpp"

int main(int argc, char** argv) {
    using namespace quorvel;

    const std::string executable = native::executablePath();
    native::PosixFiles files;
    const auto folders = native::XdgFolders::fromEnvironment(files.homeDirectory());
    native::XdgLoginItem loginItem(folders, executable);
    if (std::any_of(argv, argv + argc, [](std::string_view argument) {
            return argument == "--unregister-login-item";
        })) {
        static_cast<void>(loginItem.unregisterItem());
        return 0;
    }

    redirectStandardStreamsToLogFile(executable, files.homeDirectory());
    native::StandardErrorLog log;

    std::string reason;
    const auto x = native::XConnection::open("", reason);
    if (!x) {
        log.line("Quorvel: cannot start — " + reason);
        return 1;
    }
    return 0;
}
