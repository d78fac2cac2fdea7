#include <QComboBox>
#include <QRadioButton>
#include <QScrollBar>

#include "tests/pictures/Look.hpp"
#include "tests/pictures/States.hpp"

namespace quorvel::pictures {
namespace {

/// Something that makes the window say what is amiss, without changing much.
void changeAnimation(Scene& scene) {
    QComboBox& animation = scene.only<QComboBox>();
    animation.setFocus();
    scene.press(Qt::Key_Down);
    animation.clearFocus();
    scene.turn();
}

void scrollToEnd(Scene& scene) {
    for (QScrollBar* const bar : scene.all<QScrollBar>()) bar->setValue(bar->maximum());
    scene.turn();
}

std::string longName(const std::string& word) {
    std::string name;
    while (name.size() < 300) name += word + ' ';
    return name.substr(0, 300);
}

void severalSizes(Scene& scene) {
    const auto wide = scene.attach("Odyssey G95C", 5120, 1440);
    const auto tall = scene.attach("EIZO FlexScan", 1080, 1920);
    const auto terminal = scene.install("Terminal", "utilities-terminal");
    const auto web = scene.install("Web", "web-browser");
    scene.bind(terminal, "control,option,T");
    scene.bind(web, "control,option,W");
    for (const auto& display : {wide, tall}) {
        scene.place(terminal, display, "topLeft", "top-left");
        scene.place(web, display, "bottomRight", "bottom-left");
    }
    scene.open({680, 900});
}

void names(Scene& scene) {
    const auto display = scene.attach(longName("DisplayWithAVeryLongName"), 1920, 1080);
    const auto hebrew = scene.install("עורך טקסט", "accessories-text-editor");
    const auto arabic = scene.install("محرر النصوص (Beta)", "accessories-dictionary");
    const auto emoji = scene.install("Party ☺ 🎉 Time ♥", "accessories-calculator");
    const auto markup = scene.install("<b>Bold</b> & Sons", "internet-mail");
    const auto longest = scene.install(longName("Spreadsheet"), "x-office-spreadsheet");
    const auto unbroken = scene.install(std::string(300, 'W'), "system-file-manager");
    int letter = 'A';
    for (const auto& app : {hebrew, arabic, emoji, markup, longest, unbroken}) {
        scene.bind(app, std::string("control,option,shift,command,") + static_cast<char>(letter++));
    }
    scene.place(hebrew, display, "topLeft", "left");
    scene.place(arabic, display, "topRight", "top-right");
    scene.place(longest, display, "bottomRight", "left");
    scene.place(unbroken, display, "bottomLeft", "bottom");
    scene.place(emoji, display, "none", "bottom-right");
    scene.open({680, 760});
}

void notInstalled(Scene& scene) {
    SmallDesk desk(scene);
    scene.bind("/opt/gone/Old Editor.desktop", "control,option,O");
    scene.place("/opt/gone/Old Editor.desktop", desk.display, "topLeft", "none");
    scene.open();
    scene.expect("Old Editor, ⌃⌥O, Not installed");
}

void shortStatus(Scene& scene) {
    SmallDesk desk(scene);
    const auto editor = scene.install("Text Editor", "accessories-text-editor");
    scene.bind(editor);
    scene.place(editor, desk.display, "none", "left");
    scene.open();
    changeAnimation(scene);
    scrollToEnd(scene);
    scene.expect("Text Editor: add a shortcut, a corner or Auto to tuck it outside Settings");
}

void longStatus(Scene& scene) {
    LargeDesk desk(scene);
    scene.bind("/usr/share/applications/org.example.Sketchbook.desktop", "nonsense");
    for (const char* const name : {"Music", "Dictionary"}) {
        const auto path = scene.install(name, "accessories-dictionary");
        scene.bind(path);
        scene.place(path, desk.builtin, "none", "right");
    }
    scene.open();
    changeAnimation(scene);
    scrollToEnd(scene);
}

void readOnlyStore(Scene& scene) {
    SmallDesk desk(scene);
    scene.open();
    scene.sim.defaults.failsToSave = true;
    changeAnimation(scene);
    scrollToEnd(scene);
    scene.expect("The settings could not be saved");
}

void twoHundred(Scene& scene) {
    const auto display = scene.attach("Built-in Display", 1920, 1200, true);
    for (int i = 0; i < 200; ++i) {
        const auto app = scene.install("Program " + std::to_string(i + 1),
                                       i % 2 == 0 ? "utilities-terminal" : "internet-mail");
        scene.bind(app, i < 12 ? "F" + std::to_string(i + 1) : "none");
    }
    scene.open();
    scene.expect(scene.all<QRadioButton>().size() == 200, "200 programs");
}

}  // namespace

std::vector<State> windowStates() {
    const auto small = [](QSize size) {
        return [size](Scene& scene) {
            SmallDesk desk(scene);
            scene.open(size);
        };
    };
    const auto large = [](QSize size) {
        return [size](Scene& scene) {
            LargeDesk desk(scene);
            scene.open(size);
        };
    };
    return {
        {"window-empty",
         [](Scene& scene) {
             scene.attach("Built-in Display", 1920, 1200, true);
             scene.open();
             scene.expect("No apps yet. Add one, then click a corner or edge on a display below.");
         }},
        {"window-three", small({680, 620})},
        {"window-three-end",
         [](Scene& scene) {
             SmallDesk desk(scene);
             scene.open();
             scrollToEnd(scene);
         }},
        {"window-selected",
         [](Scene& scene) {
             SmallDesk desk(scene);
             scene.open();
             scene.click("Select Mail for removal");
             scene.expect(scene.named("Remove the selected app").isEnabled(), "a way to remove it");
         }},
        {"window-six", large({680, 620})},
        {"window-six-whole", large({680, 1100})},
        {"window-smallest", large({560, 520})},
        {"window-largest", large({1280, 1000})},
        {"window-display-sizes", severalSizes},
        {"window-two-hundred", twoHundred},
        {"window-names", names},
        {"window-names-smallest",
         [](Scene& scene) {
             names(scene);
             scene.window().resize(560, 520);
             scene.turn();
         }},
        {"window-not-installed", notInstalled},
        {"window-status-one-line", shortStatus},
        {"window-status-two-lines", longStatus},
        {"window-status-smallest",
         [](Scene& scene) {
             longStatus(scene);
             scene.window().resize(560, 520);
             scene.turn();
             scrollToEnd(scene);
         }},
        {"window-cannot-save", readOnlyStore},
        {"window-recoloured",
         [](Scene& scene) {
             // Opened under the other palette, then the desktop changes its colours.
             wearOther();
             SmallDesk desk(scene);
             scene.open();
             wearOther();
             Scene::turn();
         }},
        {"window-without-displays",
         [](Scene& scene) {
             SmallDesk desk(scene);
             scene.sim.screens.arrange({});
             scene.open();
         }},
    };
}

}  // namespace quorvel::pictures
