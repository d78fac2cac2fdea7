#include "main/shell/Alerts.hpp"

#include <utility>

#include "platform/Text.hpp"

namespace quorvel {

Alerts::Alerts(InterfaceProvider interface, RunLoop& runLoop, Log& log)
    : interface(std::move(interface)), runLoop(runLoop), log(log) {}

int Alerts::runModal(const Alert& alert) {
    int response = alertFirstButtonReturn + static_cast<int>(alert.buttons.size()) - 1;
    if (ended) return response;
    Interface* const shown = interface();
    if (shown == nullptr) {
        log.line(formatted("Quorvel: alert not shown — %@", alert.message));
        return response;
    }
    runLoop.modal([&] {
        showing = shown;
        response = shown->runAlert(alert);
        showing = nullptr;
    });
    return response;
}

void Alerts::endAll() {
    ended = true;
    if (showing != nullptr) showing->dismissAlert();
}

}  // namespace quorvel
