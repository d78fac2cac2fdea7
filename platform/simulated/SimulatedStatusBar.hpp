#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/StatusBar.hpp"

namespace quorvel {

/// What the user sees of a status item.
struct ShownStatusItem {
    bool hasIcon = false;
    Size iconPoints;
    std::string title;
    std::string toolTip;
    std::string accessibilityLabel;
    std::function<void(const StatusItemEvent&)> action;
    std::function<Menu()> menu;
    std::vector<Menu> opened;  ///< every menu that was opened on it, the last one still open
};

/// A bar that shows at most one item and can be told to have no place or no icon for it. The user
/// clicks on it by `click` and by `choose`.
class SimulatedStatusBar final : public StatusBar {
public:
    bool refuses = false;
    bool hasIcon = true;
    /// Whether it opens the menu of a right click itself.
    bool opensMenus = false;

    std::unique_ptr<StatusItem> makeStatusItem() override;

    /// Null before the item was made and after it has gone.
    const ShownStatusItem* item() const { return shown.get(); }

    void click(const StatusItemEvent& event);
    /// The titles of the menu opened last, "-" for a separator.
    std::vector<std::string> openTitles() const;
    /// Chooses from the menu opened last; false when it has no such entry.
    bool choose(const std::string& title);

private:
    class Item;
    std::shared_ptr<ShownStatusItem> shown;
};

}  // namespace quorvel
