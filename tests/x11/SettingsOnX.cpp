#include "tests/x11/SettingsOnX.hpp"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

#include "platform/linux/JsonDocument.hpp"

namespace quorvel::test {
namespace {

constexpr const char* windowTitle = "Quorvel Settings";

}  // namespace

SettingsOnX::SettingsOnX(XSessionOptions options) : ProgramOnX(options) {}

AccessibleApplication& SettingsOnX::application() {
    if (!reader) reader.emplace(session.bus().address(), "Quorvel");
    return *reader;
}

xcb_window_t SettingsOnX::openSettings(Launch launch) {
    launch.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    start(launch);
    const bool opensByItself = settingsText().find("appPath") == std::string::npos;
    return opensByItself ? waitForOwnWindow() : showSettings();
}

xcb_window_t SettingsOnX::showSettings() {
    ChildProcess second = session.start({defaultPath()});
    EXPECT_TRUE(waitUntil([&] { return !second.isRunning(); }));
    const xcb_window_t window = waitForOwnWindow();
    EXPECT_EQ(titleOf(window), windowTitle);
    return window;
}

bool SettingsOnX::isGone(const std::string& name, const std::string& role) {
    return waitUntil([&] { return !application().find(name, role); });
}

bool SettingsOnX::waitForState(const Widget& widget, State state, bool isSo) {
    return waitUntil([&] { return application().has(widget, state) == isSo; });
}

bool SettingsOnX::waitForFocus(const std::string& name) {
    return waitUntil([&] {
        const auto focused = application().focused();
        return focused && focused->node.name == name;
    });
}

void SettingsOnX::click(const Widget& widget) {
    Rect area;
    const bool stands = waitUntil([&] {
        const Rect before = std::exchange(area, application().areaOf(widget));
        return area == before && !area.isEmpty();
    });
    ASSERT_TRUE(stands) << widget.node.name;
    const Rect inside = probe().clientArea(probe().inputFocus()).value_or(Rect{});
    constexpr std::uint8_t wheelUp = 4;
    constexpr std::uint8_t wheelDown = 5;
    const auto isHidden = [&] { return area.maxY() > inside.maxY() || area.y < inside.y; };
    for (int turns = 0; isHidden() && turns < 60; ++turns) {
        input().moveTo(int(inside.maxX()) - 40, int(inside.y + inside.height / 2));
        input().click(area.y < inside.y ? wheelUp : wheelDown);
        const Rect before = area;
        waitUntil([&] { return (area = application().areaOf(widget)) != before; }, 500ms);
    }
    input().moveTo(int(area.x + area.width / 2), int(area.y + area.height / 2));
    input().click();
}

xcb_window_t SettingsOnX::waitForDialog(xcb_window_t parent) {
    xcb_window_t dialog = XCB_WINDOW_NONE;
    EXPECT_TRUE(waitUntil([&] {
        dialog = probe().activeWindow();
        return dialog != parent && probe().isManaged(dialog) && probe().inputFocus() == dialog;
    }));
    return dialog;
}

Rect SettingsOnX::menuAfter(const std::function<void()>& open) {
    const auto before = probe().stacking();
    open();
    Rect menu;
    const bool isOpen = waitUntil([&] {
        for (const xcb_window_t window : probe().stacking()) {
            const auto area = probe().clientArea(window);
            if (std::find(before.begin(), before.end(), window) == before.end() && area &&
                probe().isViewable(window) && area->height > 16) {
                menu = *area;
            }
        }
        return !menu.isEmpty();
    });
    if (!isOpen) throw std::runtime_error("no menu opens");
    return menu;
}

void SettingsOnX::type(const std::string& letters) {
    for (const char each : letters) input().tap(std::string(1, char(std::toupper(each))));
}

void SettingsOnX::startRecording() {
    const auto recorder = [&] {
        for (const Widget& each : application().widgets()) {
            if (each.node.name.starts_with("Shortcut: ")) return each;
        }
        return Widget{};
    };
    click(recorder());
    EXPECT_TRUE(waitForText("Shortcut: Press the keys…"));
}

Value::Dictionary SettingsOnX::stored() const {
    std::string error;
    const auto document = native::JsonDocument::parse(settingsText(), error);
    return document ? document->values() : Value::Dictionary{};
}

std::optional<Value> SettingsOnX::stored(const std::string& key) const {
    const Value::Dictionary values = stored();
    return values.contains(key) ? std::optional(values.at(key)) : std::nullopt;
}

std::string SettingsOnX::field(const std::string& list, const std::string& key,
                               const std::string& value, const std::string& wanted) const {
    const auto records = stored(list);
    if (!records || records->array() == nullptr) return {};
    for (const Value& each : *records->array()) {
        const auto* const record = each.dictionary();
        if (record == nullptr || !record->contains(key) || record->at(key) != Value(value)) {
            continue;
        }
        if (record->contains(wanted) && record->at(wanted).text() != nullptr) {
            return *record->at(wanted).text();
        }
    }
    return {};
}

bool SettingsOnX::waitForRegistrations(int count) const {
    return waitUntil([&] {
        const auto lines = linesSinceReady();
        return count <= std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
                   return line.starts_with("Quorvel: global hotkey registered ");
               });
    });
}

bool SettingsOnX::opensAtLogin() const {
    const std::string entry =
        contentOf(session.folder() / "config/autostart/com.tessivane.quorvel.desktop");
    return !entry.empty() && entry.find("Hidden=true") == std::string::npos;
}

void SettingsOnX::keepPicture(const std::string& name) const {
    std::filesystem::create_directories(QUORVEL_PICTURES);
    probe().screenshot(std::filesystem::path(QUORVEL_PICTURES) / (name + ".png"));
}

}  // namespace quorvel::test
