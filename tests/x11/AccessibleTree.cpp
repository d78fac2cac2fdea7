#include "tests/x11/AccessibleTree.hpp"

#include <gio/gio.h>

#include <memory>
#include <optional>
#include <ostream>
#include <utility>

namespace quorvel::test {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr int deepest = 12;

struct Unref {
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusConnection* bus) const { g_object_unref(bus); }
};
using Variant = std::unique_ptr<GVariant, Unref>;
using Bus = std::unique_ptr<GDBusConnection, Unref>;

Bus connect(const std::string& address) {
    return Bus(g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
}

struct Object {
    std::string owner;
    std::string path;
};

Variant call(GDBusConnection* bus, const Object& object, const char* interface, const char* method,
             GVariant* arguments = nullptr) {
    constexpr int limit = 5000;
    return Variant(g_dbus_connection_call_sync(bus, object.owner.c_str(), object.path.c_str(),
                                               interface, method, arguments, nullptr,
                                               G_DBUS_CALL_FLAGS_NONE, limit, nullptr, nullptr));
}

std::string nameOf(GDBusConnection* bus, const Object& object) {
    const Variant reply = call(bus, object, "org.freedesktop.DBus.Properties", "Get",
                               g_variant_new("(ss)", accessible, "Name"));
    if (!reply) return {};
    GVariant* inner = nullptr;
    g_variant_get(reply.get(), "(v)", &inner);
    const Variant value(inner);
    return g_variant_is_of_type(inner, G_VARIANT_TYPE_STRING) != FALSE
               ? g_variant_get_string(inner, nullptr)
               : "";
}

std::string roleOf(GDBusConnection* bus, const Object& object) {
    const Variant reply = call(bus, object, accessible, "GetRoleName");
    if (!reply) return {};
    const char* role = nullptr;
    g_variant_get(reply.get(), "(&s)", &role);
    return role;
}

std::vector<Object> childrenOf(GDBusConnection* bus, const Object& object) {
    const Variant reply = call(bus, object, accessible, "GetChildren");
    if (!reply) return {};
    std::vector<Object> children;
    const Variant list(g_variant_get_child_value(reply.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const char* owner = nullptr;
        const char* path = nullptr;
        g_variant_get_child(list.get(), i, "(&s&o)", &owner, &path);
        children.push_back({owner, path});
    }
    return children;
}

void collect(GDBusConnection* bus, const Object& object, int depth,
             std::vector<AccessibleNode>& into) {
    into.push_back({roleOf(bus, object), nameOf(bus, object)});
    if (depth == deepest) return;
    for (const Object& child : childrenOf(bus, object)) collect(bus, child, depth + 1, into);
}

}  // namespace

void PrintTo(const AccessibleNode& node, std::ostream* stream) {
    *stream << node.role << " “" << node.name << "”";
}

std::vector<AccessibleNode> accessibleTree(const std::string& sessionBusAddress,
                                           const std::string& application) {
    const Bus session = connect(sessionBusAddress);
    if (!session) return {};
    const Variant reply =
        call(session.get(), {"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress");
    if (!reply) return {};
    const char* address = nullptr;
    g_variant_get(reply.get(), "(&s)", &address);
    const Bus bus = connect(address);
    if (!bus) return {};

    std::vector<AccessibleNode> nodes;
    for (const Object& each :
         childrenOf(bus.get(), {"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
        if (nameOf(bus.get(), each) == application) collect(bus.get(), each, 0, nodes);
    }
    return nodes;
}

}  // namespace quorvel::test
