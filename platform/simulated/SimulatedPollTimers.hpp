#pragma once

#include "platform/RestingPollTimers.hpp"
#include "platform/simulated/SimulatedPointer.hpp"
#include "platform/simulated/SimulatedScreens.hpp"
#include "platform/simulated/SimulatedWindows.hpp"

namespace quorvel {

/// Polls in virtual time, and rests like the real one.
class SimulatedPollTimers final : public RestingPollTimers {
public:
    SimulatedPollTimers(RunLoop& runLoop, SimulatedPointer& pointer, SimulatedWindows& windows,
                        SimulatedScreens& screens);

    /// As on a server without the extension that tells of raw motion.
    bool cannotListen = false;

    /// How often the desktop was looked at.
    int observationCount = 0;
    bool isListeningToPointer() const { return listens; }

private:
    std::optional<PointerState> beginObservation() override;
    void endObservation() override {}
    bool listenToPointer(bool listens) override;

    SimulatedPointer& pointer;
    SimulatedScreens& screens;
    bool listens = false;
    Subscription pointerMoves;
    Subscription heldWindowMoves;
    Subscription holds;
    Subscription displays;
};

}  // namespace quorvel
