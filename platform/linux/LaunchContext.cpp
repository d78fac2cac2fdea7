#include "platform/linux/LaunchContext.hpp"

#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace quorvel::native {
namespace {

constexpr std::array ownVariables{"GIO_LAUNCHED_DESKTOP_FILE", "GIO_LAUNCHED_DESKTOP_FILE_PID",
                                  "BAMF_DESKTOP_FILE_HINT",    "DESKTOP_STARTUP_ID",
                                  "XDG_ACTIVATION_TOKEN",      "DESKTOP_AUTOSTART_ID",
                                  "DBUS_STARTER_ADDRESS",      "DBUS_STARTER_BUS_TYPE"};

struct Context {
    GAppLaunchContext base;
    XConnection* x;
    std::uint32_t launches;
};

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    return result + '"';
}

int screenNumber(const XConnection& x) {
    int number = 0;
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(x.xcb())); screens.rem > 0;
         xcb_screen_next(&screens), ++number) {
        if (screens.data->root == x.root()) return number;
    }
    return 0;
}

/// Sends a text to whoever watches the root window, in pieces that the receiver puts together by
/// the window they name.
void broadcast(const XConnection& x, const std::string& text) {
    const xcb_window_t sender = xcb_generate_id(x.xcb());
    xcb_create_window(x.xcb(), XCB_COPY_FROM_PARENT, sender, x.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    constexpr std::size_t pieceLength = 20;
    // Its end is a zero, which is sent too.
    for (std::size_t start = 0; start <= text.size(); start += pieceLength) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 8;
        message.window = sender;
        message.type = x.atom(start == 0 ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO");
        std::memcpy(message.data.data8, text.c_str() + start,
                    std::min(pieceLength, text.size() + 1 - start));
        xcb_send_event(x.xcb(), 0, x.root(), XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&message));
    }
    xcb_destroy_window(x.xcb(), sender);
    x.flush();
}

/// Null where the program would leave the sequence open, as it does not know of it.
char* startupId(GAppLaunchContext* base, GAppInfo* info, GList*) {
    auto* context = reinterpret_cast<Context*>(base);
    auto* entry = reinterpret_cast<GDesktopAppInfo*>(info);
    const bool takesPart = g_desktop_app_info_get_boolean(entry, "StartupNotify") != FALSE;
    const bool isActivated = g_desktop_app_info_get_boolean(entry, "DBusActivatable") != FALSE;
    if (!takesPart && !isActivated) return nullptr;
    const std::string id = "quorvel-" + std::to_string(getpid()) + "-" +
                           std::to_string(++context->launches) + "-" + g_get_host_name() + "_TIME" +
                           std::to_string(context->x->serverTime());
    if (takesPart) {
        const std::string startupClass =
            takeText(g_desktop_app_info_get_string(entry, "StartupWMClass"));
        const char* name = g_app_info_get_name(info);
        const char* path = g_desktop_app_info_get_filename(entry);
        broadcast(*context->x,
                  "new: ID=" + quoted(id) + " NAME=" + quoted(name == nullptr ? "" : name) +
                      " SCREEN=" + std::to_string(screenNumber(*context->x)) +
                      (startupClass.empty() ? "" : " WMCLASS=" + quoted(startupClass)) +
                      (path == nullptr ? "" : " APPLICATION_ID=" + quoted(path)));
    }
    return g_strdup(id.c_str());
}

void launchFailed(GAppLaunchContext* base, const char* id) {
    auto* context = reinterpret_cast<Context*>(base);
    if (id != nullptr) broadcast(*context->x, "remove: ID=" + quoted(id));
}

void initializeClass(gpointer type, gpointer) {
    auto* contextClass = static_cast<GAppLaunchContextClass*>(type);
    contextClass->get_startup_notify_id = startupId;
    contextClass->launch_failed = launchFailed;
}

GType contextType() {
    static const GType type = g_type_register_static_simple(
        G_TYPE_APP_LAUNCH_CONTEXT, "QuorvelLaunchContext", sizeof(GAppLaunchContextClass),
        initializeClass, sizeof(Context), nullptr, G_TYPE_FLAG_NONE);
    return type;
}

}  // namespace

ObjectRef<GAppLaunchContext> makeLaunchContext(XConnection& x) {
    auto* context = static_cast<Context*>(g_object_new(contextType(), nullptr));
    context->x = &x;
    for (const char* variable : ownVariables) {
        g_app_launch_context_unsetenv(&context->base, variable);
    }
    return ObjectRef<GAppLaunchContext>(&context->base);
}

std::unique_ptr<gchar*, EnvironmentDeleter> environmentForChildren() {
    gchar** environment = g_get_environ();
    for (const char* variable : ownVariables) {
        environment = g_environ_unsetenv(environment, variable);
    }
    return std::unique_ptr<gchar*, EnvironmentDeleter>(environment);
}

}  // namespace quorvel::native
