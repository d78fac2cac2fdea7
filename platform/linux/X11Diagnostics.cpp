#include "platform/linux/X11Diagnostics.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>
#include <utility>

#include "platform/linux/WindowManagerTraits.hpp"
#include "platform/linux/status/ExportedObject.hpp"

namespace quorvel::native {
namespace {

namespace fs = std::filesystem;

constexpr int patienceInMilliseconds = 500;

/// As the kernel calls them: fifteen letters at most.
constexpr std::array<std::string_view, 12> knownTakers{
    "sxhkd",           "xbindkeys",      "actkbd",          "xfsettingsd",
    "gsd-media-keys",  "csd-media-keys", "mate-settings-d", "kglobalaccel5",
    "lxqt-globalkeys", "gnome-shell",    "cinnamon",        "plasmashell"};

/// What stands above it decides for a folder that is yet to be made.
bool isWritable(fs::path folder) {
    std::error_code error;
    while (!fs::exists(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
    return access(folder.c_str(), W_OK) == 0;
}

}  // namespace

X11Diagnostics::X11Diagnostics(XConnection& x, WindowManagerInfo& manager, SessionBus& bus,
                               std::vector<std::string> folders)
    : x(x), manager(manager), bus(bus), folders(std::move(folders)) {}

std::vector<Finding> X11Diagnostics::examine() {
    std::vector<Finding> findings{windowManager(), panel()};
    for (const std::string& folder : folders) {
        const bool isFine = isWritable(folder);
        findings.push_back({"files",
                            folder + (isFine ? " can be written to." : " cannot be written to."),
                            !isFine});
    }
    return findings;
}

Finding X11Diagnostics::windowManager() {
    manager.update(manager.ask());
    if (!manager.isRunning()) {
        return {"window manager",
                "None is running. Windows can be started and brought forward, not tucked.", true};
    }
    const std::string name = manager.name().empty() ? "One without a name" : manager.name();
    const WindowManagerTraits traits = traitsByName(manager.name(), manager.isComposited());
    std::string text = name + " is running. ";
    switch (traits.offScreen) {
        case OffScreenMoves::carriedOut:
            text += "It lets windows leave the screen.";
            break;
        case OffScreenMoves::clamped:
            text +=
                traits.paintsOverriddenFrames
                    ? "It keeps windows on the screen; Quorvel moves them past it."
                    : "It keeps windows on the screen, and does not paint what is moved past it: "
                      "tucked windows stay as far out as it lets them.";
            break;
        case OffScreenMoves::unknown:
            text += "Nothing is known of it beforehand; what it does is measured.";
            break;
    }
    return {"window manager", text, false};
}

Finding X11Diagnostics::panel() {
    if (bus.connection() != nullptr) {
        const OwnedVariant reply(g_dbus_connection_call_sync(
            bus.connection(), "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
            "org.freedesktop.DBus.Properties", "Get",
            g_variant_new("(ss)", "org.kde.StatusNotifierWatcher",
                          "IsStatusNotifierHostRegistered"),
            G_VARIANT_TYPE("(v)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, patienceInMilliseconds, nullptr,
            nullptr));
        if (reply) {
            GVariant* inner = nullptr;
            g_variant_get(reply.get(), "(v)", &inner);
            const OwnedVariant value(inner);
            if (g_variant_is_of_type(inner, G_VARIANT_TYPE_BOOLEAN) != FALSE &&
                g_variant_get_boolean(inner) != FALSE) {
                return {"panel", "A panel shows status items (StatusNotifierItem).", false};
            }
        }
    }
    const Reply<xcb_get_selection_owner_reply_t> tray(xcb_get_selection_owner_reply(
        x.xcb(), xcb_get_selection_owner(x.xcb(), x.atom("_NET_SYSTEM_TRAY_S0")), nullptr));
    if (tray && tray->owner != XCB_WINDOW_NONE) {
        return {"panel", "A panel has a system tray (XEmbed).", false};
    }
    return {"panel", "No panel shows status items; start Quorvel once more to open its settings.",
            true};
}

std::vector<std::string> X11Diagnostics::shortcutTakers() {
    std::set<std::string> found;
    if (manager.isRunning() && !manager.name().empty()) found.insert(manager.name());
    std::error_code error;
    for (const auto& process : fs::directory_iterator("/proc", error)) {
        struct stat info {};
        if (::stat(process.path().c_str(), &info) != 0 || info.st_uid != geteuid()) continue;
        std::ifstream stream(process.path() / "comm");
        std::string name;
        if (!std::getline(stream, name)) continue;
        if (std::find(knownTakers.begin(), knownTakers.end(), name) != knownTakers.end()) {
            found.insert(name);
        }
    }
    return {found.begin(), found.end()};
}

}  // namespace quorvel::native
