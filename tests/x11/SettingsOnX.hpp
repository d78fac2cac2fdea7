#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Value.hpp"
#include "tests/x11/AccessibleApplication.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {

/// The built program with its settings window, found by assistive means and used by hand.
class SettingsOnX : public ProgramOnX {
public:
    using Widget = AccessibleApplication::Widget;
    using State = AccessibleApplication::State;

    explicit SettingsOnX(XSessionOptions options = {});

    /// An application to be chosen; its name is "notes".
    TestApplication notes{session, QUORVEL_TEST_APPLICATION, {.name = "notes"}};
    AccessibleApplication& application();

    XInput& input() { return session.input(); }

    /// Starts with what is stored, and shows the window if that does not happen by itself.
    xcb_window_t openSettings(Launch launch = {});
    /// Asks the running program for its window.
    xcb_window_t showSettings();

    Widget waitFor(const std::string& name, const std::string& role = {}) {
        return application().waitFor(name, role);
    }
    bool isGone(const std::string& name, const std::string& role = {});
    bool waitForText(const std::string& name) { return waitFor(name).node.name == name; }
    bool waitForState(const Widget& widget, State state, bool isSo = true);
    /// Until the keyboard is with a widget of this name.
    bool waitForFocus(const std::string& name);

    /// Scrolls it into sight if need be, waits until it stands still, and clicks into its middle.
    void click(const Widget& widget);
    void click(const std::string& name, const std::string& role = {}) {
        click(waitFor(name, role));
    }
    /// Waits for the dialog that has come to the front of its parent.
    xcb_window_t waitForDialog(xcb_window_t parent);
    /// Does `open`, and gives the place of the menu that opens by it. Menus are no part of what
    /// assistive programs see; these follow the focus.
    Rect menuAfter(const std::function<void()>& open);
    void type(const std::string& letters);
    /// Until the recorder says that it waits for keys.
    void startRecording();

    /// What is in the file now; empty while it cannot be read.
    Value::Dictionary stored() const;
    std::optional<Value> stored(const std::string& key) const;
    /// Of the first record of a list whose `key` is `value`: its `field`.
    std::string field(const std::string& list, const std::string& key, const std::string& value,
                      const std::string& field) const;

    /// Until so many shortcuts have been registered since it was ready.
    bool waitForRegistrations(int count) const;
    bool opensAtLogin() const;

    void keepPicture(const std::string& name) const;

private:
    std::optional<AccessibleApplication> reader;
};

}  // namespace quorvel::test
