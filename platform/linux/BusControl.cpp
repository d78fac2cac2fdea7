#include "platform/linux/BusControl.hpp"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/linux/JsonDocument.hpp"

namespace quorvel::native {
namespace {

constexpr const char* busName = "com.tessivane.quorvel";
constexpr const char* path = "/com/tessivane/quorvel";
constexpr const char* refused = "com.tessivane.quorvel.Error.Refused";

constexpr const char* controlIntrospection = R"(<node>
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

constexpr const char* applicationIntrospection = R"(<node>
<interface name="org.freedesktop.Application">
<method name="Activate"><arg name="platform_data" type="a{sv}" direction="in"/></method>
<method name="Open"><arg name="uris" type="as" direction="in"/>
<arg name="platform_data" type="a{sv}" direction="in"/></method>
<method name="ActivateAction"><arg name="action_name" type="s" direction="in"/>
<arg name="parameter" type="av" direction="in"/>
<arg name="platform_data" type="a{sv}" direction="in"/></method>
</interface>
</node>)";

}  // namespace

BusControl::BusControl(SessionBus& bus)
    : bus(bus),
      isActivationDue(std::getenv("DBUS_STARTER_BUS_TYPE") != nullptr),
      busChanges(bus.onChange([this] { busChanged(); })) {}

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
    control.reset();
    application.reset();
    if (bus.connection() == nullptr || !server) return;
    exportControl();
    exportApplication();
    name =
        g_bus_own_name_on_connection(bus.connection(), busName, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE,
                                     nullptr, nullptr, nullptr, nullptr);
}

void BusControl::exportControl() {
    ExportedObject::Description description{path, controlIntrospection, {}, {}};
    for (const auto& [method, command] : commands) {
        description.methods.emplace(
            method,
            [this, command = command](GVariant* arguments, ExportedObject::Failure& failure) {
                return ask(command, arguments, failure);
            });
    }
    control.emplace(bus.connection(), std::move(description));
}

void BusControl::exportApplication() {
    using Failure = ExportedObject::Failure;
    ExportedObject::Description description{path, applicationIntrospection, {}, {}};
    description.methods.emplace("Activate", [this](GVariant*, Failure& failure) -> GVariant* {
        // Started from a launcher it goes to the panel, as it does without a bus.
        if (std::exchange(isActivationDue, false)) return nullptr;
        return openSettings(failure);
    });
    description.methods.emplace(
        "ActivateAction", [this](GVariant* arguments, Failure& failure) -> GVariant* {
            isActivationDue = false;
            const char* action = "";
            g_variant_get_child(arguments, 0, "&s", &action);
            if (std::string_view(action) == "settings") return openSettings(failure);
            failure = {refused, "There is no action “" + std::string(action) + "”."};
            return nullptr;
        });
    description.methods.emplace("Open", [](GVariant*, Failure& failure) -> GVariant* {
        failure = {refused, "Quorvel opens no files."};
        return nullptr;
    });
    application.emplace(bus.connection(), std::move(description));
}

GVariant* BusControl::openSettings(ExportedObject::Failure& failure) {
    const RemoteAnswer answer = answerTo({"settings", ""});
    if (answer.error) failure = {refused, *answer.error};
    return nullptr;
}

RemoteAnswer BusControl::answerTo(const RemoteRequest& request) const {
    return server ? server(request) : RemoteAnswer{{}, "Quorvel is ending."};
}

GVariant* BusControl::ask(const char* command, GVariant* arguments,
                          ExportedObject::Failure& failure) const {
    const char* argument = "";
    if (g_variant_n_children(arguments) > 0) g_variant_get(arguments, "(&s)", &argument);
    const RemoteAnswer answer = answerTo({command, argument});
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
