#include "platform/linux/status/DBusMenu.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace quorvel::native {
namespace {

constexpr std::int32_t rootId = 0;

constexpr const char* introspection = R"xml(<node><interface name="com.canonical.dbusmenu">
<property name="Version" type="u" access="read"/>
<property name="TextDirection" type="s" access="read"/>
<property name="Status" type="s" access="read"/>
<property name="IconThemePath" type="as" access="read"/>
<method name="GetLayout">
 <arg type="i" name="parentId" direction="in"/>
 <arg type="i" name="recursionDepth" direction="in"/>
 <arg type="as" name="propertyNames" direction="in"/>
 <arg type="u" name="revision" direction="out"/>
 <arg type="(ia{sv}av)" name="layout" direction="out"/>
</method>
<method name="GetGroupProperties">
 <arg type="ai" name="ids" direction="in"/>
 <arg type="as" name="propertyNames" direction="in"/>
 <arg type="a(ia{sv})" name="properties" direction="out"/>
</method>
<method name="GetProperty">
 <arg type="i" name="id" direction="in"/>
 <arg type="s" name="name" direction="in"/>
 <arg type="v" name="value" direction="out"/>
</method>
<method name="Event">
 <arg type="i" name="id" direction="in"/>
 <arg type="s" name="eventId" direction="in"/>
 <arg type="v" name="data" direction="in"/>
 <arg type="u" name="timestamp" direction="in"/>
</method>
<method name="EventGroup">
 <arg type="a(isvu)" name="events" direction="in"/>
 <arg type="ai" name="idErrors" direction="out"/>
</method>
<method name="AboutToShow">
 <arg type="i" name="id" direction="in"/>
 <arg type="b" name="needUpdate" direction="out"/>
</method>
<method name="AboutToShowGroup">
 <arg type="ai" name="ids" direction="in"/>
 <arg type="ai" name="updatesNeeded" direction="out"/>
 <arg type="ai" name="idErrors" direction="out"/>
</method>
<signal name="ItemsPropertiesUpdated">
 <arg type="a(ia{sv})" name="updatedProps"/>
 <arg type="a(ias)" name="removedProps"/>
</signal>
<signal name="LayoutUpdated">
 <arg type="u" name="revision"/>
 <arg type="i" name="parent"/>
</signal>
<signal name="ItemActivationRequested">
 <arg type="i" name="id"/>
 <arg type="u" name="timestamp"/>
</signal>
</interface></node>)xml";

ExportedObject::Failure unknownEntry() {
    return {"org.freedesktop.DBus.Error.InvalidArgs", "The menu has no such entry"};
}

bool isSame(const MenuItem& a, const MenuItem& b) {
    return a.title == b.title && a.keyEquivalent == b.keyEquivalent;
}

/// In a label one underscore marks the key of the next character, two are one.
std::string labelOf(std::string_view title) {
    std::string label;
    for (const char c : title) label.append(c == '_' ? 2 : 1, c);
    return label;
}

/// The names of keys are GDK's. Panels on Qt show none for the comma, whose name they do not know;
/// by the character itself those on GTK would show none.
GVariant* shortcutOf(const std::string& key) {
    GVariantBuilder shortcuts;
    g_variant_builder_init(&shortcuts, G_VARIANT_TYPE("aas"));
    g_variant_builder_open(&shortcuts, G_VARIANT_TYPE("as"));
    g_variant_builder_add(&shortcuts, "s", "Super");
    g_variant_builder_add(&shortcuts, "s", key == "," ? "comma" : key.c_str());
    g_variant_builder_close(&shortcuts);
    return g_variant_builder_end(&shortcuts);
}

using Names = std::vector<std::string>;

Names namesIn(GVariant* arguments, gsize index) {
    const OwnedVariant list(g_variant_get_child_value(arguments, index));
    Names names;
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const char* name = nullptr;
        g_variant_get_child(list.get(), i, "&s", &name);
        names.emplace_back(name);
    }
    return names;
}

