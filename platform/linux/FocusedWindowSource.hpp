#pragma once

#include <cstdint>
#include <string>

#include "platform/WindowAccess.hpp"

namespace quorvel::native {

/// Whoever keeps the list of clients knows which window of an application has the keyboard.
class FocusedWindowSource {
public:
    virtual ~FocusedWindowSource() = default;

    /// As `WindowAccess::focusedWindow`.
    virtual FocusedWindowReading focusedWindow(std::int32_t processIdentifier,
                                               const std::string& bundlePath) = 0;
};

}  // namespace quorvel::native
