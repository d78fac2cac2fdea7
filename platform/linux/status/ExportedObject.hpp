#pragma once

#include <gio/gio.h>

#include <functional>
#include <map>
#include <string>

#include "platform/linux/GlibTypes.hpp"

namespace quorvel::native {

struct VariantDeleter {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using OwnedVariant = std::unique_ptr<GVariant, VariantDeleter>;

/// One object with one interface on a message bus. Calls and reads whose types are not those of the
/// interface never get here; the others are answered by the tables, on the thread of the loop.
class ExportedObject {
public:
    /// Gives the answer (floating; null for one without values), or nothing and a D-Bus error by
    /// `failure`.
    struct Failure {
        std::string name;
        std::string message;
    };
    using Method = std::function<GVariant*(GVariant* arguments, Failure& failure)>;
    using Property = std::function<GVariant*()>;

    struct Description {
        const char* path;
        const char* introspection;  ///< XML with this one interface
        std::map<std::string, Method, std::less<>> methods;
        std::map<std::string, Property, std::less<>> properties;
    };

    ExportedObject(GDBusConnection* connection, Description description);
    ~ExportedObject();
    ExportedObject(const ExportedObject&) = delete;
    ExportedObject& operator=(const ExportedObject&) = delete;

    /// `arguments` is taken over; null for none.
    void emit(const char* signal, GVariant* arguments = nullptr) const;

private:
    void call(const char* method, GVariant* arguments, GDBusMethodInvocation* invocation);

    ObjectRef<GDBusConnection> connection;
    Description description;
    std::string interfaceName;
    guint registration = 0;
};

}  // namespace quorvel::native
