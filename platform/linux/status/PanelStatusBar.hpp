#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Log.hpp"
#include "platform/RunLoop.hpp"
#include "platform/StatusBar.hpp"
#include "platform/linux/WindowManagerInfo.hpp"
#include "platform/linux/XConnection.hpp"
#include "platform/linux/status/SessionBus.hpp"

namespace quorvel::native {

/// The status items of the desktop's panels, whatever they speak: StatusNotifierItem where a panel
/// for it runs, else a window in a system tray. Panels may come, go and restart in any order; the
/// item is shown once at most.
class PanelStatusBar final : public StatusBar {
public:
    struct Surroundings {
        XConnection& x;
        RunLoop& runLoop;
        Log& log;
        WindowManagerInfo& manager;
        SessionBus& bus;  ///< connected soon after the item is made
        /// Folders of icon themes, the first that has the icon wins.
        std::vector<std::string> iconFolders;
        /// Opens a menu at the pointer, where the panel has none of its own.
        std::function<void(const Menu&)> popUpMenu;
    };

    explicit PanelStatusBar(Surroundings surroundings) : surroundings(std::move(surroundings)) {}

    /// Never null: the X server that we are connected to can carry one.
    std::unique_ptr<StatusItem> makeStatusItem() override;

private:
    Surroundings surroundings;
};

}  // namespace quorvel::native
