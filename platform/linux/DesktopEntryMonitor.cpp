#include "platform/linux/DesktopEntryMonitor.hpp"

#include <gio/gdesktopappinfo.h>

namespace quorvel::native {
namespace {

/// GIO tells of one change only to those who have asked it about an entry since the last.
void askAgain() {
    const ObjectRef<GDesktopAppInfo> unused(g_desktop_app_info_new("quorvel-asks.desktop"));
}

}  // namespace

DesktopEntryMonitor::~DesktopEntryMonitor() {
    if (monitor) g_signal_handler_disconnect(monitor.get(), handler);
}

void DesktopEntryMonitor::start() {
    if (monitor) return;
    monitor.reset(g_app_info_monitor_get());
    const auto changed = +[](GAppInfoMonitor*, gpointer data) {
        askAgain();
        static_cast<DesktopEntryMonitor*>(data)->entries.invalidate();
    };
    handler = g_signal_connect(monitor.get(), "changed", G_CALLBACK(changed), this);
    askAgain();
}

}  // namespace quorvel::native
