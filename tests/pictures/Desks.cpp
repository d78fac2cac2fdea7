#include "tests/pictures/States.hpp"

namespace quorvel::pictures {

SmallDesk::SmallDesk(Scene& scene)
    : display(scene.attach("Built-in Display", 2560, 1600, true)),
      terminal(scene.install("Terminal", "utilities-terminal")),
      mail(scene.install("Mail", "internet-mail")),
      files(scene.install("Files", "system-file-manager")) {
    scene.install("Calculator", "accessories-calculator");
    scene.install("Dictionary", "accessories-dictionary");
    scene.install("Text Editor", "accessories-text-editor");
    scene.install("Web", "web-browser");
    scene.bind(terminal, "control,option,T");
    scene.bind(mail, "command,M", "true");
    scene.bind(files, "control,option,F");
    scene.place(terminal, display, "topRight", "left");
    scene.place(mail, display, "none", "right");
    scene.place(files, display, "bottomLeft", "bottom");
}

LargeDesk::LargeDesk(Scene& scene)
    : builtin(scene.attach("Built-in Display", 1920, 1200, true)),
      external(scene.attach("DELL U2723QE", 3840, 2160)),
      terminal(scene.install("Terminal", "utilities-terminal")),
      web(scene.install("Web", "web-browser")) {
    const auto mail = scene.install("Mail", "internet-mail");
    const auto files = scene.install("Files", "system-file-manager");
    const auto editor = scene.install("Text Editor", "accessories-text-editor");
    const auto calculator = scene.install("Calculator", "accessories-calculator");
    scene.bind(terminal, "control,option,T");
    scene.bind(web, "command,shift,B");
    scene.bind(mail, "command,M", "true");
    scene.bind(files, "control,option,F");
    scene.bind(editor, "control,option,shift,E");
    scene.bind(calculator, "command,K");
    scene.place(terminal, builtin, "topRight", "left");
    scene.place(web, builtin, "none", "left");
    scene.place(mail, builtin, "topLeft", "none");
    scene.place(files, builtin, "none", "bottom");
    scene.place(editor, external, "bottomRight", "top-right");
    scene.place(calculator, external, "bottomRight", "bottom-right");
    scene.place(web, external, "topLeft", "none");
    scene.place(mail, "B0A1B2C3-0000-5000-8000-000000000001", "topLeft", "right");
    scene.place(files, "B0A1B2C3-0000-5000-8000-000000000001", "none", "bottom");
    scene.settings.setKnownDisplays(
        {{"B0A1B2C3-0000-5000-8000-000000000001", "Projector in the meeting room"}});
}

}  // namespace quorvel::pictures
