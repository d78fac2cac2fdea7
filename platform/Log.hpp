#pragma once

#include <string_view>

namespace quorvel {

/// Where every diagnostic goes. There are no levels; each message is one line and begins with
/// "Quorvel: ".
class Log {
public:
    virtual ~Log() = default;

    /// Writes one line; time and process are put in front by the implementation. Line breaks
    /// and other control characters inside the message are escaped, so it stays one line.
    virtual void line(std::string_view message) = 0;

    /// Why something was decided, for whoever asks afterwards; not written.
    virtual void note(std::string_view) {}
};

}  // namespace quorvel
