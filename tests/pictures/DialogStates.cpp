#include <QApplication>
#include <QMenu>
#include <QMessageBox>

#include "main/interface/AlertBox.hpp"
#include "main/shell/LauncherController.hpp"
#include "tests/pictures/States.hpp"
#include "tests/support/FakeInterface.hpp"

namespace quorvel::pictures {
namespace {

/// Takes the picture while the alert is up.
int takeWith(Scene& scene, const Alert& alert) {
    const auto box = makeAlertBox(alert);
    box->setParent(&scene.window(), box->windowFlags());
    box->show();
    scene.take();
    return static_cast<int>(alert.buttons.size()) - 1;
}

void alreadyAdded(Scene& scene) {
    SmallDesk desk(scene);
    scene.open();
    scene.host.answer = [&scene](const Alert& alert) { return takeWith(scene, alert); };
    scene.click("Add an app");
    scene.type("mail");
    scene.press(Qt::Key_Return);
    scene.expect(scene.host.alerts.size() == 1, "an alert");
}

void forget(Scene& scene) {
    LargeDesk desk(scene);
    scene.open();
    scene.host.answer = [&scene](const Alert& alert) { return takeWith(scene, alert); };
    scene.click("Forget This Display…");
    scene.expect(scene.host.alerts.size() == 1, "an alert");
}

void missing(Scene& scene) {
    SmallDesk desk(scene);
    scene.open();
    FakeInterface interface;
    interface.answer = [&scene](const Alert& alert) { return takeWith(scene, alert); };
    Application application(scene.sim.runLoop);
    LauncherController launcher(scene.sim.desktop(), application,
                                [&interface] { return &interface; });
    launcher.activateOrTuck("/opt/gone/Old Editor.desktop", "none");
    scene.expect(interface.alerts.size() == 1, "an alert");
}

void menu(Scene& scene, const Slot& slot) {
    LargeDesk desk(scene);
    scene.open();
    scene.clickPlace(0, slot);
    scene.expect(scene.only<QMenu>().actions().size() == 6, "six programs to choose from");
    scene.press(Qt::Key_Down);
    scene.take();
    scene.press(Qt::Key_Escape);
}

void choosing(Scene& scene, const char* search) {
    SmallDesk desk(scene);
    for (int i = 0; i < 20; ++i) {
        scene.install("Program " + std::to_string(i + 1), "applications-other");
    }
    scene.open();
    scene.click("Add an app");
    scene.type(search);
    scene.chooser();
}

}  // namespace

std::vector<State> dialogStates() {
    return {
        {"chooser-opened", [](Scene& scene) { choosing(scene, ""); }},
        {"chooser-searching",
         [](Scene& scene) {
             choosing(scene, "te");
             scene.expect(scene.chooser().addButton->isEnabled(), "something to add");
         }},
        {"chooser-nothing-found",
         [](Scene& scene) {
             choosing(scene, "xyz");
             scene.expect(!scene.chooser().addButton->isEnabled(), "nothing to add");
         }},
        {"chooser-names",
         [](Scene& scene) {
             scene.attach("Built-in Display", 1920, 1200, true);
             scene.install("עורך טקסט", "accessories-text-editor");
             scene.install("<b>Bold</b> & Sons", "internet-mail");
             scene.install(std::string(300, 'W'), "system-file-manager");
             scene.open();
             scene.click("Add an app");
             scene.chooser();
         }},
        {"assign-menu-corner",
         [](Scene& scene) { menu(scene, Slot::corner(HotZoneCorner::bottomRight)); }},
        {"assign-menu-side", [](Scene& scene) { menu(scene, Slot::side(Side::right)); }},
        {"alert-already-added", alreadyAdded},
        {"alert-forget-display", forget},
        {"alert-not-found", missing},
        {"tip-warning",
         [](Scene& scene) {
             LargeDesk desk(scene);
             scene.open();
             for (QLabel* const each : scene.all<QLabel>()) {
                 if (each->accessibleName() != QStringLiteral("Warning")) continue;
                 scene.rest(*each);
                 scene.take();
                 return;
             }
             throw Failure("nothing warns");
         }},
    };
}

}  // namespace quorvel::pictures
