#pragma once

#include <gio/gio.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel::test {

/// What a widget is and says to assistive programs.
struct AccessibleNode {
    std::string role;
    std::string name;

    bool operator==(const AccessibleNode&) const = default;
};

void PrintTo(const AccessibleNode& node, std::ostream* stream);

/// An application on the accessibility bus of a session, read and driven as an assistive program
/// does. Toolkits take part in it when they are started with QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1.
///
/// The protocol is that of AT-SPI 2 (at-spi2-core, its D-Bus interfaces).
class AccessibleApplication {
public:
    AccessibleApplication(const std::string& sessionBusAddress, std::string name);
    AccessibleApplication(const AccessibleApplication&) = delete;
    AccessibleApplication& operator=(const AccessibleApplication&) = delete;

    /// Of AT-SPI's AtspiStateType.
    enum class State { checked = 4, enabled = 8, focused = 12, sensitive = 24, showing = 25 };

    struct Widget {
        AccessibleNode node;
        std::string owner;  ///< on the bus
        std::string path;
    };

    /// All of its windows and what is in them, parents first; empty while it is not there.
    std::vector<Widget> widgets() const;
    /// The first that is showing on the screen, with this name and, unless empty, role.
    std::optional<Widget> find(const std::string& name, const std::string& role = {}) const;
    /// The same, once there is one. Throws when none comes, with what is there instead.
    Widget waitFor(const std::string& name, const std::string& role = {}) const;

    std::string nameOf(const Widget& widget) const;
    std::string descriptionOf(const Widget& widget) const;
    bool has(const Widget& widget, State state) const;
    /// In root coordinates.
    Rect areaOf(const Widget& widget) const;
    /// That of the widget, or of what is focused inside it.
    std::optional<Widget> focused() const;

    /// From now on it is told what gets the focus.
    void listen();
    /// Whether something of this name has got the focus since `listen`, as a reader would say.
    bool waitForAnnouncement(const std::string& name);

    /// Does what the widget calls so ("Press", "Toggle", …); it is not waited for, as what it opens
    /// may answer only after it has closed. False when the widget does nothing of that name.
    bool act(const Widget& widget, const std::string& action) const;
    /// As if it had been typed.
    bool setText(const Widget& widget, const std::string& text) const;

private:
    struct Unref {
        void operator()(GVariant* value) const { g_variant_unref(value); }
        void operator()(GDBusConnection* bus) const { g_object_unref(bus); }
    };
    using Variant = std::unique_ptr<GVariant, Unref>;
    using Bus = std::unique_ptr<GDBusConnection, Unref>;

    static Bus connect(const std::string& address);
    static Variant call(GDBusConnection* bus, const Widget& widget, const char* interface,
                        const char* method, GVariant* arguments = nullptr);
    Variant ask(const Widget& widget, const char* interface, const char* method,
                GVariant* arguments = nullptr) const;
    std::string property(const Widget& widget, const char* name) const;
    AccessibleNode nodeOf(const Widget& widget) const;
    std::vector<Widget> childrenOf(const Widget& widget) const;
    void collect(const Widget& widget, int depth, std::vector<Widget>& into) const;

    Bus bus;
    std::string name;
    std::vector<Widget> announced;
};

}  // namespace quorvel::test
