#include "main/shell/Application.hpp"

namespace quorvel {

int Application::run() {
    // From within the loop, since what the launch opens must be able to run there.
    runLoop.async([this] {
        if (!ending) delegate->applicationDidFinishLaunching();
    });
    if (!ending) runLoop.run();
    return exitStatus;
}

void Application::terminate() {
    if (ending) return;
    ending = true;
    delegate->applicationWillTerminate();
    runLoop.stop();
}

void Application::exit(int status) {
    if (ending) return;
    ending = true;
    exitStatus = status;
    runLoop.stop();
}

}  // namespace quorvel
