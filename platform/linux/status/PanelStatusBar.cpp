#include "platform/linux/status/PanelStatusBar.hpp"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/status/IconFiles.hpp"
#include "platform/linux/status/SessionBus.hpp"
#include "platform/linux/status/StatusNotifierItem.hpp"
#include "platform/linux/status/TrayWindow.hpp"

namespace quorvel::native {
namespace {

/// A panel that speaks both brings up its tray first; so that the item does not jump.
constexpr std::chrono::milliseconds beforeTray{400};
constexpr std::chrono::milliseconds afterTheStart{50};

class PanelStatusItem final : public StatusItem {
public:
    explicit PanelStatusItem(const PanelStatusBar::Surroundings& surroundings)
        : surroundings(surroundings),
          bus(surroundings.bus),
          busChanges(bus.onChange([this] { busChanged(); })),
          tray(surroundings.x, surroundings.runLoop, content,
               [this](const StatusItemEvent& event) { clicked(event); }),
          managerChanges(surroundings.manager.onChange([this] {
              // What may be done with windows depends on it, and with that the menu.
              if (notifier) notifier->menuChanged();
          })) {
        // First what the user waits for.
        surroundings.runLoop.after(afterTheStart, [this, alive = life.watch()] {
            if (alive.expired()) return;
            isStarted = true;
            showPicture();
            bus.connect();
        });
    }

    bool setApplicationIcon(Size) override {
        iconFolder = folderWithIcons(surroundings.iconFolders);
        if (!iconFolder) return false;
        content.title.clear();
        if (isStarted) showPicture();
        return true;
    }

    void setTitle(const std::string& title) override {
        content.title = title;
        iconFolder.reset();
        if (isStarted) showPicture();
    }

    void setToolTip(const std::string& text) override {
        content.toolTip = text;
        contentChanged();
    }

    void setAccessibilityLabel(const std::string& label) override {
        content.accessibilityLabel = label;
        contentChanged();
    }

    void setAction(std::function<void(const StatusItemEvent&)> newAction) override {
        action = std::move(newAction);
    }

    void setMenu(std::function<Menu()> newMenu) override { menu = std::move(newMenu); }

    void popUpMenu(const Menu& shown) override { surroundings.popUpMenu(shown); }

private:
    void showPicture() {
        content.icons = iconFolder ? loadIcons(*iconFolder) : std::vector<IconImage>();
        if (content.icons.empty()) {
            content.icons = {circleWithVerticalFill(22), circleWithVerticalFill(48)};
        }
        contentChanged();
    }

    void contentChanged() {
        if (notifier) notifier->contentChanged();
        tray.contentChanged();
    }

    void busChanged() {
        if (bus.connection() == nullptr) {
            notifier.reset();
        } else if (!notifier) {
            notifier.emplace(bus.connection(), surroundings.runLoop, content,
                             StatusNotifierItem::Handlers{[this](StatusItemEvent::Type type) {
                                                              // The protocol does not tell what is
                                                              // held on the keyboard.
                                                              clicked({type, isControlHeld()});
                                                          },
                                                          [this] { return menu ? menu() : Menu(); },
                                                          [this] { choosePanel(); }});
        }
        choosePanel();
    }

    void choosePanel() {
        if (notifier && notifier->isHosted()) {
            ++choices;
            tray.setWanted(false);
            return;
        }
        const bool isKnown = bus.isSettled() && (!notifier || notifier->isSettled());
        if (!isKnown) return;
        surroundings.runLoop.after(beforeTray, [this, alive = life.watch(), choice = ++choices] {
            if (!alive.expired() && choice == choices) tray.setWanted(true);
        });
    }

    /// From the loop's own turn: the call may come in while an alert spins.
    void clicked(const StatusItemEvent& event) {
        if (std::exchange(isClicked, true)) return;
        surroundings.runLoop.async([this, alive = life.watch(), event] {
            if (alive.expired()) return;
            isClicked = false;
            if (action) action(event);
        });
    }

    bool isControlHeld() const {
        const XConnection& x = surroundings.x;
        const Reply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(x.xcb(), xcb_query_pointer(x.xcb(), x.root()), nullptr));
        return pointer && (pointer->mask & XCB_MOD_MASK_CONTROL) != 0;
    }

    const PanelStatusBar::Surroundings& surroundings;
    bool isStarted = false;
    std::optional<std::string> iconFolder;
    StatusItemContent content;
    std::function<void(const StatusItemEvent&)> action;
    std::function<Menu()> menu;
    SessionBus& bus;
    Subscription busChanges;
    std::optional<StatusNotifierItem> notifier;
    TrayWindow tray;
    Subscription managerChanges;
    bool isClicked = false;  ///< and the click still waits for its turn
    int choices = 0;
    Lifetime life;
};

}  // namespace

std::unique_ptr<StatusItem> PanelStatusBar::makeStatusItem() {
    return std::make_unique<PanelStatusItem>(surroundings);
}

}  // namespace quorvel::native
