#include <QCheckBox>
#include <QComboBox>
#include <QSlider>

#include "tests/pictures/States.hpp"

namespace quorvel::pictures {
namespace {

State inWindow(const std::string& name, std::function<QWidget&(Scene&)> find,
               std::vector<Qt::Key> then = {}) {
    return {"focus-" + name, [find = std::move(find), then = std::move(then)](Scene& scene) {
                SmallDesk desk(scene);
                scene.open();
                scene.click("Select Mail for removal");
                QWidget& found = find(scene);
                scene.tabTo(found);
                scene.scrollTo(found);
                for (const Qt::Key key : then) scene.press(key);
            }};
}

State inSheet(const std::string& name, std::function<QWidget&(Scene&)> find) {
    return {"focus-sheet-" + name, [find = std::move(find)](Scene& scene) {
                SmallDesk desk(scene);
                scene.open();
                scene.clickPlace(0, Slot::side(Side::left));
                scene.tabTo(find(scene));
            }};
}

std::function<QWidget&(Scene&)> button(const char* name) {
    return [name](Scene& scene) -> QWidget& { return scene.named(name); };
}

template <class T>
QWidget& theOnly(Scene& scene) {
    return scene.only<T>();
}

}  // namespace

std::vector<State> focusStates() {
    return {
        inWindow("radio", button("Select Mail for removal")),
        inWindow("edit", button("Edit Mail")),
        inWindow("add", button("Add an app")),
        inWindow("remove", button("Remove the selected app")),
        inWindow("place-free", theOnly<ScreenDiagramView>),
        inWindow("place-corner", theOnly<ScreenDiagramView>, {Qt::Key_Right}),
        inWindow("place-side", theOnly<ScreenDiagramView>, {Qt::Key_Down}),
        inWindow("place-bottom", theOnly<ScreenDiagramView>,
                 {Qt::Key_Down, Qt::Key_Down, Qt::Key_Right}),
        inWindow("slider", theOnly<QSlider>),
        inWindow("popup", theOnly<QComboBox>),
        inWindow("checkbox", theOnly<QCheckBox>),
        inWindow("restore", button("Restore Defaults")),
        inSheet("recorder", theOnly<ShortcutRecorderView>),
        inSheet("corner", button("topRight corner")),
        inSheet("edge", button("Left")),
        inSheet("half", button("Whole")),
        inSheet("auto-tuck", button("Auto-tuck")),
        inSheet("tuck-now", button("Tuck Now")),
        inSheet("cancel", button("Cancel")),
        inSheet("done", button("Done")),
    };
}

}  // namespace quorvel::pictures