/// Those of the properties that are asked for; where no names are given, all.
OwnedVariant chosenFrom(GVariantDict& all, const Names& wanted) {
    OwnedVariant everything(g_variant_ref_sink(g_variant_dict_end(&all)));
    if (wanted.empty()) return everything;
    GVariantDict chosen;
    g_variant_dict_init(&chosen, nullptr);
    for (const std::string& name : wanted) {
        const OwnedVariant value(g_variant_lookup_value(everything.get(), name.c_str(), nullptr));
        if (value) g_variant_dict_insert_value(&chosen, name.c_str(), value.get());
    }
    return OwnedVariant(g_variant_ref_sink(g_variant_dict_end(&chosen)));
}

/// What differs from the interface's defaults.
OwnedVariant propertiesOf(const MenuItem& item, const Names& wanted = {}) {
    GVariantDict all;
    g_variant_dict_init(&all, nullptr);
    if (item.isSeparator()) {
        g_variant_dict_insert(&all, "type", "s", "separator");
    } else {
        g_variant_dict_insert(&all, "label", "s", labelOf(item.title).c_str());
    }
    if (!item.keyEquivalent.empty()) {
        g_variant_dict_insert_value(&all, "shortcut", shortcutOf(item.keyEquivalent));
    }
    return chosenFrom(all, wanted);
}

OwnedVariant rootProperties(const Names& wanted = {}) {
    GVariantDict all;
    g_variant_dict_init(&all, nullptr);
    g_variant_dict_insert(&all, "children-display", "s", "submenu");
    return chosenFrom(all, wanted);
}

}  // namespace

DBusMenu::DBusMenu(GDBusConnection* connection, std::function<Menu()> provider)
    : menu(std::move(provider)), object(connection, description()) {}

ExportedObject::Description DBusMenu::description() {
    return {
        path,
        introspection,
        {{"GetLayout", [this](GVariant* in, Failure& failure) { return layout(in, failure); }},
         {"GetGroupProperties", [this](GVariant* in, Failure&) { return groupProperties(in); }},
         {"GetProperty", [this](GVariant* in, Failure& failure) { return property(in, failure); }},
         {"Event",
          [this](GVariant* in, Failure& failure) -> GVariant* {
              std::int32_t id = 0;
              const char* event = nullptr;
              g_variant_get(in, "(i&svu)", &id, &event, nullptr, nullptr);
              if (!handleEvent(id, event)) failure = unknownEntry();
              return nullptr;
          }},
         {"EventGroup",
          [this](GVariant* in, Failure& failure) {
              GVariantBuilder errors;
              g_variant_builder_init(&errors, G_VARIANT_TYPE("ai"));
              bool knowsAny = false;
              const OwnedVariant events(g_variant_get_child_value(in, 0));
              GVariantIter iterator;
              g_variant_iter_init(&iterator, events.get());
              std::int32_t id = 0;
              const char* event = nullptr;
              while (g_variant_iter_next(&iterator, "(i&svu)", &id, &event, nullptr, nullptr)) {
                  if (handleEvent(id, event)) {
                      knowsAny = true;
                  } else {
                      g_variant_builder_add(&errors, "i", id);
                  }
              }
              if (!knowsAny && g_variant_n_children(events.get()) > 0) {
                  failure = unknownEntry();
              }
              return g_variant_new("(ai)", &errors);
          }},
         {"AboutToShow",
          [this](GVariant* in, Failure&) {
              std::int32_t id = 0;
              g_variant_get(in, "(i)", &id);
              return g_variant_new("(b)", static_cast<gboolean>(id == rootId && update()));
          }},
         {"AboutToShowGroup",
          [this](GVariant* in, Failure&) {
              GVariantBuilder updated;
              g_variant_builder_init(&updated, G_VARIANT_TYPE("ai"));
              GVariantBuilder errors;
              g_variant_builder_init(&errors, G_VARIANT_TYPE("ai"));
              const OwnedVariant ids(g_variant_get_child_value(in, 0));
              GVariantIter iterator;
              g_variant_iter_init(&iterator, ids.get());
              std::int32_t id = 0;
              while (g_variant_iter_next(&iterator, "i", &id)) {
                  if (id == rootId) {
                      if (update()) g_variant_builder_add(&updated, "i", id);
                  } else if (find(id) == nullptr) {
                      g_variant_builder_add(&errors, "i", id);
                  }
              }
              return g_variant_new("(aiai)", &updated, &errors);
          }}},
        {{"Version", [] { return g_variant_new_uint32(3); }},
         {"TextDirection", [] { return g_variant_new_string("ltr"); }},
         {"Status", [] { return g_variant_new_string("normal"); }},
         {"IconThemePath", [] { return g_variant_new_strv(nullptr, 0); }}}};
}

