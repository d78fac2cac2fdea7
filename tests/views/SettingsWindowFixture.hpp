#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>

#include "main/interface/AppEditSheet.hpp"
#include "main/interface/ApplicationChooser.hpp"
#include "main/interface/ScreenDiagramView.hpp"
#include "main/interface/SettingsWindowController.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/support/FakeSettingsHost.hpp"
#include "tests/views/DiagramFixture.hpp"

namespace quorvel {

inline constexpr const char* notes = "/usr/share/applications/notes.desktop";
inline constexpr const char* paint = "/usr/share/applications/paint.desktop";

/// The settings window over one display, with two programs installed.
class SettingsWindowTest : public testing::Test {
protected:
    SimulatedDesktop sim;
    FakeSettingsHost host;
    Settings settings{sim.defaults};
    std::vector<std::uint64_t> broughtToFront;
    std::unique_ptr<SettingsWindowController> owned = std::make_unique<SettingsWindowController>(
        sim.desktop(), host,
        FrontWindow([this](std::uint64_t window) { broughtToFront.push_back(window); }));
    SettingsWindowController& controller = *owned;

    SettingsWindowTest() {
        sim.install(notes, "Notes");
        sim.install(paint, "Paint");
    }
    ~SettingsWindowTest() override { turn(); }

    static void turn() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QWidget& shown() {
        controller.show();
        turn();
        return *controller.settingsWindow();
    }
    QWidget& window() { return *controller.settingsWindow(); }

    template <class T>
    T* withName(const char* accessibleName) {
        for (T* each : window().findChildren<T*>()) {
            if (each->accessibleName() == QString::fromUtf8(accessibleName)) return each;
        }
        return nullptr;
    }
    QPushButton* button(const char* text) {
        for (QPushButton* each : window().findChildren<QPushButton*>()) {
            if (each->text() == QString::fromUtf8(text)) return each;
        }
        return nullptr;
    }
    bool shows(const std::string& text) {
        for (const QLabel* each : window().findChildren<QLabel*>()) {
            if (each->isVisibleTo(&window()) && each->text().toStdString() == text) return true;
        }
        return false;
    }
    QSlider& slider() { return *window().findChild<QSlider*>(); }
    QComboBox& animation() { return *window().findChild<QComboBox*>(); }
    void click(QAbstractButton* button) {
        ASSERT_NE(button, nullptr);
        button->click();
        turn();
    }
    void remove(const char* name) {
        click(withName<QRadioButton>(("Select " + std::string(name) + " for removal").c_str()));
        click(withName<QToolButton>("Remove the selected app"));
    }

    /// Of a class of ours, which the toolkit does not know by name.
    template <class T>
    T* only() {
        for (QWidget* each : window().findChildren<QWidget*>()) {
            if (auto* const found = dynamic_cast<T*>(each)) return found;
        }
        return nullptr;
    }
    ApplicationChooser* chooser() { return only<ApplicationChooser>(); }
    AppEditSheet* sheet() { return only<AppEditSheet>(); }
    /// By the button below the list.
    void add(const char* search) {
        click(withName<QToolButton>("Add an app"));
        chooseFound(search);
    }
    void chooseFound(const char* search) {
        ASSERT_NE(chooser(), nullptr);
        QTest::keyClicks(chooser()->searchField, QString::fromUtf8(search));
        QTest::keyClick(chooser()->searchField, Qt::Key_Return);
        turn();
    }
    void chooseFree(const Slot& slot) {
        ScreenDiagramView* const picture = only<ScreenDiagramView>();
        ASSERT_NE(picture, nullptr);
        picture->onSlot(slot, std::nullopt);
        turn();
    }
    std::string displayId() const { return Displays::attached(sim.screens).front().ref.raw; }
};

}  // namespace quorvel
