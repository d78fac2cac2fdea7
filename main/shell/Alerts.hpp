#pragma once

#include "main/shell/Interface.hpp"
#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"

namespace quorvel {

/// Runs alerts. While one is up, everything else waits.
class Alerts {
public:
    Alerts(InterfaceProvider interface, RunLoop& runLoop, Log& log);

    /// The response: `alertFirstButtonReturn` plus the index of the button that was chosen. Where
    /// the alert cannot be shown, it is logged and the last button counts as chosen.
    int runModal(const Alert& alert);

    /// Ends the alert that is up, and answers every later one without showing it: for a program
    /// that is about to end and must not wait for an answer.
    void endAll();

private:
    InterfaceProvider interface;
    RunLoop& runLoop;
    Log& log;
    Interface* showing = nullptr;  ///< while an alert is up
    bool ended = false;
};

}  // namespace quorvel
