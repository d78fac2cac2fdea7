#include "platform/linux/status/ExportedObject.hpp"

#include <utility>

namespace quorvel::native {

ExportedObject::ExportedObject(GDBusConnection* bus, Description what)
    : connection(static_cast<GDBusConnection*>(g_object_ref(bus))), description(std::move(what)) {
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(description.introspection, nullptr);
    GDBusInterfaceInfo* const interface = node->interfaces[0];
    interfaceName = interface->name;

    static const GDBusInterfaceVTable table = [] {
        GDBusInterfaceVTable filled{};
        filled.method_call = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                const gchar* method, GVariant* arguments,
                                GDBusMethodInvocation* invocation, gpointer self) {
            static_cast<ExportedObject*>(self)->call(method, arguments, invocation);
        };
        filled.get_property = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                 const gchar* property, GError**, gpointer self) {
            return static_cast<ExportedObject*>(self)->description.properties.at(property)();
        };
        return filled;
    }();
    registration = g_dbus_connection_register_object(connection.get(), description.path, interface,
                                                     &table, this, nullptr, nullptr);
    g_dbus_node_info_unref(node);
}

ExportedObject::~ExportedObject() {
    if (registration != 0) g_dbus_connection_unregister_object(connection.get(), registration);
}

void ExportedObject::emit(const char* signal, GVariant* arguments) const {
    g_dbus_connection_emit_signal(connection.get(), nullptr, description.path,
                                  interfaceName.c_str(), signal, arguments, nullptr);
}

void ExportedObject::call(const char* method, GVariant* arguments,
                          GDBusMethodInvocation* invocation) {
    Failure failure;
    GVariant* const floating = description.methods.at(method)(arguments, failure);
    const OwnedVariant answer(floating != nullptr ? g_variant_ref_sink(floating) : nullptr);
    if (failure.name.empty()) {
        g_dbus_method_invocation_return_value(invocation, answer.get());
    } else {
        g_dbus_method_invocation_return_dbus_error(invocation, failure.name.c_str(),
                                                   failure.message.c_str());
    }
}

}  // namespace quorvel::native
