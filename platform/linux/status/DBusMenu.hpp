#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/StatusBar.hpp"
#include "platform/linux/status/ExportedObject.hpp"

namespace quorvel::native {

/// A flat menu for panels to show, by the interface `com.canonical.dbusmenu`, version 3. Its
/// entries are asked for each time a panel is about to show them. An identifier never means another
/// entry later, so a click on a menu that is out of date does nothing.
class DBusMenu {
public:
    static constexpr const char* path = "/MenuBar";

    DBusMenu(GDBusConnection* connection, std::function<Menu()> menu);

    const ExportedObject& exported() const { return object; }

    /// Asks for the entries anew and tells the panels where they are others than before; gives
    /// whether they are. For panels that show what they know and ask only then.
    bool update();

private:
    struct Entry {
        std::int32_t id = 0;
        MenuItem item;
    };
    using Failure = ExportedObject::Failure;

    ExportedObject::Description description();
    const Entry* find(std::int32_t id) const;
    GVariant* layout(GVariant* arguments, Failure& failure);
    GVariant* groupProperties(GVariant* arguments);
    GVariant* property(GVariant* arguments, Failure& failure);
    bool handleEvent(std::int32_t id, const char* event);

    std::function<Menu()> menu;
    std::vector<Entry> entries;
    std::optional<std::uint32_t> revision;  ///< none before the first look
    std::int32_t nextId = 1;
    ExportedObject object;
};

}  // namespace quorvel::native
