#pragma once

#include <functional>
#include <utility>

#include "platform/Pointer.hpp"
#include "platform/Subscription.hpp"

namespace quorvel {

class SimulatedPointer final : public Pointer {
public:
    // What the user does, and `onInput` tells of.
    void moveTo(Point pointCocoa) {
        now.locationCocoa = pointCocoa;
        inputs.notify();
    }
    /// Buttons count from 1. From 4 on they are the wheel and its like, which nobody gets to see.
    void press(unsigned button) { set(button, true); }
    void release(unsigned button) { set(button, false); }

    /// A program puts the pointer somewhere else; no input comes of it.
    void warpTo(Point pointCocoa) { now.locationCocoa = pointCocoa; }

    [[nodiscard]] Subscription onInput(std::function<void()> handler) {
        return inputs.add(std::move(handler));
    }

    const PointerState& state() const { return now; }
    /// How often the program asked for it.
    mutable int readCount = 0;

    PointerState read() const override {
        ++readCount;
        return now;
    }

private:
    void set(unsigned button, bool isDown) {
        if (button < 1 || button > 3) return;
        const unsigned bit = 1u << (button - 1);
        now.pressedButtons = isDown ? now.pressedButtons | bit : now.pressedButtons & ~bit;
        inputs.notify();
    }

    PointerState now;
    Subscribers<> inputs;
};

}  // namespace quorvel
