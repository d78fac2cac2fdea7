#include <gio/gio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Lines.hpp"
#include "platform/linux/BusControl.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/JsonDocument.hpp"
#include "platform/linux/status/DBusMenu.hpp"
#include "platform/linux/status/ExportedObject.hpp"
#include "platform/linux/status/StatusNotifierItem.hpp"

using namespace quorvel;
using namespace quorvel::native;
using fuzz::require;

namespace {

std::string valid(const std::string& text) {
    return takeText(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
}

std::string signatureOf(GDBusArgInfo** arguments) {
    std::string signature = "(";
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) {
        signature += (*arguments)->signature;
    }
    return signature + ")";
}

/// In the notation of GVariant, or behind a * as bytes of the expected type, whatever they are.
/// Null when there is no such value.
OwnedVariant variantOf(std::string_view text, const std::string& expected) {
    const GVariantType* const type = G_VARIANT_TYPE(expected.c_str());
    if (text.starts_with('*')) {
        // Aligned as what comes from a bus is.
        const std::string bytes(text.substr(1));
        gpointer const memory = g_memdup2(bytes.data(), bytes.size());
        const OwnedVariant raw(g_variant_ref_sink(
            g_variant_new_from_data(type, memory, bytes.size(), FALSE, g_free, memory)));
        return OwnedVariant(g_variant_get_normal_form(raw.get()));
    }
    const std::string notation = valid(std::string(text));
    GVariant* parsed = g_variant_parse(type, notation.c_str(), nullptr, nullptr, nullptr);
    if (parsed == nullptr) {
        parsed = g_variant_parse(nullptr, notation.c_str(), nullptr, nullptr, nullptr);
    }
    return OwnedVariant(parsed);
}

void failOnComplaint(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer) {
    constexpr int complaints = G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING;
    if ((level & complaints) == 0) return;
    std::fprintf(stderr, "%s: %s\n", domain, message);
    std::abort();
}

/// The objects as they are on a bus, without one.
class Objects {
public:
    Objects() {
        content.icons = {IconImage{2, {0xFF000000, 0x80FFFFFF, 0, 0x01020304}}};
        server = [this](const RemoteRequest& request) {
            requests.push_back(request.command);
            if (refusal) return RemoteAnswer{{}, refusal};
            return RemoteAnswer{{{"argument", request.argument},
                                 {"text", said},
                                 {"list", Value::Array{Value(said), Value(1)}}},
                                std::nullopt};
        };
    }

    /// Titles with a ; between them; the key of one behind a tab.
    void setMenu(std::string_view titles) {
        entries.clear();
        for (const std::string_view each : fuzz::parts(titles, ';')) {
            const auto [title, key] = fuzz::cut(each, '\t');
            entries.push_back({valid(std::string(title)), nullptr, valid(std::string(key))});
        }
        mostEntries = std::max(mostEntries, entries.size());
    }
    void setContent(std::string_view text) {
        content.accessibilityLabel = content.toolTip = content.title = valid(std::string(text));
    }
    void say(std::string_view text) { said = text, refusal.reset(); }
    void refuse(std::string_view text) { refusal = std::string(text); }

    void call(std::string_view name, std::string_view arguments) {
        // A name that comes from a bus has no zeros.
        const auto [object, method] = fuzz::cut(name.substr(0, name.find('\0')), '.');
        if (object == "menu") callMenu(std::string(method), arguments);
        if (object == "item") {
            answer(item, std::string(method), arguments);
            require(clicks <= 1);
            clicks = 0;
        }
        if (object == "application") {
            requests.clear();
            answer(application, std::string(method), arguments);
            require(requests.size() <= 1 && (requests.empty() || requests.front() == "settings"));
        }
        if (object == "control") callControl(std::string(method), arguments);
    }

    void readProperties() const {
        for (const ExportedObject* object : {&menu.exported(), &item, &control, &application}) {
            GDBusPropertyInfo** property = object->interface().properties;
            for (; property != nullptr && *property != nullptr; ++property) {
                const OwnedVariant value = object->property((*property)->name);
                require(value && std::strcmp(g_variant_get_type_string(value.get()),
                                             (*property)->signature) == 0);
            }
        }
        require(!item.property("NoSuchProperty"));
    }

private:
    struct Exchange {
        OwnedVariant arguments;
        OwnedVariant answer;
        ExportedObject::Failure failure;
        bool isOfType = false;
        bool hasSucceeded() const { return isOfType && failure.name.empty(); }
    };

    /// Whatever the arguments are, the answer is what the interface says, or an error that a bus
    /// carries.
    static Exchange answer(const ExportedObject& object, const std::string& method,
                           std::string_view text) {
        GDBusMethodInfo* const info = g_dbus_interface_info_lookup_method(
            const_cast<GDBusInterfaceInfo*>(&object.interface()), method.c_str());
        const std::string expected = info != nullptr ? signatureOf(info->in_args) : "()";
        Exchange exchange;
        exchange.arguments = variantOf(text, expected);
        if (!exchange.arguments) return exchange;
        exchange.isOfType =
            info != nullptr && expected == g_variant_get_type_string(exchange.arguments.get());
        exchange.answer = object.answer(method.c_str(), exchange.arguments.get(), exchange.failure);
        const auto& failure = exchange.failure;
        if (!failure.name.empty()) {
            require(!exchange.answer);
            require(g_dbus_is_interface_name(failure.name.c_str()) != FALSE);
            require(g_utf8_validate(failure.message.c_str(), -1, nullptr) != FALSE);
            return exchange;
        }
        require(exchange.isOfType);
        const std::string type =
            exchange.answer ? g_variant_get_type_string(exchange.answer.get()) : "()";
        require(type == signatureOf(info->out_args));
        require(!exchange.answer || g_variant_is_normal_form(exchange.answer.get()) != FALSE);
        return exchange;
    }

