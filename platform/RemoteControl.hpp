#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Subscription.hpp"
#include "platform/Value.hpp"

namespace quorvel {

struct RemoteRequest {
    std::string command;   ///< "status", "toggle", …
    std::string argument;  ///< an application, as its user calls it; empty for most commands
};

struct RemoteAnswer {
    Value::Dictionary value;
    std::optional<std::string> error;  ///< in plain words; then the value means nothing
};

/// How other programs of the same user ask the running one for something.
class RemoteControl {
public:
    using Server = std::function<RemoteAnswer(const RemoteRequest&)>;

    virtual ~RemoteControl() = default;

    /// From now on requests go there, from the run loop, until the subscription ends. Where there
    /// is no way in, none come; where one appears later, they come then.
    [[nodiscard]] virtual Subscription serve(Server server) = 0;
};

}  // namespace quorvel
