#include "tests/pictures/Scene.hpp"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <algorithm>

#include "tests/views/KeyPresses.hpp"

namespace quorvel::pictures {
namespace {

/// For programs that the theme of this machine does not know: a letter on a coloured ground.
QString drawnIcon(const QTemporaryDir& folder, const std::string& name) {
    const QString file = folder.filePath(QString::number(qHash(QByteArray::fromStdString(name))) +
                                         QStringLiteral(".png"));
    QImage image(96, 96, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(
        QColor::fromHsv(static_cast<int>(std::hash<std::string>{}(name) % 360), 150, 200));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(4, 4, 88, 88), 20, 20);
    QFont font = QApplication::font();
    font.setPixelSize(56);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(image.rect(), Qt::AlignCenter, QString::fromStdString(name).left(1));
    painter.end();
    image.save(file);
    return file;
}

bool isAbove(const QWidget* a, const QWidget* b) {
    const auto depth = [](const QWidget* widget) {
        int result = widget->windowType() == Qt::Popup || widget->windowType() == Qt::ToolTip;
        for (; widget->parentWidget() != nullptr; widget = widget->parentWidget()) ++result;
        return result;
    };
    return depth(a) < depth(b);
}

}  // namespace

Scene::Scene() = default;

Scene::~Scene() {
    controller.reset();
    turn();
}

void Scene::turn() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

std::string Scene::install(const std::string& name, const std::string& icon) {
    const std::string path = "/usr/share/applications/" + icon + "-" +
                             std::to_string(sim.catalog.installed().size()) + ".desktop";
    sim.install(path, name);
    ApplicationIcon drawn;
    if (QIcon::hasThemeIcon(QString::fromStdString(icon))) {
        drawn.themeNames = {icon};
    } else {
        drawn.file = drawnIcon(drawings, name).toStdString();
    }
    sim.catalog.add({path, name, drawn});
    return path;
}

void Scene::bind(const std::string& appPath, const std::string& hotKey,
                 const std::string& autoTuck) {
    bindings.push_back({appPath, hotKey, autoTuck});
    settings.setAppBindings(bindings);
}

void Scene::place(const std::string& appPath, const std::string& display, const std::string& corner,
                  const std::string& edge) {
    placements.push_back({appPath, display, corner, edge});
    settings.setPlacements(placements);
}

std::string Scene::attach(const std::string& name, double width, double height, bool isBuiltin) {
    const double x = screens.empty() ? 0 : screens.back().frameCocoa.maxX();
    const auto number = static_cast<std::uint32_t>(screens.size() + 1);
    screens.push_back(SimulatedScreens::screen(number, {x, 0, width, height}, isBuiltin));
    screens.back().localizedName = name;
    sim.screens.arrange(screens);
    return *screens.back().uuid;
}

void Scene::open(QSize size) {
    controller = std::make_unique<SettingsWindowController>(sim.desktop(), host,
                                                            FrontWindow([](std::uint64_t) {}));
    controller->show();
    window().resize(size);
    window().activateWindow();
    if (!QTest::qWaitForWindowActive(&window())) throw Failure("the window is not active");
    if (QWidget* const focused = QApplication::focusWidget()) focused->clearFocus();
    QCursor::setPos(window().mapToGlobal(QPoint(-20, -20)));
    turn();
}

QWidget& Scene::window() const {
    return *controller->settingsWindow();
}

void Scene::scrollTo(QWidget& widget) {
    for (QScrollArea* const area : window().findChildren<QScrollArea*>()) {
        if (area->isAncestorOf(&widget)) area->ensureWidgetVisible(&widget);
    }
    turn();
}

void Scene::click(QWidget& widget) {
    if (!widget.isEnabled()) throw Failure("a control that is to be clicked is disabled");
    scrollTo(widget);
    // A radio button or a check box is hit at its left end.
    const QPoint at(qMin(widget.width() / 2, 10), widget.height() / 2);
    QCursor::setPos(widget.mapToGlobal(at));
    QTest::mouseClick(&widget, Qt::LeftButton, {}, at);
    turn();
}

void Scene::clickPlace(std::size_t display, const Slot& slot) {
    ScreenDiagramView& picture = diagram(display);
    for (const auto& target : picture.targets()) {
        if (target.slot != slot) continue;
        scrollTo(picture);
        const QPoint at = picture.onWidget(target.frame).center().toPoint();
        QCursor::setPos(picture.mapToGlobal(at));
        QTest::mouseClick(&picture, Qt::LeftButton, {}, at);
        turn();
        return;
    }
    throw Failure("the picture of the display lacks a place");
}

ScreenDiagramView& Scene::diagram(std::size_t display) const {
    std::vector<ScreenDiagramView*> views = all<ScreenDiagramView>();
    std::sort(views.begin(), views.end(), [this](const auto* a, const auto* b) {
        return a->mapTo(&window(), QPoint()).y() < b->mapTo(&window(), QPoint()).y();
    });
    if (display >= views.size()) throw Failure("a display has no picture");
    return *views[display];
}

void Scene::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QWidget* target = QApplication::activePopupWidget();
    if (target == nullptr) target = QApplication::focusWidget();
    if (target == nullptr) target = &window();
    QTest::keyClick(target, key, modifiers);
    turn();
}

