// The item and its menu on a real session bus, against well-behaved peers and others.

#include <gmock/gmock.h>

#include <unistd.h>

#include <optional>

#include "platform/linux/StandardErrorLog.hpp"
#include "platform/linux/status/SessionBus.hpp"
#include "platform/linux/status/StatusNotifierItem.hpp"
#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::test {
namespace {

using native::ExportedObject;
using native::OwnedVariant;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* menuInterface = "com.canonical.dbusmenu";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";

class StatusNotifierTest : public ConnectedTest {
protected:
    native::StandardErrorLog log;
    native::SessionBus bus{loop, log};
    native::SessionBus peer{loop, log};
    native::StatusItemContent content{
        {{16, std::vector<std::uint32_t>(16 * 16, 0x80112233)}}, "", "Tip", "Label"};
    std::vector<StatusItemEvent::Type> clicks;
    std::vector<std::string> chosen;
    std::vector<std::string> titles{"Settings…", "", "Quit"};
    int menusMade = 0;
    int changes = 0;
    std::optional<native::StatusNotifierItem> item;

    StatusNotifierTest() {
        bus.connect();
        peer.connect();
        EXPECT_TRUE(waitInLoop([&] { return bus.connection() && peer.connection(); }));
        item.emplace(bus.connection(), loop, content,
                     native::StatusNotifierItem::Handlers{
                         [this](StatusItemEvent::Type type) { clicks.push_back(type); },
                         [this] { return makeMenu(); }, [this] { ++changes; }});
        const std::string name = "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-1";
        itemName = name;
        EXPECT_TRUE(waitInLoop([&] {
            const auto owner =
                callAt("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                       "NameHasOwner", g_variant_new("(s)", itemName.c_str()));
            gboolean isOwned = FALSE;
            if (owner.value) g_variant_get(owner.value.get(), "(b)", &isOwned);
            return isOwned != FALSE;
        }));
    }

    struct Answer {
        OwnedVariant value;  ///< null for an error
        std::string error;   ///< its D-Bus name
    };

    Answer callAt(const char* destination, const char* path, const char* interface,
                  const char* method, GVariant* arguments) {
        struct Call {
            Answer answer;
            bool isDone = false;
        } call;
        g_dbus_connection_call(
            peer.connection(), destination, path, interface, method, arguments, nullptr,
            G_DBUS_CALL_FLAGS_NO_AUTO_START, 5000, nullptr,
            [](GObject* source, GAsyncResult* result, gpointer data) {
                auto& made = *static_cast<Call*>(data);
                GError* error = nullptr;
                made.answer.value.reset(
                    g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &error));
                if (error != nullptr) {
                    made.answer.error = native::takeText(g_dbus_error_get_remote_error(error));
                    g_error_free(error);
                }
                made.isDone = true;
            },
            &call);
        EXPECT_TRUE(waitInLoop([&] { return call.isDone; }));
        return std::move(call.answer);
    }
    Answer onMenu(const char* method, GVariant* arguments) {
        return callAt(itemName.c_str(), "/MenuBar", menuInterface, method, arguments);
    }
    Answer onItem(const char* method, GVariant* arguments) {
        return callAt(itemName.c_str(), "/StatusNotifierItem", itemInterface, method, arguments);
    }
    OwnedVariant property(const char* name) {
        const auto answer =
            callAt(itemName.c_str(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties",
                   "Get", g_variant_new("(ss)", itemInterface, name));
        GVariant* value = nullptr;
        if (answer.value) g_variant_get(answer.value.get(), "(v)", &value);
        return OwnedVariant(value);
    }

    struct Layout {
        std::uint32_t revision = 0;
        std::vector<std::int32_t> ids;
        std::vector<std::string> labels;  ///< "-" for a separator
    };
    Layout layout(int depth = -1) {
        Layout result;
        const auto answer = onMenu("GetLayout", g_variant_new("(iias)", 0, depth, nullptr));
        if (!answer.value) return result;
        GVariant* list = nullptr;
        g_variant_get(answer.value.get(), "(u(i@a{sv}@av))", &result.revision, nullptr, nullptr,
                      &list);
        const OwnedVariant children(list);
        for (gsize i = 0; i < g_variant_n_children(children.get()); ++i) {
            const OwnedVariant boxed(g_variant_get_child_value(children.get(), i));
            const OwnedVariant child(g_variant_get_variant(boxed.get()));
            std::int32_t id = 0;
            GVariant* dictionary = nullptr;
            g_variant_get(child.get(), "(i@a{sv}av)", &id, &dictionary, nullptr);
            const OwnedVariant properties(dictionary);
            const char* label = "-";
            g_variant_lookup(properties.get(), "label", "&s", &label);
            result.ids.push_back(id);
            result.labels.emplace_back(label);
        }
        return result;
    }
    Answer choose(std::int32_t id, const char* event = "clicked") {
        return onMenu("Event", g_variant_new("(isvu)", id, event, g_variant_new_int32(0), 0U));
    }
    bool aboutToShow() {
        const auto answer = onMenu("AboutToShow", g_variant_new("(i)", 0));
        gboolean needsUpdate = FALSE;
        if (answer.value) g_variant_get(answer.value.get(), "(b)", &needsUpdate);
        return needsUpdate != FALSE;
    }

    std::string itemName;

private:
    static std::string keyOf(const std::string& title) {
        return title == "Settings…" ? "," : title == "Quit" ? "q" : "";
    }

    Menu makeMenu() {
        ++menusMade;
        Menu menu;
        for (const std::string& title : titles) {
            if (title.empty()) {
                menu.push_back(MenuItem::separator());
            } else {
                menu.push_back({title, [this, title] { chosen.push_back(title); }, keyOf(title)});
            }
        }
        return menu;
    }
};

TEST_F(StatusNotifierTest, TheMenuHasItsEntriesAndTheyDoTheirWork) {
    const Layout shown = layout();
    EXPECT_THAT(shown.labels, ElementsAre("Settings…", "-", "Quit"));
    EXPECT_FALSE(aboutToShow());
    EXPECT_TRUE(choose(shown.ids[2]).value);
    EXPECT_TRUE(choose(shown.ids[0], "hovered").value);
    EXPECT_TRUE(choose(shown.ids[1]).value);
    EXPECT_THAT(chosen, ElementsAre("Quit"));
    EXPECT_THAT(layout(0).labels, IsEmpty());
    EXPECT_EQ(layout(1).labels.size(), 3u);
}

TEST_F(StatusNotifierTest, AnUnderscoreInATitleIsNoKeyOfIt) {
    titles = {"a_b"};
    EXPECT_THAT(layout().labels, ElementsAre("a__b"));
}

TEST_F(StatusNotifierTest, OnlyThePropertiesThatAreNamedAreTold) {
    titles = {"Settings…", "", "Quit"};
    const auto told = [this](std::initializer_list<const char*> names) {
        GVariantBuilder wanted;
        g_variant_builder_init(&wanted, G_VARIANT_TYPE("as"));
        for (const char* const name : names) g_variant_builder_add(&wanted, "s", name);
        const auto answer = onMenu("GetGroupProperties", g_variant_new("(aias)", nullptr, &wanted));
        return answer.value ? native::takeText(g_variant_print(answer.value.get(), FALSE)) : "";
    };
    layout();
    EXPECT_EQ(told({"shortcut"}),
              "([(0, {}), (1, {'shortcut': <[['Super', 'comma']]>}), (2, {}), "
              "(3, {'shortcut': <[['Super', 'q']]>})],)");
    EXPECT_EQ(told({"type", "none"}),
              "([(0, {}), (1, {}), (2, {'type': <'separator'>}), (3, {})],)");
}

TEST_F(StatusNotifierTest, AClickOnAnEntryOfAnOlderMenuDoesNothing) {
    const Layout before = layout();
    titles = {"Settings…", "Enable…", "", "Quit"};
    EXPECT_TRUE(aboutToShow());
    const Layout after = layout();
    EXPECT_GT(after.revision, before.revision);
    EXPECT_THAT(after.labels, ElementsAre("Settings…", "Enable…", "-", "Quit"));
    for (const std::int32_t id : before.ids) {
        EXPECT_EQ(choose(id).error, "org.freedesktop.DBus.Error.InvalidArgs");
    }
    EXPECT_THAT(chosen, IsEmpty());
    choose(after.ids[1]);
    EXPECT_THAT(chosen, ElementsAre("Enable…"));
}

TEST_F(StatusNotifierTest, SeveralEventsAtOnceAreToldApart) {
    const Layout shown = layout();
    GVariantBuilder events;
    g_variant_builder_init(&events, G_VARIANT_TYPE("a(isvu)"));
    for (const std::int32_t id : {shown.ids[0], 4711, shown.ids[2]}) {
        g_variant_builder_add(&events, "(isvu)", id, "clicked", g_variant_new_int32(0), 0U);
    }
    const auto answer = onMenu("EventGroup", g_variant_new("(a(isvu))", &events));
    ASSERT_TRUE(answer.value);
    EXPECT_EQ(native::takeText(g_variant_print(answer.value.get(), FALSE)), "([4711],)");
    EXPECT_THAT(chosen, ElementsAre("Settings…", "Quit"));
}

TEST_F(StatusNotifierTest, PropertiesAreThoseOfTheContent) {
    const auto textOf = [this](const char* name) {
        const OwnedVariant value = property(name);
        return value ? native::takeText(g_variant_print(value.get(), TRUE)) : "(none)";
    };
    EXPECT_EQ(textOf("Title"), "'Label'");
    EXPECT_EQ(textOf("ToolTip"), "('', @a(iiay) [], 'Tip', '')");
    EXPECT_EQ(textOf("Menu"), "objectpath '/MenuBar'");
    EXPECT_EQ(textOf("ItemIsMenu"), "false");
    const OwnedVariant pictures = property("IconPixmap");
    ASSERT_TRUE(pictures);
    ASSERT_EQ(g_variant_n_children(pictures.get()), 1u);
    std::int32_t width = 0;
    std::int32_t height = 0;
    GVariant* bytes = nullptr;
    g_variant_get_child(pictures.get(), 0, "(ii@ay)", &width, &height, &bytes);
    const OwnedVariant owner(bytes);
    gsize count = 0;
    const auto* const data =
        static_cast<const std::uint8_t*>(g_variant_get_fixed_array(bytes, &count, 1));
    EXPECT_EQ(width, 16);
    EXPECT_EQ(height, 16);
    ASSERT_EQ(count, 16u * 16 * 4);
    EXPECT_THAT(std::vector(data, data + 4), ElementsAre(0x80, 0x11, 0x22, 0x33));
}

TEST_F(StatusNotifierTest, ClicksAreToldByTheirButton) {
    EXPECT_TRUE(onItem("Activate", g_variant_new("(ii)", 1, 2)).value);
    EXPECT_TRUE(onItem("ContextMenu", g_variant_new("(ii)", 1, 2)).value);
    EXPECT_TRUE(onItem("SecondaryActivate", g_variant_new("(ii)", 1, 2)).value);
    EXPECT_TRUE(onItem("Scroll", g_variant_new("(is)", 1, "vertical")).value);
    EXPECT_THAT(clicks, ElementsAre(StatusItemEvent::Type::leftMouseUp,
                                    StatusItemEvent::Type::rightMouseUp));
}

TEST_F(StatusNotifierTest, NonsenseIsRefusedAndChangesNothing) {
    const Layout shown = layout();
    const auto isRefused = [](const Answer& answer) { return !answer.value; };
    EXPECT_TRUE(isRefused(onItem("Activate", nullptr)));
    EXPECT_TRUE(isRefused(onItem("Activate", g_variant_new("(ss)", "a", "b"))));
    EXPECT_TRUE(isRefused(onItem("NoSuchThing", nullptr)));
    EXPECT_TRUE(isRefused(onMenu("GetLayout", g_variant_new("(i)", 0))));
    EXPECT_TRUE(isRefused(onMenu("GetLayout", g_variant_new("(iias)", 4711, -1, nullptr))));
    EXPECT_TRUE(isRefused(onMenu("GetProperty", g_variant_new("(is)", shown.ids[0], "none"))));
    EXPECT_TRUE(isRefused(onMenu("GetProperty", g_variant_new("(is)", -1, "label"))));
    EXPECT_TRUE(isRefused(onMenu("AboutToShow", g_variant_new("(s)", "0"))));
    EXPECT_TRUE(isRefused(choose(-5)));
    EXPECT_TRUE(isRefused(choose(2147483647)));
    EXPECT_TRUE(isRefused(
        callAt(itemName.c_str(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Set",
               g_variant_new("(ssv)", itemInterface, "Title", g_variant_new_string("Theirs")))));
    EXPECT_TRUE(onMenu("GetLayout", g_variant_new("(iias)", 0, 2147483647, nullptr)).value);
    GVariantBuilder ids;
    g_variant_builder_init(&ids, G_VARIANT_TYPE("ai"));
    for (int id = -50'000; id < 50'000; ++id) g_variant_builder_add(&ids, "i", id);
    const auto many = onMenu("GetGroupProperties", g_variant_new("(aias)", &ids, nullptr));
    ASSERT_TRUE(many.value);
    const OwnedVariant list(g_variant_get_child_value(many.value.get(), 0));
    EXPECT_EQ(g_variant_n_children(list.get()), 4u);
    EXPECT_THAT(clicks, IsEmpty());
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(layout().labels, shown.labels);
}

/// A watcher that says whatever the test wants.
class FakeWatcher {
public:
    FakeWatcher(GDBusConnection* connection, GVariant* hostRegistered)
        : answer(g_variant_ref_sink(hostRegistered)),
          object(connection,
                 {"/StatusNotifierWatcher",
                  R"(<node><interface name="org.kde.StatusNotifierWatcher">
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<signal name="StatusNotifierHostRegistered"/><signal name="StatusNotifierHostUnregistered"/>
</interface></node>)",
                  {{"RegisterStatusNotifierItem",
                    [this](GVariant* in, ExportedObject::Failure& failure) -> GVariant* {
                        const char* name = nullptr;
                        g_variant_get(in, "(&s)", &name);
                        registered.emplace_back(name);
                        if (refuses) failure = {"org.example.Refused", "No"};
                        return nullptr;
                    }}},
                  {{"IsStatusNotifierHostRegistered",
                    [this] { return g_variant_ref(answer.get()); }}}}),
          name(g_bus_own_name_on_connection(connection, watcherName, G_BUS_NAME_OWNER_FLAGS_NONE,
                                            nullptr, nullptr, nullptr, nullptr)) {}
    ~FakeWatcher() { g_bus_unown_name(name); }
    FakeWatcher(const FakeWatcher&) = delete;
    FakeWatcher& operator=(const FakeWatcher&) = delete;

    void say(GVariant* hostRegistered, const char* signal) {
        answer.reset(g_variant_ref_sink(hostRegistered));
        object.emit(signal);
    }

    bool refuses = false;
    std::vector<std::string> registered;

private:
    OwnedVariant answer;
    ExportedObject object;
    guint name;
};

TEST_F(StatusNotifierTest, WithoutAWatcherItIsKnownThatNobodyShowsIt) {
    EXPECT_TRUE(waitInLoop([&] { return item->isSettled(); }));
    EXPECT_FALSE(item->isHosted());
    EXPECT_EQ(changes, 1);
}

TEST_F(StatusNotifierTest, AWatcherWithoutAPanelShowsNothingUntilOneComes) {
    FakeWatcher watcher(peer.connection(), g_variant_new_boolean(FALSE));
    EXPECT_TRUE(waitInLoop([&] { return !watcher.registered.empty() && item->isSettled(); }));
    EXPECT_THAT(watcher.registered, ElementsAre(itemName));
    EXPECT_TRUE(neverInLoop(100ms, [&] { return item->isHosted(); }));
    watcher.say(g_variant_new_boolean(TRUE), "StatusNotifierHostRegistered");
    EXPECT_TRUE(waitInLoop([&] { return item->isHosted(); }));
    watcher.say(g_variant_new_boolean(FALSE), "StatusNotifierHostUnregistered");
    EXPECT_TRUE(waitInLoop([&] { return !item->isHosted(); }));
}

TEST_F(StatusNotifierTest, EachWatcherIsToldOfTheItem) {
    for (int life = 0; life < 3; ++life) {
        {
            FakeWatcher watcher(peer.connection(), g_variant_new_boolean(TRUE));
            EXPECT_TRUE(waitInLoop([&] { return item->isHosted(); }));
            EXPECT_THAT(watcher.registered, ElementsAre(itemName));
        }
        EXPECT_TRUE(waitInLoop([&] { return !item->isHosted(); }));
    }
}

TEST_F(StatusNotifierTest, AWatcherThatRefusesCountsAsNone) {
    FakeWatcher watcher(peer.connection(), g_variant_new_boolean(TRUE));
    watcher.refuses = true;
    EXPECT_TRUE(waitInLoop([&] { return !watcher.registered.empty(); }));
    EXPECT_TRUE(neverInLoop(100ms, [&] { return item->isHosted(); }));
    // That a panel has come is a reason to ask again, but not an answer.
    watcher.say(g_variant_new_boolean(TRUE), "StatusNotifierHostRegistered");
    EXPECT_TRUE(waitInLoop([&] { return watcher.registered.size() == 2; }));
    EXPECT_TRUE(neverInLoop(100ms, [&] { return item->isHosted(); }));
    watcher.refuses = false;
    watcher.say(g_variant_new_boolean(TRUE), "StatusNotifierHostRegistered");
    EXPECT_TRUE(waitInLoop([&] { return item->isHosted(); }));
}

/// A watcher by hand: it answers when the test wants it to.
class SlowWatcher {
public:
    explicit SlowWatcher(GDBusConnection* connection) : connection(connection) {
        node = g_dbus_node_info_new_for_xml(
            R"(<node><interface name="org.kde.StatusNotifierWatcher">
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
</interface></node>)",
            nullptr);
        table.method_call = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                               const gchar*, GVariant*, GDBusMethodInvocation* invocation,
                               gpointer self) {
            static_cast<SlowWatcher*>(self)->asked.push_back(invocation);
        };
        table.get_property = [](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                const gchar*, GError**,
                                gpointer) { return g_variant_new_boolean(TRUE); };
        object =
            g_dbus_connection_register_object(connection, "/StatusNotifierWatcher",
                                              node->interfaces[0], &table, this, nullptr, nullptr);
        name = g_bus_own_name_on_connection(connection, watcherName, G_BUS_NAME_OWNER_FLAGS_NONE,
                                            nullptr, nullptr, nullptr, nullptr);
    }
    ~SlowWatcher() {
        g_bus_unown_name(name);
        g_dbus_connection_unregister_object(connection, object);
        g_dbus_node_info_unref(node);
    }
    SlowWatcher(const SlowWatcher&) = delete;
    SlowWatcher& operator=(const SlowWatcher&) = delete;

