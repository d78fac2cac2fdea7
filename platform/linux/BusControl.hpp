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
///
/// The same object has org.freedesktop.Application, by which desktops start programs and their
/// actions (Desktop Entry Specification, "D-Bus Activation"): to activate the running program is to
/// open its settings, and so is its one action, "settings".
class BusControl final : public RemoteControl {
public:
    /// It outlives this object, and is connected by somebody else.
    explicit BusControl(SessionBus& bus);
    ~BusControl() override;
    BusControl(const BusControl&) = delete;
    BusControl& operator=(const BusControl&) = delete;

    [[nodiscard]] Subscription serve(Server server) override;

    /// What others may ask the object for, by either interface; all that is named here, the server
    /// null or not, outlives it.
    static ExportedObject::Description controlDescription(const Server& server);
    static ExportedObject::Description applicationDescription(const Server& server,
                                                              bool& isActivationDue);

private:
    void busChanged();

    SessionBus& bus;
    Server server;
    std::optional<ExportedObject> control;
    std::optional<ExportedObject> application;
    /// Of a process that the bus has started: what it was started with is the first call.
    bool isActivationDue;
    guint name = 0;
    Subscription busChanges;
};

}  // namespace quorvel::native
