#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/RemoteControl.hpp"

namespace quorvel {

class SimulatedRemoteControl final : public RemoteControl {
public:
    /// Another program asks; nothing when nobody serves.
    std::optional<RemoteAnswer> ask(const std::string& command, const std::string& argument = "") {
        if (!server) return std::nullopt;
        return server({command, argument});
    }

    [[nodiscard]] Subscription serve(Server newServer) override {
        server = std::move(newServer);
        return Subscription([this] { server = nullptr; });
    }

private:
    Server server;
};

}  // namespace quorvel