bool DBusMenu::update() {
    Menu now = menu();
    const bool isUnchanged =
        revision && std::equal(entries.begin(), entries.end(), now.begin(), now.end(),
                               [](const Entry& a, const MenuItem& b) { return isSame(a.item, b); });
    if (isUnchanged) return false;
    entries.clear();
    for (MenuItem& item : now) {
        entries.push_back({nextId++, std::move(item)});
    }
    const bool isFirst = !revision;
    revision = revision.value_or(0) + 1;
    if (!isFirst) object.emit("LayoutUpdated", g_variant_new("(ui)", *revision, rootId));
    return !isFirst;
}

const DBusMenu::Entry* DBusMenu::find(std::int32_t id) const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

GVariant* DBusMenu::layout(GVariant* arguments, Failure& failure) {
    std::int32_t parent = 0;
    std::int32_t depth = 0;
    g_variant_get(arguments, "(iias)", &parent, &depth, nullptr);
    const Names wanted = namesIn(arguments, 2);
    // Not every panel says when it is about to show the menu, but each asks for it.
    if (parent == rootId) update();
    const Entry* const entry = find(parent);
    if (parent != rootId && entry == nullptr) {
        failure = unknownEntry();
        return nullptr;
    }
    GVariantBuilder children;
    g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
    if (parent == rootId && depth != 0) {
        for (const auto& [id, item] : entries) {
            g_variant_builder_add(
                &children, "v",
                g_variant_new("(i@a{sv}av)", id, propertiesOf(item, wanted).get(), nullptr));
        }
    }
    const OwnedVariant properties =
        entry != nullptr ? propertiesOf(entry->item, wanted) : rootProperties(wanted);
    return g_variant_new("(u(i@a{sv}av))", revision.value_or(0), parent, properties.get(),
                         &children);
}

GVariant* DBusMenu::groupProperties(GVariant* arguments) {
    GVariantBuilder result;
    g_variant_builder_init(&result, G_VARIANT_TYPE("a(ia{sv})"));
    const OwnedVariant ids(g_variant_get_child_value(arguments, 0));
    const Names names = namesIn(arguments, 1);
    const bool wantsAll = g_variant_n_children(ids.get()) == 0;
    const auto isWanted = [&](std::int32_t id) {
        GVariantIter iterator;
        g_variant_iter_init(&iterator, ids.get());
        std::int32_t wanted = 0;
        while (g_variant_iter_next(&iterator, "i", &wanted)) {
            if (wanted == id) return true;
        }
        return wantsAll;
    };
    const auto add = [&](std::int32_t id, const OwnedVariant& properties) {
        g_variant_builder_add(&result, "(i@a{sv})", id, properties.get());
    };
    if (isWanted(rootId)) add(rootId, rootProperties(names));
    for (const auto& [id, item] : entries) {
        if (isWanted(id)) add(id, propertiesOf(item, names));
    }
    return g_variant_new("(a(ia{sv}))", &result);
}

GVariant* DBusMenu::property(GVariant* arguments, Failure& failure) {
    std::int32_t id = 0;
    const char* name = nullptr;
    g_variant_get(arguments, "(i&s)", &id, &name);
    const Entry* const entry = find(id);
    if (id == rootId || entry != nullptr) {
        const OwnedVariant properties =
            entry != nullptr ? propertiesOf(entry->item) : rootProperties();
        const OwnedVariant value(g_variant_lookup_value(properties.get(), name, nullptr));
        if (value) return g_variant_new("(v)", value.get());
    }
    failure = unknownEntry();
    return nullptr;
}

/// False for an entry that there is not (any more).
bool DBusMenu::handleEvent(std::int32_t id, const char* event) {
    if (id == rootId) return true;
    const Entry* const entry = find(id);
    if (entry == nullptr) return false;
    if (std::string_view(event) == "clicked" && entry->item.action) {
        // By a copy: what it does may rebuild the menu.
        const auto action = entry->item.action;
        action();
    }
    return true;
}

}  // namespace quorvel::native
