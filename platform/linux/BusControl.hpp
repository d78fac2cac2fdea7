#pragma once

#include <optional>

#include "platform/RemoteControl.hpp"
#include "platform/linux/status/ExportedObject.hpp"
#include "platform/linux/status/SessionBus.hpp"

namespace quorvel::native {

/// Requests over the session bus: the name com.tessivane.quorvel, the object
/// /com/tessivane/quorvel, the interface com.tessivane.quorvel.Control, with a method for each
/// command; every method gives a JSON object. A refused request is the error
/// com.tessivane.quorvel.Error.Refused. Where another process has the name already, there is no way
/// in.
class BusControl final : public RemoteControl {
public:
    /// It outlives this object, and is connected by somebody else.
    explicit BusControl(SessionBus& bus);
    ~BusControl() override;
    BusControl(const BusControl&) = delete;
    BusControl& operator=(const BusControl&) = delete;

    [[nodiscard]] Subscription serve(Server server) override;

private:
    void busChanged();
    GVariant* ask(const char* command, GVariant* arguments, ExportedObject::Failure& failure) const;

    SessionBus& bus;
    Server server;
    std::optional<ExportedObject> object;
    guint name = 0;
    Subscription busChanges;
};

}  // namespace quorvel::native
