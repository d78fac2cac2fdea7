#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>

namespace quorvel {

/// Makes a window of this program the active one, from the background too.
class FrontWindow {
public:
    explicit FrontWindow(std::function<void(std::uint64_t window)> bringToFront);

    /// Now if the window is on the screen, else as soon as it is shown.
    void bring(QWidget& window) const;

private:
    std::function<void(std::uint64_t window)> bringToFront;
};

}  // namespace quorvel
