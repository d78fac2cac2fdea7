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

std::string inUtf8(const std::string& text) {
    return takeText(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
}

/// Names of files and processes may be any bytes; a bus and JSON carry no such text.
Value inUtf8(const Value& value) {
    if (value.text() != nullptr) return inUtf8(*value.text());
    if (value.array() != nullptr) {
        Value::Array array;
        for (const Value& each : *value.array()) array.push_back(inUtf8(each));
        return array;
    }
    if (value.dictionary() != nullptr) {
        Value::Dictionary dictionary;
        for (const auto& [key, each] : *value.dictionary()) dictionary.append(key, inUtf8(each));
        return dictionary;
    }
    return value;
}

using Failure = ExportedObject::Failure;

RemoteAnswer answerTo(const RemoteControl::Server& server, const RemoteRequest& request) {
    return server ? server(request) : RemoteAnswer{{}, "Quorvel is ending."};
}

GVariant* openSettings(const RemoteControl::Server& server, Failure& failure) {
    const RemoteAnswer answer = answerTo(server, {"settings", ""});
    if (answer.error) failure = {refused, inUtf8(*answer.error)};
    return nullptr;
}

GVariant* ask(const RemoteControl::Server& server, const char* command, GVariant* arguments,
              Failure& failure) {
    const char* argument = "";
    if (g_variant_n_children(arguments) > 0) g_variant_get(arguments, "(&s)", &argument);
    const RemoteAnswer answer = answerTo(server, {command, argument});
    if (answer.error) {
        failure = {refused, inUtf8(*answer.error)};
        return nullptr;
    }
    JsonDocument document;
    std::string error;
    for (const auto& [key, value] : answer.value) document.set(key, inUtf8(value), error);
    return g_variant_new("(s)", document.text().c_str());
}

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
    control.emplace(bus.connection(), controlDescription(server));
    application.emplace(bus.connection(), applicationDescription(server, isActivationDue));
    name =
        g_bus_own_name_on_connection(bus.connection(), busName, G_BUS_NAME_OWNER_FLAGS_DO_NOT_QUEUE,
                                     nullptr, nullptr, nullptr, nullptr);
}

ExportedObject::Description BusControl::controlDescription(const Server& server) {
    ExportedObject::Description description{path, controlIntrospection, {}, {}};
    for (const auto& [method, command] : commands) {
        description.methods.emplace(
            method, [&server, command = command](GVariant* arguments, Failure& failure) {
                return ask(server, command, arguments, failure);
            });
    }
    return description;
}

ExportedObject::Description BusControl::applicationDescription(const Server& server,
                                                               bool& isActivationDue) {
    ExportedObject::Description description{path, applicationIntrospection, {}, {}};
    description.methods.emplace(
        "Activate", [&server, &isActivationDue](GVariant*, Failure& failure) -> GVariant* {
            // Started from a launcher it goes to the panel, as it does without a bus.
            if (std::exchange(isActivationDue, false)) return nullptr;
            return openSettings(server, failure);
        });
    description.methods.emplace(
        "ActivateAction",
        [&server, &isActivationDue](GVariant* arguments, Failure& failure) -> GVariant* {
            isActivationDue = false;
            const char* action = "";
            g_variant_get_child(arguments, 0, "&s", &action);
            if (std::string_view(action) == "settings") return openSettings(server, failure);
            failure = {refused, "There is no action “" + std::string(action) + "”."};
            return nullptr;
        });
    description.methods.emplace("Open", [](GVariant*, Failure& failure) -> GVariant* {
        failure = {refused, "Quorvel opens no files."};
        return nullptr;
    });
    return description;
}

}  // namespace quorvel::native
