#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.hpp"
#include "platform/Subscription.hpp"

namespace quorvel {

/// One screen as the display service reports it.
struct Screen {
    std::optional<std::uint32_t> number;  ///< absent for a screen that cannot be named
    std::optional<std::string> uuid;      ///< upper-case 8-4-4-4-12, stable across re-plugging
    std::string localizedName;
    Rect frameCocoa;
    bool isBuiltin = false;

    bool operator==(const Screen&) const = default;
};

class Screens {
public:
    virtual ~Screens() = default;

    /// Those attached now, the primary one first; may be empty for a moment during hot-plug.
    virtual std::vector<Screen> screens() const = 0;

    /// Called once the arrangement has changed and settled.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> handler) = 0;
};

}  // namespace quorvel
