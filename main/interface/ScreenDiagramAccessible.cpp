#include "main/interface/ScreenDiagramAccessible.hpp"

#include <QAccessibleWidget>
#include <QPointer>
#include <algorithm>
#include <vector>

#include "main/interface/ScreenDiagramView.hpp"

namespace quorvel {
namespace {

/// The place with this index, whatever the picture shows by now.
class TargetAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TargetAccessible(ScreenDiagramView& view, std::size_t index) : view(&view), index(index) {}

    bool isValid() const override { return view != nullptr && index < view->targets().size(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return view == nullptr ? nullptr : view->window()->windowHandle();
    }

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(view);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QString text(QAccessible::Text kind) const override {
        if (!isValid()) return {};
        const auto target = view->targets()[index];
        if (kind == QAccessible::Name) return view->nameOf(target);
        if (kind == QAccessible::Description && target.assignment != nullptr) {
            return QString::fromStdString(target.assignment->warning.value_or(""));
        }
        return {};
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        if (!isValid()) return {};
        const QRect frame = view->onWidget(view->targets()[index].frame).toAlignedRect();
        return {view->mapToGlobal(frame.topLeft()), frame.size()};
    }
    QAccessible::Role role() const override { return QAccessible::Button; }
    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.disabled = !view->isEnabled();
        state.invisible = !view->isVisible();
        state.focusable = true;
        state.focused = view->focusedTarget() == index;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type != QAccessible::ActionInterface) return nullptr;
        return static_cast<QAccessibleActionInterface*>(this);
    }
    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& name) override {
        if (!isValid() || !view->isEnabled()) return;
        if (name == pressAction()) {
            view->activate(index);
        } else if (name == setFocusAction()) {
            view->focusTarget(index);
        }
    }

private:
    QPointer<ScreenDiagramView> view;
    std::size_t index;
};

class DiagramAccessible final : public QAccessibleWidget {
public:
    explicit DiagramAccessible(ScreenDiagramView& view)
        : QAccessibleWidget(&view, QAccessible::Grouping), view(view) {}
    ~DiagramAccessible() override {
        for (const QAccessible::Id id : children) QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return static_cast<int>(view.targets().size()); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        while (children.size() <= static_cast<std::size_t>(index)) {
            children.push_back(QAccessible::registerAccessibleInterface(
                new TargetAccessible(view, children.size())));
        }
        return QAccessible::accessibleInterface(children[static_cast<std::size_t>(index)]);
    }
    int indexOfChild(const QAccessibleInterface* sought) const override {
        const auto found = std::find_if(children.begin(), children.end(), [&](QAccessible::Id id) {
            return QAccessible::accessibleInterface(id) == sought;
        });
        const auto index = static_cast<int>(found - children.begin());
        return index < childCount() && found != children.end() ? index : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const auto hit = view.targetAt(view.mapFromGlobal(QPoint(x, y)));
        return hit ? child(static_cast<int>(*hit)) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const auto focused = view.focusedTarget();
        return focused ? child(static_cast<int>(*focused)) : nullptr;
    }

private:
    ScreenDiagramView& view;
    mutable std::vector<QAccessible::Id> children;  ///< as far as they were asked for
};

}  // namespace

QAccessibleInterface* makeScreenDiagramAccessible(const QString&, QObject* object) {
    auto* const view = dynamic_cast<ScreenDiagramView*>(object);
    return view == nullptr ? nullptr : new DiagramAccessible(*view);
}

}  // namespace quorvel
