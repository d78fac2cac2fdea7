#include "platform/linux/BusControl.hpp"

#include <utility>

#include "platform/linux/JsonDocument.hpp"

namespace quorvel::native {
namespace {

constexpr const char* busName = "com.tessivane.quorvel";
constexpr const char* path = "/com/tessivane/quorvel";
constexpr const char* refused = "com.tessivane.quorvel.Error.Refused";

constexpr const char* introspection = R"(<node>
<interface name="com.tessivane.quorvel.Control">
<method name="Status"><arg name="json" type="s" direction="out"/></method>
<method name="Doctor"><arg name="json" type="s" direction="out"/></method>
<method name="Why"><arg name="json" type="s" direction="out"/></method>
<method name="Toggle"><arg name="application" type="s" direction="in"/>
<arg name="json" type="s" direction="out"/></method>
<method name="Reveal"><arg name="application" type="s" direction="in"/>
<arg name="json" type="s" direction="out"/></method>
<method name="Untuck"><arg name="json" type="s" direction="out"/></method>
<method name="Reload"><arg name="json" type="s" direction="out"/></method>
</interface>
</node>)";

constexpr std::pair<const char*, const char*> commands[] = {
    {"Status", "status"}, {"Doctor", "doctor"}, {"Why", "why"},      {"Toggle", "toggle"},
    {"Reveal", "reveal"}, {"Untuck", "untuck"}, {"Reload", "reload"}};

}  // namespace

BusControl::BusControl(SessionBus& bus)
    : bus(bus), busChanges(bus.onChange([this] { busChanged(); })) {}

BusControl::~BusControl() {
    if (name != 0) g_bus_unown_name(name);
}

Subscription BusControl::serve(Server newServer) {
    server = std::move(newServer);
    busChanged();
    return Subscription([this] { server = nullptr; });
}

void BusControl::busChanged() {
    // Of the connection before.
    if (name != 0) g_bus_unown_name(std::exchange(name, 0));
    object.reset();
    if (bus.connection() == nullptr || !server) return;
    ExportedObject::Description description{path, introspection, {}, {}};
    for (const auto& [method, command] : commands) {
        description.methods.emplace(
            method,
            [this, command = command](GVariant* arguments, ExportedObject::Failure& failure) {
                return ask(command, arguments, failure);
            });
    }
    object.emplace(bus.connection(), std::move(description));
    name =
        g_bus_own_name_on_connection(bus.connection(), busName, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE,
                                     nullptr, nullptr, nullptr, nullptr);
}

GVariant* BusControl::ask(const char* command, GVariant* arguments,
                          ExportedObject::Failure& failure) const {
    const char* argument = "";
    if (g_variant_n_children(arguments) > 0) g_variant_get(arguments, "(&s)", &argument);
    const RemoteAnswer answer =
        server ? server({command, argument}) : RemoteAnswer{{}, "Quorvel is ending."};
    if (answer.error) {
        failure = {refused, *answer.error};
        return nullptr;
    }
    JsonDocument document;
    std::string error;
    for (const auto& [key, value] : answer.value) document.set(key, value, error);
    return g_variant_new("(s)", document.text().c_str());
}

}  // namespace quorvel::native