void Scene::pressPlace(const std::string& keyName, Qt::KeyboardModifiers modifiers) {
    if (QApplication::focusWidget() == nullptr) throw Failure("nobody has the keyboard");
    pressKey(*QApplication::focusWidget(), Qt::Key_unknown, modifiers,
             keyName.empty() ? unnamedScanCode : scanCodeOf(keyName));
    turn();
}

void Scene::type(const char* text) {
    if (QApplication::focusWidget() == nullptr) throw Failure("nobody has the keyboard");
    QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text));
    turn();
}

void Scene::tabTo(const QWidget& widget) {
    for (int presses = 0; presses < 100; ++presses) {
        if (widget.hasFocus()) return;
        QWidget* const at = QApplication::focusWidget();
        QTest::keyClick(at != nullptr ? at : widget.window(), Qt::Key_Tab);
    }
    throw Failure("Tab does not reach " + widget.accessibleName().toStdString());
}

void Scene::choose(const char* menuItem) {
    QMenu& menu = only<QMenu>();
    for (const QAction* const action : menu.actions()) {
        if (action->text() != QString::fromUtf8(menuItem)) continue;
        QTest::mouseClick(&menu, Qt::LeftButton, {},
                          menu.actionGeometry(const_cast<QAction*>(action)).center());
        turn();
        return;
    }
    throw Failure("the menu lacks " + std::string(menuItem));
}

void Scene::rest(QWidget& widget) {
    scrollTo(widget);
    const QPoint at = widget.rect().center();
    QHelpEvent help(QEvent::ToolTip, at, widget.mapToGlobal(at));
    QApplication::sendEvent(&widget, &help);
    turn();
}

QAbstractButton& Scene::named(const char* button) const {
    const QString name = QString::fromUtf8(button);
    for (QAbstractButton* const each : all<QAbstractButton>()) {
        const bool hasOwnName = !each->accessibleName().isEmpty();
        if ((hasOwnName ? each->accessibleName() : each->text()) == name) return *each;
    }
    throw Failure("there is no button: " + std::string(button));
}

void Scene::expect(const std::string& text) const {
    for (const QLabel* const each : all<QLabel>()) {
        if (each->text().toStdString() == text) return;
    }
    throw Failure("nowhere to be read: " + text);
}

void Scene::expect(bool holds, const std::string& what) const {
    if (!holds) throw Failure("expected " + what);
}

void Scene::take() {
    turn();
    std::vector<QWidget*> shown;
    for (QWidget* const each : QApplication::topLevelWidgets()) {
        if (each->isVisible() && each != &window()) shown.push_back(each);
    }
    std::stable_sort(shown.begin(), shown.end(), isAbove);

    const QPoint origin = window().geometry().topLeft();
    QRect canvas(QPoint(), window().size());
    for (const QWidget* const each : shown) {
        canvas |= each->geometry().translated(-origin).adjusted(-12, -12, 12, 12);
    }
    if (shown.empty()) canvas = QRect(QPoint(), window().size());
    const qreal scale = window().devicePixelRatioF();
    taken = QImage(canvas.size() * scale, QImage::Format_RGB32);
    taken.setDevicePixelRatio(scale);
    taken.fill(QApplication::palette().color(QPalette::Dark));
    QPainter painter(&taken);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-canvas.topLeft());
    painter.drawPixmap(QPoint(), window().grab());
    for (QWidget* const each : shown) {
        const QRect place = each->geometry().translated(-origin);
        // What a desktop draws around it, so that it stands out.
        for (int width = 10; width > 0; width -= 2) {
            QPainterPath shadow;
            shadow.addRoundedRect(QRectF(place).adjusted(-width, -width + 2, width, width + 2),
                                  width, width);
            painter.fillPath(shadow, QColor(0, 0, 0, 22));
        }
        painter.drawPixmap(place.topLeft(), each->grab());
        painter.setPen(QColor(0, 0, 0, 90));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(place).adjusted(-0.5, -0.5, 0.5, 0.5));
    }
}

}  // namespace quorvel::pictures
