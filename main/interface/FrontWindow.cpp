#include "main/interface/FrontWindow.hpp"

#include <QEvent>
#include <QWindow>
#include <utility>

namespace quorvel {
namespace {

/// Waits for the first time that a window is really on the screen. A window manager ignores
/// requests for windows that it has not taken on yet.
class FirstExpose final : public QObject {
public:
    FirstExpose(QWindow& window, std::function<void()> exposed)
        : QObject(&window), exposed(std::move(exposed)) {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose && static_cast<QWindow*>(watched)->isExposed()) {
            watched->removeEventFilter(this);
            deleteLater();
            exposed();
        }
        return false;
    }

private:
    std::function<void()> exposed;
};

}  // namespace

FrontWindow::FrontWindow(std::function<void(std::uint64_t window)> bringToFront)
    : bringToFront(std::move(bringToFront)) {}

void FrontWindow::bring(QWidget& window) const {
    const std::uint64_t identifier = window.winId();
    QWindow& handle = *window.windowHandle();
    if (handle.isExposed()) {
        bringToFront(identifier);
    } else {
        new FirstExpose(handle, [act = bringToFront, identifier] { act(identifier); });
    }
}

}  // namespace quorvel
