#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "main/interface/AppEditSheet.hpp"
#include "main/interface/ApplicationChooser.hpp"
#include "main/interface/ScreenDiagramView.hpp"
#include "main/interface/SettingsWindowController.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/support/FakeSettingsHost.hpp"

namespace quorvel::pictures {

/// A state that could not be reached, or a picture that shows nothing.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The settings window over a desktop in memory, and the hands of its user. Whatever is looked for
/// and is not there is a `Failure`.
class Scene {
public:
    Scene();
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    SimulatedDesktop sim;
    FakeSettingsHost host;
    Settings settings{sim.defaults};

    // What there is on the desktop, before the window opens -----------------------------------

    /// A program with its path; the icon by its name in the theme, drawn where that has none.
    std::string install(const std::string& name, const std::string& icon);
    void bind(const std::string& appPath, const std::string& hotKey = "none",
              const std::string& autoTuck = "false");
    void place(const std::string& appPath, const std::string& display, const std::string& corner,
               const std::string& edge);
    /// Plugs in one more display, at the right of the others, and returns its reference. The first
    /// one replaces what was there.
    std::string attach(const std::string& name, double width, double height,
                       bool isBuiltin = false);

    // The user ----------------------------------------------------------------------------------

    void open(QSize size = {680, 620});
    QWidget& window() const;
    AppEditSheet& sheet() const { return only<AppEditSheet>(); }
    ApplicationChooser& chooser() const { return only<ApplicationChooser>(); }

    void click(QWidget& widget);
    /// By its accessible name, or what stands on it.
    void click(const char* button) { click(named(button)); }
    /// On the picture of a display, counted from the top.
    void clickPlace(std::size_t display, const Slot& slot);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// By the place of the key, as the recorder takes it.
    void pressPlace(const std::string& keyName, Qt::KeyboardModifiers modifiers);
    void type(const char* text);
    /// Tab, until the keyboard is there.
    void tabTo(const QWidget& widget);
    void choose(const char* menuItem);
    void scrollTo(QWidget& widget);
    /// Rests the pointer on it until its tool tip shows.
    void rest(QWidget& widget);

    QAbstractButton& named(const char* button) const;
    /// The only visible widget of this class.
    template <class T>
    T& only() const;
    template <class T>
    std::vector<T*> all() const;
    /// That somebody can read this now.
    void expect(const std::string& text) const;
    void expect(bool holds, const std::string& what) const;

    /// What is on the screen now. The last one taken is the picture; without one, that is the end
    /// of the state.
    void take();
    const QImage& picture() const { return taken; }

    static void turn();

private:
    ScreenDiagramView& diagram(std::size_t display) const;

    QTemporaryDir drawings;
    std::vector<AppBinding> bindings;
    std::vector<Placement> placements;
    std::vector<Screen> screens;
    std::unique_ptr<SettingsWindowController> controller;
    QImage taken;
};

template <class T>
std::vector<T*> Scene::all() const {
    std::vector<T*> found;
    for (QWidget* const each : QApplication::allWidgets()) {
        auto* const match = dynamic_cast<T*>(each);
        if (match != nullptr && match->isVisible()) found.push_back(match);
    }
    return found;
}

template <class T>
T& Scene::only() const {
    const auto found = all<T>();
    if (found.size() != 1) {
        throw Failure(std::to_string(found.size()) +
                      " visible instead of one: " + T::staticMetaObject.className());
    }
    return *found.front();
}

}  // namespace quorvel::pictures