    Menu entriesNow() {
        Menu result = entries;
        for (MenuItem& each : result) {
            if (each.isSeparator()) continue;
            each.action = [this, title = each.title] { chosen.push_back(title); };
        }
        return result;
    }

    void callMenu(const std::string& method, std::string_view text) {
        chosen.clear();
        const Exchange exchange = answer(menu.exported(), method, text);
        if (method != "Event" && method != "EventGroup") require(chosen.empty());
        if (!exchange.hasSucceeded()) {
            require(chosen.empty());
            return;
        }
        GVariant* const arguments = exchange.arguments.get();
        if (method == "Event") {
            gint32 id = 0;
            g_variant_get(arguments, "(isvu)", &id, nullptr, nullptr, nullptr);
            require(chosen.size() <= 1);
            require(chosen.empty() || !titles.contains(id) || titles.at(id) == chosen.front());
        }
        if (method == "EventGroup") {
            const OwnedVariant events(g_variant_get_child_value(arguments, 0));
            require(chosen.size() <= g_variant_n_children(events.get()));
        }
        if (method == "GetLayout") checkLayout(text, exchange);
        if (method == "GetGroupProperties") {
            const OwnedVariant list(g_variant_get_child_value(exchange.answer.get(), 0));
            require(g_variant_n_children(list.get()) <= mostEntries + 1);
            std::set<gint32> ids;
            for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
                gint32 id = 0;
                g_variant_get_child(list.get(), i, "(ia{sv})", &id, nullptr);
                require(ids.insert(id).second);
            }
        }
    }

    void checkLayout(std::string_view text, const Exchange& exchange) {
        guint32 revision = 0;
        gint32 parent = 0;
        gint32 depth = 0;
        GVariant* list = nullptr;
        g_variant_get(exchange.arguments.get(), "(iias)", nullptr, &depth, nullptr);
        g_variant_get(exchange.answer.get(), "(u(ia{sv}@av))", &revision, &parent, nullptr, &list);
        const OwnedVariant children(list);
        require(revision >= lastRevision);
        lastRevision = revision;
        const bool isWhole = parent == 0 && depth != 0;
        require(g_variant_n_children(children.get()) == (isWhole ? entries.size() : 0));
        for (gsize i = 0; isWhole && i < entries.size(); ++i) {
            GVariant* child = nullptr;
            g_variant_get_child(children.get(), i, "v", &child);
            const OwnedVariant owner(child);
            require(g_variant_is_of_type(child, G_VARIANT_TYPE("(ia{sv}av)")) != FALSE);
            gint32 id = 0;
            g_variant_get(child, "(ia{sv}av)", &id, nullptr, nullptr);
            require(id > 0);
            // An identifier never means another entry.
            require(titles.emplace(id, entries[i].title).first->second == entries[i].title);
        }
        const Exchange again = answer(menu.exported(), "GetLayout", text);
        require(g_variant_equal(again.answer.get(), exchange.answer.get()) != FALSE);
    }

    void callControl(const std::string& method, std::string_view text) {
        requests.clear();
        const Exchange exchange = answer(control, method, text);
        require(requests.size() == (exchange.isOfType ? 1 : 0));
        if (!exchange.hasSucceeded()) return;
        const char* json = nullptr;
        g_variant_get(exchange.answer.get(), "(&s)", &json);
        std::string error;
        const auto document = JsonDocument::parse(json, error);
        require(document && document->values().size() == 3);
        if (g_variant_n_children(exchange.arguments.get()) > 0) {
            const char* argument = nullptr;
            g_variant_get(exchange.arguments.get(), "(&s)", &argument);
            require(document->value("argument") == Value(argument));
        }
        require(document->value("text") == Value(valid(said)));
    }

    Menu entries;
    std::vector<std::string> chosen;
    std::map<gint32, std::string> titles;
    std::size_t mostEntries = 0;
    guint32 lastRevision = 0;
    StatusItemContent content;
    int clicks = 0;
    std::string said;
    std::optional<std::string> refusal;
    std::vector<std::string> requests;
    RemoteControl::Server server;
    DBusMenu menu{nullptr, [this] { return entriesNow(); }};
    ExportedObject item{nullptr, StatusNotifierItem::description(
                                     content, [this](StatusItemEvent::Type) { ++clicks; })};
    ExportedObject control{nullptr, BusControl::controlDescription(server)};
    bool isActivationDue = true;
    ExportedObject application{nullptr,
                               BusControl::applicationDescription(server, isActivationDue)};
};

}  // namespace

/// A line is a call ("menu.GetLayout (0, -1, [])"), or what the program itself shows and answers
/// from then on. Whatever is called with whatever values: the answer is of the interface's types,
/// no click reaches another entry than it was meant for, and the library has nothing to complain
/// of.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto former = g_log_set_default_handler(failOnComplaint, nullptr);
    static_cast<void>(former);
    Objects objects;
    for (const std::string_view line : fuzz::parts(fuzz::textOf(data, size), '\n')) {
        const auto [name, rest] = fuzz::cut(line, ' ');
        if (name == "show") {
            objects.setMenu(rest);
        } else if (name == "content") {
            objects.setContent(rest);
        } else if (name == "say") {
            objects.say(rest);
        } else if (name == "refuse") {
            objects.refuse(rest);
        } else if (name == "hosted") {
            if (const OwnedVariant answer = variantOf(rest, "(v)");
                answer && g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(v)")) != FALSE) {
                StatusNotifierItem::saysHosted(answer.get());
            }
        } else {
            objects.call(name, rest);
        }
    }
    objects.readProperties();
    return 0;
}
