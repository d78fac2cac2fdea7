#include "platform/linux/status/StatusNotifierItem.hpp"

#include <unistd.h>

#include <chrono>
#include <string_view>
#include <utility>

namespace quorvel::native {
namespace {

constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* itemPath = "/StatusNotifierItem";
constexpr int answerWithinMilliseconds = 5000;
/// A panel that is busy starting may take the item much later than this; until then nobody has it.
constexpr std::chrono::seconds registrationPatience{3};

constexpr const char* introspection = R"xml(<node><interface name="org.kde.StatusNotifierItem">
<property name="Category" type="s" access="read"/>
<property name="Id" type="s" access="read"/>
<property name="Title" type="s" access="read"/>
<property name="Status" type="s" access="read"/>
<property name="WindowId" type="i" access="read"/>
<property name="IconName" type="s" access="read"/>
<property name="IconPixmap" type="a(iiay)" access="read"/>
<property name="IconThemePath" type="s" access="read"/>
<property name="IconAccessibleDesc" type="s" access="read"/>
<property name="OverlayIconName" type="s" access="read"/>
<property name="OverlayIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionIconName" type="s" access="read"/>
<property name="AttentionIconPixmap" type="a(iiay)" access="read"/>
<property name="AttentionMovieName" type="s" access="read"/>
<property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
<property name="XAyatanaLabel" type="s" access="read"/>
<property name="ItemIsMenu" type="b" access="read"/>
<property name="Menu" type="o" access="read"/>
<method name="Activate">
 <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
</method>
<method name="SecondaryActivate">
 <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
</method>
<method name="ContextMenu">
 <arg name="x" type="i" direction="in"/><arg name="y" type="i" direction="in"/>
</method>
<method name="Scroll">
 <arg name="delta" type="i" direction="in"/><arg name="orientation" type="s" direction="in"/>
</method>
<signal name="NewTitle"/>
<signal name="NewIcon"/>
<signal name="NewAttentionIcon"/>
<signal name="NewOverlayIcon"/>
<signal name="NewToolTip"/>
<signal name="NewStatus"><arg name="status" type="s"/></signal>
</interface></node>)xml";

GVariant* text(const std::string& value) {
    return g_variant_new_string(value.c_str());
}

/// Each pixel as its bytes from alpha to blue.
GVariant* pictures(const std::vector<IconImage>& icons) {
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(iiay)"));
    for (const IconImage& icon : icons) {
        std::vector<std::uint32_t> bytes = icon.pixels;
        for (std::uint32_t& pixel : bytes) pixel = GUINT32_TO_BE(pixel);
        g_variant_builder_add(
            &list, "(ii@ay)", icon.size, icon.size,
            g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size() * 4, 1));
    }
    return g_variant_builder_end(&list);
}

GVariant* noPictures() {
    return g_variant_new_array(G_VARIANT_TYPE("(iiay)"), nullptr, 0);
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(GDBusConnection* connection, RunLoop& runLoop,
                                       const StatusItemContent& content, Handlers handlers)
    : connection(connection),
      runLoop(runLoop),
      handlers(std::move(handlers)),
      busName("org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-1"),
      calls(g_cancellable_new()),
      object(connection, description(content, this->handlers.clicked)),
      menu(connection, [this] { return this->handlers.menu(); }) {
    nameOwnership =
        g_bus_own_name_on_connection(connection, busName.c_str(), G_BUS_NAME_OWNER_FLAGS_NONE,
                                     nullptr, nullptr, nullptr, nullptr);
    hostSignals = g_dbus_connection_signal_subscribe(
        connection, watcherName, watcherName, nullptr, watcherPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal,
           GVariant*, gpointer self) {
            if (std::string_view(signal).starts_with("StatusNotifierHost")) {
                static_cast<StatusNotifierItem*>(self)->hostsChanged();
            }
        },
        this, nullptr);
    watcherWatch = g_bus_watch_name_on_connection(
        connection, watcherName, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar* owner, gpointer self) {
            static_cast<StatusNotifierItem*>(self)->watcherAppeared(owner);
        },
        [](GDBusConnection*, const gchar*, gpointer self) {
            static_cast<StatusNotifierItem*>(self)->watcherVanished();
        },
        this, nullptr);
}

StatusNotifierItem::~StatusNotifierItem() {
    g_cancellable_cancel(calls.get());
    g_bus_unwatch_name(watcherWatch);
    g_dbus_connection_signal_unsubscribe(connection, hostSignals);
    g_bus_unown_name(nameOwnership);
}

void StatusNotifierItem::contentChanged() const {
    for (const char* const signal : {"NewTitle", "NewIcon", "NewToolTip"}) object.emit(signal);
}

