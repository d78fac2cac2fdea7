#include "main/interface/PopUpMenu.hpp"

#include <QAction>
#include <QKeyEvent>
#include <QKeySequence>

namespace quorvel {
namespace {

/// A menu without a window to belong to gets its shortcuts from nobody.
class ShortcutFilter final : public QObject {
public:
    explicit ShortcutFilter(QMenu& menu) : QObject(&menu), menu(menu) {
        menu.installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) return false;
        const QKeySequence pressed(static_cast<QKeyEvent*>(event)->keyCombination());
        for (QAction* action : menu.actions()) {
            if (action->shortcut().isEmpty() || action->shortcut() != pressed) continue;
            menu.close();
            action->trigger();
            return true;
        }
        return false;
    }

private:
    QMenu& menu;
};

}  // namespace

std::unique_ptr<QMenu> makePopUpMenu(const Menu& menu) {
    auto result = std::make_unique<QMenu>();
    for (const MenuItem& item : menu) {
        if (item.isSeparator()) {
            result->addSeparator();
            continue;
        }
        QString title = QString::fromStdString(item.title);
        QAction* const action = result->addAction(title.replace('&', QStringLiteral("&&")));
        if (!item.keyEquivalent.empty()) {
            action->setShortcut(QKeySequence(QStringLiteral("Meta+") +
                                             QString::fromStdString(item.keyEquivalent).toUpper()));
            action->setShortcutVisibleInContextMenu(true);
        }
        QObject::connect(action, &QAction::triggered, action, item.action);
    }
    new ShortcutFilter(*result);
    return result;
}

}  // namespace quorvel