    std::vector<GDBusMethodInvocation*> asked;

private:
    GDBusConnection* connection;
    GDBusNodeInfo* node = nullptr;
    GDBusInterfaceVTable table{};
    guint object = 0;
    guint name = 0;
};

TEST_F(StatusNotifierTest, AWatcherThatIsSlowToTakeItCountsWhenItHas) {
    SlowWatcher watcher(peer.connection());
    EXPECT_TRUE(waitInLoop([&] { return watcher.asked.size() == 1; }));
    // Meanwhile it may go into a tray.
    EXPECT_TRUE(waitInLoop([&] { return item->isSettled(); }));
    EXPECT_FALSE(item->isHosted());
    g_dbus_method_invocation_return_value(watcher.asked[0], nullptr);
    EXPECT_TRUE(waitInLoop([&] { return item->isHosted(); }));
    EXPECT_EQ(watcher.asked.size(), 1u);
}

TEST_F(StatusNotifierTest, AStormOfSignalsIsAnsweredByFewQuestions) {
    FakeWatcher watcher(peer.connection(), g_variant_new_boolean(FALSE));
    EXPECT_TRUE(waitInLoop([&] { return !watcher.registered.empty() && item->isSettled(); }));
    for (int i = 0; i < 2000; ++i) {
        watcher.say(g_variant_new_boolean(FALSE), "StatusNotifierHostRegistered");
    }
    watcher.say(g_variant_new_boolean(TRUE), "StatusNotifierHostRegistered");
    EXPECT_TRUE(waitInLoop([&] { return item->isHosted(); }));
}

