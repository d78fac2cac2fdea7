#include "tests/x11/AccessibleApplication.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <utility>

#include "tests/support/x11/Waiting.hpp"

namespace quorvel::test {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* action = "org.a11y.atspi.Action";
constexpr const char* editableText = "org.a11y.atspi.EditableText";
constexpr int deepest = 16;

}  // namespace

void PrintTo(const AccessibleNode& node, std::ostream* stream) {
    *stream << node.role << " “" << node.name << "”";
}

AccessibleApplication::AccessibleApplication(const std::string& sessionBusAddress, std::string name)
    : name(std::move(name)) {
    const Bus session = connect(sessionBusAddress);
    if (!session) throw std::runtime_error("no session bus");
    const Variant reply =
        call(session.get(), {{}, "org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress");
    if (!reply) throw std::runtime_error("no accessibility bus");
    const char* address = nullptr;
    g_variant_get(reply.get(), "(&s)", &address);
    bus = connect(address);
    if (!bus) throw std::runtime_error("the accessibility bus cannot be reached");
}

std::vector<AccessibleApplication::Widget> AccessibleApplication::widgets() const {
    std::vector<Widget> found;
    for (const Widget& each :
         childrenOf({{}, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
        if (each.node.name == name) collect(each, 0, found);
    }
    return found;
}

std::optional<AccessibleApplication::Widget> AccessibleApplication::find(
    const std::string& sought, const std::string& role) const {
    for (Widget& each : widgets()) {
        if (each.node.name == sought && (role.empty() || each.node.role == role) &&
            has(each, State::showing)) {
            return std::move(each);
        }
    }
    return std::nullopt;
}

AccessibleApplication::Widget AccessibleApplication::waitFor(const std::string& sought,
                                                             const std::string& role) const {
    std::optional<Widget> found;
    if (!waitUntil([&] { return (found = find(sought, role)).has_value(); })) {
        std::string there;
        for (const Widget& each : widgets()) there += testing::PrintToString(each.node) + "\n";
        throw std::runtime_error("there is no " + role + " “" + sought + "” among\n" + there);
    }
    return *found;
}

std::string AccessibleApplication::nameOf(const Widget& widget) const {
    return property(widget, "Name");
}

std::string AccessibleApplication::descriptionOf(const Widget& widget) const {
    return property(widget, "Description");
}

bool AccessibleApplication::has(const Widget& widget, State state) const {
    const Variant reply = ask(widget, accessible, "GetState");
    if (!reply) return false;
    const Variant words(g_variant_get_child_value(reply.get(), 0));
    constexpr unsigned wordBits = 32;
    const auto bit = static_cast<unsigned>(state);
    if (g_variant_n_children(words.get()) <= bit / wordBits) return false;
    std::uint32_t word = 0;
    g_variant_get_child(words.get(), bit / wordBits, "u", &word);
    return (word >> (bit % wordBits) & 1U) != 0;
}

Rect AccessibleApplication::areaOf(const Widget& widget) const {
    constexpr std::uint32_t onScreen = 0;
    const Variant reply = ask(widget, component, "GetExtents", g_variant_new("(u)", onScreen));
    if (!reply) return {};
    gint32 x = 0;
    gint32 y = 0;
    gint32 width = 0;
    gint32 height = 0;
    g_variant_get(reply.get(), "((iiii))", &x, &y, &width, &height);
    return {double(x), double(y), double(width), double(height)};
}

std::optional<AccessibleApplication::Widget> AccessibleApplication::focused() const {
    std::optional<Widget> innermost;
    for (Widget& each : widgets()) {
        if (has(each, State::focused)) innermost = std::move(each);
    }
    return innermost;
}

void AccessibleApplication::listen() {
    const Widget registry{{}, "org.a11y.atspi.Registry", "/org/a11y/atspi/registry"};
    ask(registry, "org.a11y.atspi.Registry", "RegisterEvent",
        g_variant_new("(s)", "object:state-changed:focused"));
    g_dbus_connection_signal_subscribe(
        bus.get(), nullptr, "org.a11y.atspi.Event.Object", "StateChanged", nullptr, "focused",
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const char* sender, const char* path, const char*, const char*,
           GVariant*, gpointer self) {
            static_cast<AccessibleApplication*>(self)->announced.push_back({{}, sender, path});
        },
        this, nullptr);
}

bool AccessibleApplication::waitForAnnouncement(const std::string& sought) {
    return waitUntil([&] {
        while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        }
        for (Widget& each : announced) {
            // While it is still there.
            if (each.node.name.empty()) each.node = nodeOf(each);
            if (each.node.name == sought) return true;
        }
        return false;
    });
}

bool AccessibleApplication::act(const Widget& widget, const std::string& sought) const {
    const Variant reply = ask(widget, action, "GetActions");
    if (!reply) return false;
    const Variant actions(g_variant_get_child_value(reply.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(actions.get()); ++i) {
        const char* title = nullptr;
        g_variant_get_child(actions.get(), i, "(&s&s&s)", &title, nullptr, nullptr);
        if (title != sought) continue;
        g_dbus_connection_call(bus.get(), widget.owner.c_str(), widget.path.c_str(), action,
                               "DoAction", g_variant_new("(i)", int(i)), nullptr,
                               G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
        g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr);
        return true;
    }
    return false;
}

bool AccessibleApplication::setText(const Widget& widget, const std::string& text) const {
    const Variant reply =
        ask(widget, editableText, "SetTextContents", g_variant_new("(s)", text.c_str()));
    if (!reply) return false;
    gboolean done = FALSE;
    g_variant_get(reply.get(), "(b)", &done);
    return done != FALSE;
}

// The protocol ------------------------------------------------------------------------------------

AccessibleApplication::Bus AccessibleApplication::connect(const std::string& address) {
    return Bus(g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
}

AccessibleApplication::Variant AccessibleApplication::call(GDBusConnection* bus,
                                                           const Widget& widget,
                                                           const char* interface,
                                                           const char* method,
                                                           GVariant* arguments) {
    constexpr int limit = 5000;
    return Variant(g_dbus_connection_call_sync(bus, widget.owner.c_str(), widget.path.c_str(),
                                               interface, method, arguments, nullptr,
                                               G_DBUS_CALL_FLAGS_NONE, limit, nullptr, nullptr));
}

AccessibleApplication::Variant AccessibleApplication::ask(const Widget& widget,
                                                          const char* interface, const char* method,
                                                          GVariant* arguments) const {
    return call(bus.get(), widget, interface, method, arguments);
}

std::string AccessibleApplication::property(const Widget& widget, const char* of) const {
    const Variant reply = ask(widget, "org.freedesktop.DBus.Properties", "Get",
                              g_variant_new("(ss)", accessible, of));
    if (!reply) return {};
    GVariant* inner = nullptr;
    g_variant_get(reply.get(), "(v)", &inner);
    const Variant value(inner);
    return g_variant_is_of_type(inner, G_VARIANT_TYPE_STRING) != FALSE
               ? g_variant_get_string(inner, nullptr)
               : "";
}

AccessibleNode AccessibleApplication::nodeOf(const Widget& widget) const {
    const Variant reply = ask(widget, accessible, "GetRoleName");
    const char* role = "";
    if (reply) g_variant_get(reply.get(), "(&s)", &role);
    return {role, nameOf(widget)};
}

std::vector<AccessibleApplication::Widget> AccessibleApplication::childrenOf(
    const Widget& widget) const {
    const Variant reply = ask(widget, accessible, "GetChildren");
    if (!reply) return {};
    std::vector<Widget> children;
    const Variant list(g_variant_get_child_value(reply.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const char* owner = nullptr;
        const char* path = nullptr;
        g_variant_get_child(list.get(), i, "(&s&o)", &owner, &path);
        children.push_back({{}, owner, path});
        children.back().node = nodeOf(children.back());
    }
    return children;
}

void AccessibleApplication::collect(const Widget& widget, int depth,
                                    std::vector<Widget>& into) const {
    into.push_back(widget);
    if (depth == deepest) return;
    for (const Widget& child : childrenOf(widget)) collect(child, depth + 1, into);
}

}  // namespace quorvel::test
