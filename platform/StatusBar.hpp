#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Geometry.hpp"

namespace quorvel {

/// One line of a menu.
struct MenuItem {
    std::string title;               ///< empty for a separator
    std::function<void()> action;    ///< what choosing it does; none for a separator
    std::string keyEquivalent = "";  ///< one character, pressed with command; empty for none

    static MenuItem separator() { return {"", nullptr}; }
    bool isSeparator() const { return title.empty(); }
};

/// From top to bottom.
using Menu = std::vector<MenuItem>;

/// A mouse button that was let go of over a status item.
struct StatusItemEvent {
    enum class Type { leftMouseUp, rightMouseUp };

    Type type = Type::leftMouseUp;
    bool control = false;  ///< held meanwhile

    bool operator==(const StatusItemEvent&) const = default;
};

/// This program's button among the status items of the desktop. It is shown wherever and whenever
/// the desktop has a place for it, and gone with this object.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Shows the program's own icon, whole and in its own colours, at this size or at the one that
    /// the place prescribes. False where no icon can be had; then nothing has changed.
    virtual bool setApplicationIcon(Size points) = 0;

    /// Shows a text of one character. A place that shows pictures only gets a picture of it.
    virtual void setTitle(const std::string& title) = 0;

    virtual void setToolTip(const std::string& text) = 0;

    /// What a screen reader says.
    virtual void setAccessibilityLabel(const std::string& label) = 0;

    /// Called from the loop for each click that did not open a menu by itself.
    virtual void setAction(std::function<void(const StatusItemEvent&)> action) = 0;

    /// Some places open the menu themselves on a right click. It is asked for each time, just
    /// before it is shown.
    virtual void setMenu(std::function<Menu()> menu) = 0;

    /// Opens this menu at the pointer now, once. The call may return before the user has chosen.
    virtual void popUpMenu(const Menu& menu) = 0;
};

class StatusBar {
public:
    virtual ~StatusBar() = default;

    /// Null where the desktop has no way to carry one.
    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

}  // namespace quorvel