ExportedObject::Description StatusNotifierItem::description(
    const StatusItemContent& content, std::function<void(StatusItemEvent::Type)> clicked) {
    const auto onClick = [&clicked](StatusItemEvent::Type type) {
        return [clicked, type](GVariant*, ExportedObject::Failure&) -> GVariant* {
            clicked(type);
            return nullptr;
        };
    };
    const auto ignored = [](GVariant*, ExportedObject::Failure&) -> GVariant* { return nullptr; };
    const auto always = [](const char* value) {
        return [value] { return g_variant_new_string(value); };
    };
    return {itemPath,
            introspection,
            {{"Activate", onClick(StatusItemEvent::Type::leftMouseUp)},
             {"ContextMenu", onClick(StatusItemEvent::Type::rightMouseUp)},
             {"SecondaryActivate", ignored},
             {"Scroll", ignored}},
            {{"Category", always("ApplicationStatus")},
             {"Id", always("com.tessivane.quorvel")},
             {"Title", [&content] { return text(content.accessibilityLabel); }},
             {"Status", always("Active")},
             {"WindowId", [] { return g_variant_new_int32(0); }},
             // Where a name is given, panels use only that, and the theme may not have it.
             {"IconName", always("")},
             {"IconPixmap", [&content] { return pictures(content.icons); }},
             {"IconThemePath", always("")},
             {"IconAccessibleDesc", [&content] { return text(content.accessibilityLabel); }},
             {"OverlayIconName", always("")},
             {"OverlayIconPixmap", noPictures},
             {"AttentionIconName", always("")},
             {"AttentionIconPixmap", noPictures},
             {"AttentionMovieName", always("")},
             {"ToolTip",
              [&content] {
                  return g_variant_new("(s@a(iiay)ss)", "", noPictures(), content.toolTip.c_str(),
                                       "");
              }},
             {"XAyatanaLabel", [&content] { return text(content.title); }},
             {"ItemIsMenu", [] { return g_variant_new_boolean(FALSE); }},
             {"Menu", [] { return g_variant_new_object_path(DBusMenu::path); }}}};
}

void StatusNotifierItem::watcherAppeared(const char* owner) {
    watcher = owner;
    isRegistered = false;
    registerItem();
}

void StatusNotifierItem::watcherVanished() {
    watcher.clear();
    isRegistered = false;
    setHosted(false);
}

void StatusNotifierItem::hostsChanged() {
    if (isRegistered) {
        askForHosts();
    } else {
        // Refused so far; a panel that has just come may change that.
        registerItem();
    }
}

void StatusNotifierItem::registerItem() {
    if (watcher.empty() || !askedWatcher.empty()) return;
    askedWatcher = watcher;
    g_dbus_connection_call(
        connection, watcher.c_str(), watcherPath, watcherName, "RegisterStatusNotifierItem",
        g_variant_new("(s)", busName.c_str()), nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT,
        calls.get(),
        [](GObject* source, GAsyncResult* result, gpointer self) {
            GError* error = nullptr;
            const OwnedVariant answer(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            const OwnedError owner(error);
            if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) return;
            static_cast<StatusNotifierItem*>(self)->registered(answer != nullptr);
        },
        this);
    runLoop.after(registrationPatience, [this, alive = life.watch()] {
        if (!alive.expired() && !settled) setHosted(false);
    });
}

void StatusNotifierItem::registered(bool accepted) {
    // Another may have come while that one was asked.
    if (std::exchange(askedWatcher, {}) != watcher) return registerItem();
    isRegistered = accepted;
    if (isRegistered) {
        askForHosts();
    } else {
        setHosted(false);
    }
}

/// A watcher without a panel knows of the item, but nobody shows it.
void StatusNotifierItem::askForHosts() {
    asksAgain = isAsking;
    if (!isRegistered || std::exchange(isAsking, true)) return;
    g_dbus_connection_call(
        connection, watcher.c_str(), watcherPath, "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", watcherName, "IsStatusNotifierHostRegistered"), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, answerWithinMilliseconds, calls.get(),
        [](GObject* source, GAsyncResult* result, gpointer self) {
            GError* error = nullptr;
            const OwnedVariant answer(
                g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
            const OwnedError owner(error);
            if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED) != FALSE) return;
            auto* const item = static_cast<StatusNotifierItem*>(self);
            item->isAsking = false;
            if (item->asksAgain) return item->askForHosts();
            item->setHosted(answer && saysHosted(answer.get()));
        },
        this);
}

bool StatusNotifierItem::saysHosted(GVariant* answer) {
    GVariant* inner = nullptr;
    g_variant_get(answer, "(v)", &inner);
    const OwnedVariant value(inner);
    return g_variant_is_of_type(inner, G_VARIANT_TYPE_BOOLEAN) != FALSE &&
           g_variant_get_boolean(inner) != FALSE;
}

void StatusNotifierItem::setHosted(bool isHostedNow) {
    // The watcher may have gone while its answer was on the way.
    const bool before = std::exchange(hosted, isHostedNow && isRegistered);
    const bool wasSettled = std::exchange(settled, true);
    if (hosted != before || !wasSettled) handlers.changed();
}

}  // namespace quorvel::native
