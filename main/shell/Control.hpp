#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "main/settings/Settings.hpp"
#include "main/shell/Chronicle.hpp"
#include "main/tucking/TuckController.hpp"
#include "platform/Desktop.hpp"

namespace quorvel {

/// What other programs may ask of the running one:
///
///   status       its shortcuts, the displays, the windows that are tucked
///   doctor       what of this desktop helps it or is in its way
///   why          what the last trigger did, and why it did not do more
///   toggle APP   what a press of the shortcut does
///   reveal APP   brings its tucked windows out
///   untuck       puts every tucked window back
///   reload       takes the stored settings as they are now
///   settings     opens the settings window
///
/// APP is a path, a name, or the name of a desktop entry, of an application in the list.
class Control {
public:
    /// What the program does by itself; it outlives this object.
    struct Deeds {
        std::function<void(const std::string& appPath)> toggle;
        std::function<void()> reload;
        std::function<void()> openSettings;
        /// Of the active bindings, by path.
        std::function<bool(const std::string& appPath)> hasShortcut;
    };

    Control(const Desktop& desktop, TuckController& tucking, const Chronicle& chronicle,
            Deeds deeds);

    RemoteAnswer answer(const RemoteRequest& request);

private:
    RemoteAnswer status() const;
    RemoteAnswer doctor() const;
    RemoteAnswer why() const;
    RemoteAnswer reveal(const std::string& appPath);
    RemoteAnswer untuck();
    /// The application that is meant, and what to do with it.
    RemoteAnswer withApplication(const std::string& asked,
                                 const std::function<RemoteAnswer(const std::string&)>& act) const;
    bool isRefused(const AppBinding& binding) const;
    /// In the loop's own turn: a request may come in while an alert spins.
    void later(std::function<void()> deed);

    Desktop desktop;
    Settings settings;
    TuckController& tucking;
    const Chronicle& chronicle;
    Deeds deeds;
    Lifetime life;
};

}  // namespace quorvel
