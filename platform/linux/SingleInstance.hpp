#pragma once

#include <xcb/xcb.h>

#include "platform/linux/XConnection.hpp"

namespace quorvel::native {

/// Makes sure that one program runs on a screen once, by the manager selection convention of
/// ICCCM: the running one owns a selection, which the server takes back when it is gone, however
/// it ended.
class SingleInstance {
public:
    /// Asks for the selection; who comes second does not get it.
    explicit SingleInstance(XConnection& x);

    bool isFirst() const { return first; }

private:
    bool first = false;
};

}  // namespace quorvel::native