TEST_F(StatusNotifierTest, NothingComesAfterItsEnd) {
    FakeWatcher watcher(peer.connection(), g_variant_new_boolean(TRUE));
    EXPECT_TRUE(waitInLoop([&] { return !watcher.registered.empty(); }));
    item.reset();
    const int before = changes;
    watcher.say(g_variant_new_boolean(FALSE), "StatusNotifierHostUnregistered");
    EXPECT_TRUE(neverInLoop(100ms, [&] { return changes != before; }));
    EXPECT_FALSE(onItem("Activate", g_variant_new("(ii)", 1, 2)).value);
}

TEST_F(StatusNotifierTest, ABusThatGoesIsSaidOnceAndOneThatComesIsFound) {
    int news = 0;
    const Subscription told = bus.onChange([&] {
        ++news;
        if (bus.connection() == nullptr) item.reset();
    });
    const std::string address = session.bus().address();
    session.bus().kill();
    EXPECT_TRUE(waitInLoop([&] { return news == 1; }));
    EXPECT_EQ(bus.connection(), nullptr);
    const auto revived = session.start({"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                        "--address=" + address.substr(0, address.find(','))});
    EXPECT_TRUE(waitInLoop([&] { return bus.connection() != nullptr; }));
}

}  // namespace
}  // namespace quorvel::test
