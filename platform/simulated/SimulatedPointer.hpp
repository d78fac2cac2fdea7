#pragma once

#include "platform/Pointer.hpp"

namespace quorvel {

class SimulatedPointer final : public Pointer {
public:
    void moveTo(Point pointCocoa) { state.locationCocoa = pointCocoa; }
    /// Buttons count from 1. From 4 on they are the wheel and its like, which nobody gets to see.
    void press(unsigned button) {
        if (isSeen(button)) state.pressedButtons |= 1u << (button - 1);
    }
    void release(unsigned button) {
        if (isSeen(button)) state.pressedButtons &= ~(1u << (button - 1));
    }

    /// How often the pointer was asked for.
    mutable int readCount = 0;

    PointerState read() const override {
        ++readCount;
        return state;
    }

private:
    static bool isSeen(unsigned button) { return button >= 1 && button <= 3; }

    PointerState state;
};

}  // namespace quorvel
