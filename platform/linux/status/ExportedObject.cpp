#include "platform/linux/status/ExportedObject.hpp"

#include <utility>

namespace quorvel::native {
namespace {

/// Whether a call brings what the interface says that the method takes.
bool areArgumentsOf(const GDBusMethodInfo& method, GVariant* arguments) {
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE_TUPLE) == FALSE) return false;
    gsize count = 0;
    for (GDBusArgInfo** each = method.in_args; each != nullptr && *each != nullptr; ++each) {
        if (count == g_variant_n_children(arguments)) return false;
        const OwnedVariant argument(g_variant_get_child_value(arguments, count++));
        if (!g_str_equal((*each)->signature, g_variant_get_type_string(argument.get()))) {
            return false;
        }
    }
    return count == g_variant_n_children(arguments);
}

OwnedVariant owned(GVariant* floating) {
    return OwnedVariant(floating != nullptr ? g_variant_ref_sink(floating) : nullptr);
}

}  // namespace

ExportedObject::ExportedObject(GDBusConnection* bus, Description what)
    : connection(bus != nullptr ? static_cast<GDBusConnection*>(g_object_ref(bus)) : nullptr),
      description(std::move(what)),
      node(g_dbus_node_info_new_for_xml(description.introspection, nullptr)) {
    if (!connection) return;
    static const GDBusInterfaceVTable table = [] {
        GDBusInterfaceVTable filled{};
        filled.method_call = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                const gchar* method, GVariant* arguments,
                                GDBusMethodInvocation* invocation, gpointer self) {
            Failure failure;
            const OwnedVariant answer =
                static_cast<ExportedObject*>(self)->answer(method, arguments, failure);
            if (failure.name.empty()) {
                g_dbus_method_invocation_return_value(invocation, answer.get());
            } else {
                g_dbus_method_invocation_return_dbus_error(invocation, failure.name.c_str(),
                                                           failure.message.c_str());
            }
        };
        filled.get_property = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                 const gchar* property, GError**, gpointer self) {
            return static_cast<ExportedObject*>(self)->property(property).release();
        };
        return filled;
    }();
    registration = g_dbus_connection_register_object(
        connection.get(), description.path, node->interfaces[0], &table, this, nullptr, nullptr);
}

ExportedObject::~ExportedObject() {
    if (registration != 0) g_dbus_connection_unregister_object(connection.get(), registration);
}

OwnedVariant ExportedObject::answer(const char* method, GVariant* arguments,
                                    Failure& failure) const {
    const auto known = description.methods.find(method);
    const GDBusMethodInfo* const info =
        g_dbus_interface_info_lookup_method(node->interfaces[0], method);
    if (known == description.methods.end() || info == nullptr) {
        failure = {"org.freedesktop.DBus.Error.UnknownMethod", "There is no such method"};
        return nullptr;
    }
    if (!areArgumentsOf(*info, arguments)) {
        failure = {"org.freedesktop.DBus.Error.InvalidArgs", "The method takes other arguments"};
        return nullptr;
    }
    OwnedVariant given = owned(known->second(arguments, failure));
    return failure.name.empty() ? std::move(given) : nullptr;
}

OwnedVariant ExportedObject::property(const char* name) const {
    const auto known = description.properties.find(name);
    return owned(known != description.properties.end() ? known->second() : nullptr);
}

void ExportedObject::emit(const char* signal, GVariant* arguments) const {
    const OwnedVariant owner = owned(arguments);
    if (!connection) return;
    g_dbus_connection_emit_signal(connection.get(), nullptr, description.path, interface().name,
                                  signal, owner.get(), nullptr);
}

}  // namespace quorvel::native
