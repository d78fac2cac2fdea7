#include "platform/simulated/SimulatedStatusBar.hpp"

#include <utility>

namespace quorvel {

class SimulatedStatusBar::Item final : public StatusItem {
public:
    explicit Item(SimulatedStatusBar& bar) : bar(bar) {}
    ~Item() override { bar.shown.reset(); }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    bool setApplicationIcon(Size points) override {
        if (!bar.hasIcon) return false;
        bar.shown->hasIcon = true;
        bar.shown->iconPoints = points;
        return true;
    }
    void setTitle(const std::string& title) override { bar.shown->title = title; }
    void setToolTip(const std::string& text) override { bar.shown->toolTip = text; }
    void setAccessibilityLabel(const std::string& label) override {
        bar.shown->accessibilityLabel = label;
    }
    void setAction(std::function<void(const StatusItemEvent&)> action) override {
        bar.shown->action = std::move(action);
    }
    void setMenu(std::function<Menu()> menu) override { bar.shown->menu = std::move(menu); }
    void popUpMenu(const Menu& menu) override { bar.shown->opened.push_back(menu); }

private:
    SimulatedStatusBar& bar;
};

std::unique_ptr<StatusItem> SimulatedStatusBar::makeStatusItem() {
    if (refuses) return nullptr;
    shown = std::make_shared<ShownStatusItem>();
    return std::make_unique<Item>(*this);
}

void SimulatedStatusBar::click(const StatusItemEvent& event) {
    if (opensMenus && event.type == StatusItemEvent::Type::rightMouseUp) {
        shown->opened.push_back(shown->menu());
    } else {
        // By a copy of the handler: the item may go meanwhile.
        const auto action = shown->action;
        action(event);
    }
}

std::vector<std::string> SimulatedStatusBar::openTitles() const {
    std::vector<std::string> titles;
    if (!shown || shown->opened.empty()) return titles;
    for (const MenuItem& item : shown->opened.back()) {
        titles.push_back(item.isSeparator() ? "-" : item.title);
    }
    return titles;
}

bool SimulatedStatusBar::choose(const std::string& title) {
    if (!shown || shown->opened.empty()) return false;
    for (const MenuItem& item : shown->opened.back()) {
        if (item.isSeparator() || item.title != title) continue;
        const auto action = item.action;
        action();
        return true;
    }
    return false;
}

}  // namespace quorvel
