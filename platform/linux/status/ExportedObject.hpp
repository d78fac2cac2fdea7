#pragma once

#include <gio/gio.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/GlibTypes.hpp"

namespace quorvel::native {

struct VariantDeleter {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using OwnedVariant = std::unique_ptr<GVariant, VariantDeleter>;

struct NodeDeleter {
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};

/// One object with one interface on a message bus. Calls and reads are answered by the tables, on
/// the thread of the loop; a method gets no arguments but those of its types in the interface.
class ExportedObject {
public:
    /// A D-Bus error; none while the name is empty.
    struct Failure {
        std::string name;
        std::string message;
    };
    /// Gives the answer (floating; null for one without values), or nothing and a failure.
    using Method = std::function<GVariant*(GVariant* arguments, Failure& failure)>;
    using Property = std::function<GVariant*()>;

    struct Description {
        const char* path;
        const char* introspection;  ///< XML with this one interface
        std::map<std::string, Method, std::less<>> methods;
        std::map<std::string, Property, std::less<>> properties;
    };

    /// Without a connection nobody on a bus sees it, and signals go nowhere.
    ExportedObject(GDBusConnection* connection, Description description);
    ~ExportedObject();
    ExportedObject(const ExportedObject&) = delete;
    ExportedObject& operator=(const ExportedObject&) = delete;

    const GDBusInterfaceInfo& interface() const { return *node->interfaces[0]; }

    /// What a call is answered with, as it is for those that come over the bus. Null for an answer
    /// without values, and with a failure.
    OwnedVariant answer(const char* method, GVariant* arguments, Failure& failure) const;

    /// Null where the interface has no such property.
    OwnedVariant property(const char* name) const;

    /// `arguments` is taken over; null for none.
    void emit(const char* signal, GVariant* arguments = nullptr) const;

private:
    ObjectRef<GDBusConnection> connection;
    Description description;
    std::unique_ptr<GDBusNodeInfo, NodeDeleter> node;
    guint registration = 0;
};

}  // namespace quorvel::native
