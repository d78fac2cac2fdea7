#include "platform/simulated/SimulatedWindow.hpp"
#include "tests/pictures/States.hpp"

namespace quorvel::pictures {
namespace {

using Prepare = std::function<void(Scene&, const SmallDesk&)>;

/// On the sheet of Terminal, opened by its place at the left edge.
std::function<void(Scene&)> onSheet(Prepare act, Prepare before = {}) {
    return [act = std::move(act), before = std::move(before)](Scene& scene) {
        SmallDesk desk(scene);
        if (before) before(scene, desk);
        scene.open();
        scene.clickPlace(0, Slot::side(Side::left));
        scene.sheet();
        act(scene, desk);
    };
}

void record(Scene& scene, const std::string& key, Qt::KeyboardModifiers modifiers) {
    scene.click(scene.only<ShortcutRecorderView>());
    scene.pressPlace(key, modifiers);
}

/// A display without anything, to assign by.
void assign(Scene& scene, const Slot& slot) {
    const auto display = scene.attach("DELL U2723QE", 3840, 2160);
    scene.bind(scene.install("Terminal", "utilities-terminal"), "control,option,T");
    scene.bind(scene.install("Mail", "internet-mail"), "command,M");
    scene.open();
    scene.clickPlace(0, slot);
    scene.choose("Mail");
    scene.expect("Mail on DELL U2723QE");
}

void longNames(Scene& scene) {
    std::string name;
    while (name.size() < 300) name += "Spreadsheet ";
    const auto display = scene.attach("Display " + std::string(292, 'M'), 1920, 1080);
    const auto app = scene.install(name.substr(0, 300), "x-office-spreadsheet");
    scene.bind(app, "control,option,shift,command,FORWARDDELETE");
    scene.place(app, display, "topLeft", "left");
    scene.open();
    scene.clickPlace(0, Slot::side(Side::left));
    scene.sheet();
}

}  // namespace

std::vector<State> sheetStates() {
    const auto nothing = [](Scene&, const SmallDesk&) {};
    return {{"sheet-roster",
             [](Scene& scene) {
                 SmallDesk desk(scene);
                 scene.open();
                 scene.click("Edit Mail");
                 scene.expect("Mail");
             }},
            {"sheet-edge", onSheet(nothing)},
            {"sheet-assign-corner",
             [](Scene& scene) { assign(scene, Slot::corner(HotZoneCorner::topLeft)); }},
            {"sheet-assign-side", [](Scene& scene) { assign(scene, Slot::side(Side::right)); }},
            {"sheet-assign-bottom", [](Scene& scene) { assign(scene, Slot::bottomHide()); }},
            {"sheet-top-half",
             onSheet([](Scene& scene, const SmallDesk&) { scene.click("Top Half"); })},
            {"sheet-edge-off", onSheet([](Scene& scene, const SmallDesk&) {
                 // The corner has an "Off" of its own, which is called "No hot corner".
                 scene.click("Off");
                 scene.expect(!scene.named("Top Half").isEnabled(), "no halves of no edge");
             })},
            {"sheet-tucked", onSheet(
                                 [](Scene& scene, const SmallDesk&) {
                                     scene.click("Tuck Now");
                                     scene.named("Untuck Now");
                                 },
                                 [](Scene& scene, const SmallDesk& desk) {
                                     scene.sim.start(desk.terminal);
                                     scene.sim.settle();
                                 })},
            {"sheet-recording", onSheet([](Scene& scene, const SmallDesk&) {
                 scene.click(scene.only<ShortcutRecorderView>());
                 scene.expect(scene.only<ShortcutRecorderView>().isRecording(), "a recording");
             })},
            {"sheet-recorded", onSheet([](Scene& scene, const SmallDesk&) {
                 record(scene, "K", Qt::ControlModifier | Qt::ShiftModifier | Qt::MetaModifier);
                 scene.expect(
                     scene.only<ShortcutRecorderView>().displayText() == QStringLiteral("⌃⇧⌘K"),
                     "the recorded shortcut");
             })},
            {"sheet-no-edge", onSheet([](Scene& scene, const SmallDesk&) {
                 // Somebody else has changed what is stored.
                 scene.settings.setPlacements({});
                 scene.click("Tuck Now");
                 scene.expect("Set a tuck edge first.");
             })},
            {"sheet-not-running", onSheet([](Scene& scene, const SmallDesk&) {
                 scene.click("Tuck Now");
                 scene.expect("Terminal is not running.");
             })},
            {"sheet-needs-modifier", onSheet([](Scene& scene, const SmallDesk&) {
                 record(scene, "K", Qt::NoModifier);
                 scene.expect("Add a modifier — ⌘, ⌃, ⌥ or ⇧.");
             })},
            {"sheet-unsupported-key", onSheet([](Scene& scene, const SmallDesk&) {
                 record(scene, "", Qt::AltModifier);
                 scene.expect("That key can't be used as a shortcut.");
             })},
            {"sheet-taken", onSheet([](Scene& scene, const SmallDesk&) {
                 const auto spec = *HotKeySpec::parse("option,SPACE");
                 scene.sim.hotKeys.holdElsewhere(virtualKeyCodes().at("SPACE"), spec.carbonMask());
                 record(scene, "SPACE", Qt::AltModifier);
                 scene.expect("⌥Space is already used by another app.");
             })},
            {"sheet-cannot-save", onSheet([](Scene& scene, const SmallDesk&) {
                 scene.sim.defaults.failsToSave = true;
                 scene.click("Right");
                 scene.expect("The settings could not be saved.");
             })},
            {"sheet-not-installed",
             [](Scene& scene) {
                 SmallDesk desk(scene);
                 scene.bind("/opt/gone/Old Editor.desktop", "control,option,O");
                 scene.open();
                 scene.click("Edit Old Editor");
             }},
            {"sheet-long-names", longNames},
            {"sheet-long-message",
             [](Scene& scene) {
                 longNames(scene);
                 scene.click("Tuck Now");
             }},
            {"sheet-right-to-left",
             [](Scene& scene) {
                 const auto display = scene.attach("DELL U2723QE", 1920, 1080);
                 const auto app = scene.install("עורך טקסט", "accessories-text-editor");
                 scene.bind(app, "control,option,K");
                 scene.place(app, display, "topLeft", "left");
                 scene.open();
                 scene.clickPlace(0, Slot::side(Side::left));
                 scene.sheet();
             }},
            {"sheet-smallest-window", [](Scene& scene) {
                 SmallDesk desk(scene);
                 scene.open({560, 520});
                 scene.clickPlace(0, Slot::corner(HotZoneCorner::topRight));
                 scene.sheet();
             }}};
}

}  // namespace quorvel::pictures
