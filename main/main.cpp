// The composition root: makes the desktop of this platform and the program, and lets it run.

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "main/shell/Application.hpp"
#include "main/shell/InterfaceEntry.hpp"
#include "main/shell/LauncherController.hpp"
#include "main/shell/LogFile.hpp"
#include "platform/linux/ExecutablePath.hpp"
#include "platform/linux/GlibRunLoop.hpp"
#include "platform/linux/PosixFiles.hpp"
#include "platform/linux/SharedModule.hpp"
#include "platform/linux/SingleInstance.hpp"
#include "platform/linux/StandardErrorLog.hpp"
#include "platform/linux/X11Desktop.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/XdgFolders.hpp"
#include "platform/linux/XdgLoginItem.hpp"
#include "platform/linux/status/SessionBus.hpp"

namespace quorvel {
namespace {

/// Ends the process: with the server everything is gone that could be put in order.
[[noreturn]] void endWithoutServer(Log& log) {
    log.line("Quorvel: the X server has gone");
    std::_Exit(EXIT_FAILURE);
}

/// Beside the program in a build folder, else where it is installed.
std::vector<std::string> moduleFolders(const std::string& executable) {
    const std::filesystem::path own = std::filesystem::path(executable).parent_path();
    return {own, (own / QUORVEL_MODULE_FOLDER).lexically_normal()};
}

/// The interface, loaded when it is first asked for.
class LoadedInterface {
public:
    LoadedInterface(native::SharedModule module, Log& log) : module(std::move(module)), log(log) {}

    void setHost(InterfaceHost newHost) { host.emplace(std::move(newHost)); }

    /// Null, with a line in the log, when it cannot be had.
    Interface* get() {
        if (interface || !host) return interface.get();
        void* const entry = module.symbol(interfaceEntryName);
        if (entry == nullptr) return nullptr;
        interface.reset(reinterpret_cast<CreateInterface>(entry)(interfaceVersion, &*host));
        if (!interface) log.line("Quorvel: the interface module does not fit this program");
        return interface.get();
    }

private:
    native::SharedModule module;
    Log& log;
    std::optional<InterfaceHost> host;
    std::unique_ptr<Interface> interface;
};

int run(int argc, char** argv) {
    const std::string executable = native::executablePath();
    native::PosixFiles files;
    const auto folders = native::XdgFolders::fromEnvironment(files.homeDirectory());
    native::XdgLoginItem loginItem(folders, executable);
    if (std::any_of(argv, argv + argc, [](std::string_view argument) {
            return argument == "--unregister-login-item";
        })) {
        static_cast<void>(loginItem.unregisterItem());
        return EXIT_SUCCESS;
    }

    redirectStandardStreamsToLogFile(executable, files.homeDirectory());
    native::StandardErrorLog log;

    std::string reason;
    const auto x = native::XConnection::open("", reason);
    if (!x) {
        log.line("Quorvel: cannot start — " + reason);
        native::GlibRunLoop runLoop;
        native::SessionBus bus(runLoop, log);
        bus.connect();
        if (!bus.waitUntilSettled()) {
            log.line("Quorvel: the system refused to create a status item button.");
        }
        return EXIT_FAILURE;
    }
    const Subscription lost = x->onLost([&log] { endWithoutServer(log); });
    const auto endIfServerIsGone = [&] {
        x->readPending();
        if (x->isLost()) endWithoutServer(log);
    };

    native::SingleInstance instance(*x);
    endIfServerIsGone();
    if (!instance.isFirst()) {
        // A click on the launcher of a program that runs already.
        instance.callFirst();
        return EXIT_SUCCESS;
    }

    LoadedInterface interface(
        native::SharedModule(interfaceModuleName, moduleFolders(executable), log), log);
    const auto prompt = [&interface](const std::string& why, std::function<void()> closed) {
        if (Interface* const shown = interface.get()) {
            shown->showPrompt(why, std::move(closed));
        } else {
            closed();
        }
    };
    const auto popUpMenu = [&interface, &log](const Menu& menu) {
        if (Interface* const shown = interface.get()) {
            shown->popUpMenu(menu);
        } else {
            log.line("Quorvel: menu not shown — the interface is missing");
        }
    };
    native::X11Desktop platform(*x, folders, executable, log, files, loginItem,
                                {prompt, popUpMenu});
    const Desktop desktop = platform.desktop();
    interface.setHost({desktop,
                       [&platform](std::uint64_t window) { platform.bringToFront(window); },
                       endIfServerIsGone});

    Application application(desktop.runLoop);
    LauncherController controller(desktop, application, [&interface] { return interface.get(); });
    application.setDelegate(controller);
    const Subscription calls = instance.onCall([&desktop, &controller] {
        desktop.runLoop.async([&controller] { controller.openSettings(); });
    });
    return application.run();
}

}  // namespace
}  // namespace quorvel

int main(int argc, char** argv) {
    // The reasons that libraries give are for the user to read; numbers stay as they are.
    std::setlocale(LC_CTYPE, "");
    std::setlocale(LC_MESSAGES, "");
    return quorvel::run(argc, argv);
}
