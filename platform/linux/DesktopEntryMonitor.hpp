#pragma once

#include <gio/gio.h>

#include "platform/linux/DesktopEntries.hpp"
#include "platform/linux/GlibTypes.hpp"

namespace quorvel::native {

/// Has the entries read again when a standard folder has changed.
class DesktopEntryMonitor {
public:
    explicit DesktopEntryMonitor(DesktopEntries& entries) : entries(entries) {}
    ~DesktopEntryMonitor();
    DesktopEntryMonitor(const DesktopEntryMonitor&) = delete;
    DesktopEntryMonitor& operator=(const DesktopEntryMonitor&) = delete;

    /// From the first call on. Worth putting off until the entries are in use.
    void start();

private:
    DesktopEntries& entries;
    ObjectRef<GAppInfoMonitor> monitor;
    gulong handler = 0;
};

}  // namespace quorvel::native
