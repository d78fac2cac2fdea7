#pragma once

#include "platform/Geometry.hpp"

namespace quorvel {

struct PointerState {
    Point locationCocoa;
    unsigned pressedButtons = 0;  ///< bit n for button n + 1; the first three only, never the wheel

    bool operator==(const PointerState&) const = default;
};

class Pointer {
public:
    virtual ~Pointer() = default;

    virtual PointerState read() const = 0;
};

}  // namespace quorvel
