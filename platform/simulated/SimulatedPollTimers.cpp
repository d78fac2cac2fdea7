#include "platform/simulated/SimulatedPollTimers.hpp"

namespace quorvel {

SimulatedPollTimers::SimulatedPollTimers(RunLoop& runLoop, SimulatedPointer& pointer,
                                         SimulatedWindows& windows, SimulatedScreens& screens)
    : RestingPollTimers(runLoop),
      pointer(pointer),
      screens(screens),
      pointerMoves(pointer.onInput([this] {
          if (listens) somethingMoved();
      })),
      heldWindowMoves(windows.onHeldWindowChange([this] { somethingMoved(); })),
      holds(windows.onHold([this] { heldWindowsChanged(); })),
      displays(screens.onChange([this] { heldWindowsChanged(); })) {}

std::optional<PointerState> SimulatedPollTimers::beginObservation() {
    ++observationCount;
    if (screens.areSettling()) return std::nullopt;
    return pointer.state();
}

bool SimulatedPollTimers::listenToPointer(bool wanted) {
    if (cannotListen) return false;
    listens = wanted;
    return true;
}

}  // namespace quorvel
