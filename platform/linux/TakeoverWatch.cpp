#include "platform/linux/TakeoverWatch.hpp"

#include <iterator>
#include <utility>

namespace quorvel::native {
namespace {

constexpr int mostAttempts = 10;

}  // namespace

TakeoverWatch::TakeoverWatch(XConnection& x, WindowManagerInfo& manager, End end)
    : x(x),
      manager(manager),
      end(std::move(end)),
      events(x.onEvent([this](const xcb_generic_event_t& event) { handle(event); })),
      managerEvents(manager.onChange([this] {
          for (auto& [window, its] : windows)
              its.until = Clock::now() + WindowManagerInfo::takeover;
          look();
      })) {}

void TakeoverWatch::add(xcb_window_t window, BringBack bringBack) {
    x.selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    windows.insert_or_assign(
        window, Returning{std::move(bringBack), Clock::now() + WindowManagerInfo::takeover});
    look();
}

void TakeoverWatch::clear() {
    for (const auto& [window, its] : std::exchange(windows, {})) end(window);
}

void TakeoverWatch::handle(const xcb_generic_event_t& event) {
    if (windows.empty()) return;
    switch (event.response_type & 0x7F) {
        case XCB_DESTROY_NOTIFY:
            windows.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            return;
        case XCB_CONFIGURE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
        case XCB_MAP_NOTIFY:
            look();
            return;
        default:
            return;
    }
}

void TakeoverWatch::look() {
    for (auto entry = windows.begin(); entry != windows.end();) {
        const xcb_window_t window = entry->first;
        Returning& its = entry->second;
        const bool isOver = manager.isRunning() && Clock::now() > its.until;
        if (!isOver && its.bringBack(window)) ++its.attempts;
        if (!isOver && its.attempts <= mostAttempts) {
            entry = std::next(entry);
            continue;
        }
        entry = windows.erase(entry);
        end(window);
    }
}

}  // namespace quorvel::native
