#pragma once

#include <xcb/xcb.h>

#include <functional>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Makes sure that a user runs this program on a screen once, by the manager selection convention
/// of ICCCM: the running one owns a selection, which the server takes back when it is gone, however
/// it ended.
class SingleInstance {
public:
    /// Asks for the selection; who comes second does not get it.
    explicit SingleInstance(XConnection& x);

    bool isFirst() const { return first; }

    /// For the second: asks the first to show itself.
    void callFirst();

    /// For the first: called from the loop when another has asked.
    [[nodiscard]] Subscription onCall(std::function<void()> handler);

private:
    XConnection& x;
    xcb_window_t owner = XCB_WINDOW_NONE;  ///< of the selection
    bool first = false;
};

}  // namespace quorvel::native
