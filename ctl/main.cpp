// Talks to the running program over the session bus.

#include <gio/gio.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ctl/Report.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/JsonDocument.hpp"
#include "platform/linux/status/ExportedObject.hpp"
#include "platform/linux/status/SessionBus.hpp"

namespace quorvel::ctl {
namespace {

using native::ObjectRef;
using native::OwnedVariant;

enum Status : int { succeeded = 0, refused = 1, misused = 2, notRunning = 3 };

constexpr const char* usage =
    "usage: quorvelctl [--json] COMMAND\n"
    "       quorvelctl --help | --version\n"
    "\n"
    "  status         the applications, the displays, the tucked windows\n"
    "  doctor         what of this desktop helps Quorvel or is in its way\n"
    "  why            what the last trigger did, and why it did not do more\n"
    "  toggle APP     what a press of its shortcut does\n"
    "  reveal APP     brings its tucked windows out\n"
    "  untuck --all   puts every tucked window back\n"
    "  reload         takes the settings file as it is now\n"
    "\n"
    "APP is a path, a name, or the name of a desktop entry, of an application in the list.\n"
    "--json prints the answer as it came. Status 0: done; 1: refused, or problems found; 2: "
    "misused;\n"
    "3: Quorvel is not running.\n";

struct Command {
    const char* name;
    const char* method;
    bool takesApplication = false;
    std::string (*report)(const Value::Dictionary& answer) = nullptr;
};

constexpr Command commands[] = {{"status", "Status", false, &statusReport},
                                {"doctor", "Doctor", false, &doctorReport},
                                {"why", "Why", false, &whyReport},
                                {"toggle", "Toggle", true},
                                {"reveal", "Reveal", true},
                                {"untuck", "Untuck", false, &untuckReport},
                                {"reload", "Reload"}};

int misuse(const std::string& what) {
    std::fprintf(stderr, "quorvelctl: %s\n\n%s", what.c_str(), usage);
    return misused;
}

int fail(Status status, const std::string& what) {
    std::fprintf(stderr, "quorvelctl: %s\n", what.c_str());
    return status;
}

int ask(const Command& command, const std::string& argument, bool asJson) {
    const auto address = native::SessionBus::address();
    if (!address) return fail(notRunning, "this session has no bus to reach Quorvel by");
    GError* error = nullptr;
    const ObjectRef<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        address->c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error));
    if (!bus) {
        const native::OwnedError owned(error);
        return fail(notRunning, std::string("the session bus: ") + owned->message);
    }
    constexpr int patienceInMilliseconds = 10'000;
    const OwnedVariant reply(g_dbus_connection_call_sync(
        bus.get(), "com.tessivane.quorvel", "/com/tessivane/quorvel",
        "com.tessivane.quorvel.Control", command.method,
        command.takesApplication ? g_variant_new("(s)", argument.c_str()) : nullptr,
        G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, patienceInMilliseconds, nullptr,
        &error));
    if (!reply) {
        const native::OwnedError owned(error);
        const std::string name = native::takeText(g_dbus_error_get_remote_error(error));
        g_dbus_error_strip_remote_error(error);
        if (name == "com.tessivane.quorvel.Error.Refused") return fail(refused, owned->message);
        if (name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
            name == "org.freedesktop.DBus.Error.NameHasNoOwner") {
            return fail(notRunning, "Quorvel is not running");
        }
        return fail(refused, owned->message);
    }
    const char* json = "";
    g_variant_get(reply.get(), "(&s)", &json);
    std::string reason;
    const auto answer = native::JsonDocument::parse(json, reason);
    if (!answer) return fail(refused, "the answer cannot be read: " + reason);
    const Value::Dictionary values = answer->values();
    if (asJson) {
        std::fputs(json, stdout);
    } else if (command.report != nullptr) {
        std::fputs(command.report(values).c_str(), stdout);
    }
    return hasProblems(values) ? refused : succeeded;
}

int run(const std::vector<std::string>& given) {
    bool asJson = false;
    bool isForAll = false;
    std::vector<std::string> words;
    for (const std::string& each : given) {
        if (each == "--json") {
            asJson = true;
        } else if (each == "--all") {
            isForAll = true;
        } else if (each == "--help" || each == "-h") {
            std::fputs(usage, stdout);
            return succeeded;
        } else if (each == "--version") {
            std::puts("quorvelctl " QUORVEL_VERSION);
            return succeeded;
        } else if (each.starts_with("-")) {
            return misuse("there is no option " + each);
        } else {
            words.push_back(each);
        }
    }
    if (words.empty()) return misuse("which command?");
    for (const Command& command : commands) {
        if (words[0] != command.name) continue;
        if (words.size() != (command.takesApplication ? 2U : 1U)) {
            return misuse(words[0] + (command.takesApplication ? " takes one application"
                                                               : " takes no argument"));
        }
        if (isForAll != (words[0] == "untuck")) {
            return misuse(isForAll ? "--all belongs to untuck" : "untuck takes --all");
        }
        return ask(command, command.takesApplication ? words[1] : "", asJson);
    }
    return misuse("there is no command " + words[0]);
}

}  // namespace
}  // namespace quorvel::ctl

int main(int argc, char** argv) {
    return quorvel::ctl::run({argv + 1, argv + argc});
}
