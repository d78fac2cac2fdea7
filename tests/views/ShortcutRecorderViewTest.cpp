#include "main/interface/ShortcutRecorderView.hpp"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAction>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <memory>

#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/views/KeyPresses.hpp"

namespace quorvel {
namespace {

/// Tells the keys that nobody below it wanted.
class PressCounter final : public QWidget {
public:
    int presses = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++presses; }
};

class ShortcutRecorderViewTest : public testing::Test {
protected:
    ShortcutRecorderViewTest() {
        auto* const layout = new QVBoxLayout(&window);
        layout->addWidget(recorder);
        layout->addWidget(other);
        layout->addSpacing(40);
        recorder->setDisplayText(QStringLiteral("⌃⌥K"));
        recorder->onCapture = [this](const ShortcutCapture& capture) {
            wasRecordingAtCapture = recorder->isRecording();
            captures.push_back(capture);
        };
        window.show();
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        other->setFocus();
        if (!QTest::qWaitForWindowActive(&window)) ADD_FAILURE() << "the window is not active";
    }
    ~ShortcutRecorderViewTest() override {
        window.hide();
        EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    }

    void click() { QTest::mouseClick(recorder, Qt::LeftButton); }
    PressResult press(Qt::Key key, Qt::KeyboardModifiers modifiers, const std::string& name) {
        return pressKey(*recorder, key, modifiers, scanCodeOf(name));
    }
    void expectIdle() {
        EXPECT_FALSE(recorder->isRecording());
        EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    }
    QImage drawn() { return recorder->grab().toImage(); }

    SimulatedDesktop desktop;
    PressCounter window;
    ShortcutRecorderView* recorder = new ShortcutRecorderView(desktop.hotKeys);
    QLineEdit* other = new QLineEdit;
    std::vector<ShortcutCapture> captures;
    bool wasRecordingAtCapture = false;
};

TEST_F(ShortcutRecorderViewTest, HasItsNaturalSize) {
    EXPECT_EQ(recorder->sizeHint(), QSize(140, 30));
    EXPECT_EQ(recorder->size(), QSize(140, 30));
}

TEST_F(ShortcutRecorderViewTest, AClickStartsARecordingThatHasTheWholeKeyboard) {
    expectIdle();
    click();
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_TRUE(recorder->hasFocus());
    EXPECT_EQ(QWidget::keyboardGrabber(), recorder);
    EXPECT_TRUE(captures.empty());
}

TEST_F(ShortcutRecorderViewTest, OtherButtonsOfTheMouseStartNothing) {
    QTest::mouseClick(recorder, Qt::RightButton);
    expectIdle();
}

TEST_F(ShortcutRecorderViewTest, TheFirstCombinationIsDeliveredAfterTheRecordingHasEnded) {
    click();
    press(Qt::Key_K, Qt::ControlModifier | Qt::AltModifier, "K");
    EXPECT_EQ(captures, std::vector{ShortcutCapture::captured({"K", {"control", "option"}})});
    EXPECT_FALSE(wasRecordingAtCapture);
    expectIdle();
}

TEST_F(ShortcutRecorderViewTest, EachModifierHasItsName) {
    const std::pair<Qt::KeyboardModifier, const char*> modifiers[] = {
        {Qt::ControlModifier, "control"},
        {Qt::AltModifier, "option"},
        {Qt::ShiftModifier, "shift"},
        {Qt::MetaModifier, "command"}};
    for (const auto& [modifier, name] : modifiers) {
        captures.clear();
        click();
        press(Qt::Key_F5, modifier, "F5");
        EXPECT_EQ(captures, std::vector{ShortcutCapture::captured({"F5", {name}})});
    }
}

TEST_F(ShortcutRecorderViewTest, ThePlaceOfAKeyCountsWhateverItsLetter) {
    click();
    press(Qt::Key_Y, Qt::MetaModifier, "Z");
    click();
    press(Qt::Key_Backtab, Qt::ShiftModifier, "TAB");
    click();
    pressKey(*recorder, Qt::Key_5, Qt::ControlModifier | Qt::KeypadModifier, scanCodeOf("5"));
    EXPECT_EQ(captures, (std::vector{ShortcutCapture::captured({"Z", {"command"}}),
                                     ShortcutCapture::captured({"TAB", {"shift"}}),
                                     ShortcutCapture::captured({"5", {"control"}})}));
}

TEST_F(ShortcutRecorderViewTest, EscapeAloneCancelsAndShowsTheShortcutAgain) {
    const QImage before = drawn();
    other->setFocus();
    click();
    EXPECT_NE(drawn(), before);
    press(Qt::Key_Escape, Qt::NoModifier, "ESCAPE");
    EXPECT_EQ(captures, std::vector{ShortcutCapture::cancelled()});
    expectIdle();
    other->setFocus();
    EXPECT_EQ(drawn(), before);
    EXPECT_EQ(recorder->displayText(), QStringLiteral("⌃⌥K"));
    EXPECT_EQ(window.presses, 0);
}

TEST_F(ShortcutRecorderViewTest, EscapeThatWasMovedToAnotherKeyCancelsToo) {
    click();
    pressKey(*recorder, Qt::Key_Escape, Qt::NoModifier, unnamedScanCode);
    EXPECT_EQ(captures, std::vector{ShortcutCapture::cancelled()});
}

TEST_F(ShortcutRecorderViewTest, EscapeWithAModifierIsAKeyLikeAnyOther) {
    click();
    press(Qt::Key_Escape, Qt::ShiftModifier, "ESCAPE");
    EXPECT_EQ(captures, std::vector{ShortcutCapture::captured({"ESCAPE", {"shift"}})});
}

TEST_F(ShortcutRecorderViewTest, AKeyWithoutANameIsUnsupportedWithAModifierElseItNeedsOne) {
    click();
    pressKey(*recorder, Qt::Key_VolumeUp, Qt::AltModifier, unnamedScanCode);
    click();
    pressKey(*recorder, Qt::Key_VolumeUp, Qt::NoModifier, unnamedScanCode);
    EXPECT_EQ(captures,
              (std::vector{ShortcutCapture::unsupportedKey(), ShortcutCapture::needsModifier()}));
    expectIdle();
}

TEST_F(ShortcutRecorderViewTest, AKeyWithoutAModifierNeedsOneEvenIfItDeletes) {
    const std::pair<Qt::Key, const char*> keys[] = {
        {Qt::Key_K, "K"},     {Qt::Key_Backspace, "DELETE"}, {Qt::Key_Delete, "FORWARDDELETE"},
        {Qt::Key_Tab, "TAB"}, {Qt::Key_Return, "RETURN"},    {Qt::Key_Space, "SPACE"}};
    for (const auto& [key, name] : keys) {
        captures.clear();
        click();
        EXPECT_TRUE(press(key, Qt::NoModifier, name).wasAccepted) << name;
        EXPECT_EQ(captures, std::vector{ShortcutCapture::needsModifier()}) << name;
        EXPECT_TRUE(recorder->hasFocus()) << name;
    }
    EXPECT_EQ(window.presses, 0);
}

TEST_F(ShortcutRecorderViewTest, ModifiersAndLocksAloneGoOnRecording) {
    click();
    for (const Qt::Key key :
         {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_Super_L,
          Qt::Key_Super_R, Qt::Key_AltGr, Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_ScrollLock}) {
        pressKey(*recorder, key, Qt::NoModifier, unnamedScanCode);
        EXPECT_TRUE(recorder->isRecording()) << key;
    }
    EXPECT_TRUE(captures.empty());
    press(Qt::Key_K, Qt::AltModifier, "K");
    EXPECT_EQ(captures.size(), 1U);
}

TEST_F(ShortcutRecorderViewTest, APressWhileNotRecordingIsPassedOnAndDeliversNothing) {
    recorder->setFocus(Qt::OtherFocusReason);
    const PressResult result = press(Qt::Key_K, Qt::AltModifier, "K");
    EXPECT_FALSE(result.wasOverridden);
    EXPECT_EQ(window.presses, 1);
    EXPECT_TRUE(captures.empty());
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(ShortcutRecorderViewTest, ACombinationOfAMenuIsCapturedNotPerformed) {
    int quits = 0;
    QAction quit;
    quit.setShortcut(QKeySequence(Qt::META | Qt::Key_Q));
    window.addAction(&quit);
    QObject::connect(&quit, &QAction::triggered, [&quits] { ++quits; });
    QTest::keyClick(window.windowHandle(), Qt::Key_Q, Qt::MetaModifier);
    ASSERT_EQ(quits, 1) << "what it does else";

    click();
    QTest::keyClick(window.windowHandle(), Qt::Key_Q, Qt::MetaModifier);
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(captures, std::vector{ShortcutCapture::unsupportedKey()}) << "these tell no place";
    click();
    EXPECT_TRUE(press(Qt::Key_Q, Qt::MetaModifier, "Q").wasOverridden);
    EXPECT_EQ(captures.back(), ShortcutCapture::captured({"Q", {"command"}}));
}

TEST_F(ShortcutRecorderViewTest, AClickElsewhereStopsTheRecordingAndDeliversNothing) {
    click();
    QTest::mouseClick(other, Qt::LeftButton);
    expectIdle();
    click();
    QTest::mouseClick(&window, Qt::LeftButton, {}, window.rect().bottomLeft() - QPoint(-3, 3));
    expectIdle();
    EXPECT_TRUE(captures.empty());
}

TEST_F(ShortcutRecorderViewTest, LosingTheFocusStopsTheRecording) {
    click();
    other->setFocus();
    expectIdle();
}

TEST_F(ShortcutRecorderViewTest, HidingOrDisablingItStopsTheRecording) {
    click();
    window.hide();
    expectIdle();
    window.show();
    click();
    recorder->setEnabled(false);
    expectIdle();
    EXPECT_TRUE(captures.empty());
}

TEST_F(ShortcutRecorderViewTest, AnotherWindowThatBecomesActiveStopsTheRecording) {
    click();
    ASSERT_TRUE(recorder->isRecording());
    QWidget another;
    another.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&another));
    expectIdle();
    EXPECT_TRUE(captures.empty());
}

TEST_F(ShortcutRecorderViewTest, ItsEndLetsTheKeyboardGo) {
    click();
    delete recorder;
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(ShortcutRecorderViewTest, TheCaptureMayBeItsEnd) {
    recorder->onCapture = [this](const ShortcutCapture& capture) {
        captures.push_back(capture);
        delete recorder;
    };
    click();
    QKeyEvent event(QEvent::KeyPress, Qt::Key_K, Qt::AltModifier, scanCodeOf("K"), 0, 0);
    QApplication::sendEvent(recorder, &event);
    EXPECT_EQ(captures.size(), 1U);
}

TEST_F(ShortcutRecorderViewTest, WithoutAReceiverTheResultIsDropped) {
    recorder->onCapture = nullptr;
    click();
    press(Qt::Key_K, Qt::AltModifier, "K");
    expectIdle();
}

TEST_F(ShortcutRecorderViewTest, TheKeyboardPassesThroughWithoutRecording) {
    QTest::keyClick(other, Qt::Key_Tab);
    EXPECT_TRUE(recorder->hasFocus());
    expectIdle();
    QTest::keyClick(recorder, Qt::Key_Tab);
    EXPECT_TRUE(other->hasFocus());
    EXPECT_TRUE(captures.empty());
}

TEST_F(ShortcutRecorderViewTest, SpaceAndReturnStartARecordingWhereTheKeyboardLedHere) {
    for (const auto& [key, name] :
         {std::pair{Qt::Key_Space, "SPACE"}, {Qt::Key_Return, "RETURN"}}) {
        other->setFocus();
        QTest::keyClick(other, Qt::Key_Tab);
        press(key, Qt::NoModifier, name);
        EXPECT_TRUE(recorder->isRecording()) << name;
        pressKey(*recorder, key, Qt::NoModifier, scanCodeOf(name), true);
        EXPECT_TRUE(recorder->isRecording()) << name << " is still held";
        press(Qt::Key_Escape, Qt::NoModifier, "ESCAPE");
    }
}

TEST_F(ShortcutRecorderViewTest, AfterARecordingReturnIsTheWindowsAgainAndSpaceStartsAnother) {
    click();
    press(Qt::Key_K, Qt::AltModifier, "K");
    press(Qt::Key_Return, Qt::NoModifier, "RETURN");
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(window.presses, 1);
    press(Qt::Key_Space, Qt::NoModifier, "SPACE");
    EXPECT_TRUE(recorder->isRecording());
    press(Qt::Key_Escape, Qt::NoModifier, "ESCAPE");
}

TEST_F(ShortcutRecorderViewTest, AKeyThatIsStillHeldAfterTheRecordingDoesNothingMore) {
    for (const auto& [key, name] : {std::pair{Qt::Key_Return, "RETURN"},
                                    {Qt::Key_Escape, "ESCAPE"},
                                    {Qt::Key_Tab, "TAB"},
                                    {Qt::Key_Space, "SPACE"}}) {
        click();
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, scanCodeOf(name), 0, 0);
        QApplication::sendEvent(recorder, &event);
        pressKey(*recorder, key, Qt::NoModifier, scanCodeOf(name), true);
        expectIdle();
        EXPECT_TRUE(recorder->hasFocus()) << name;
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, scanCodeOf(name), 0, 0);
        QApplication::sendEvent(recorder, &release);
    }
    EXPECT_EQ(window.presses, 0);
    EXPECT_EQ(captures.size(), 4U);
}

TEST_F(ShortcutRecorderViewTest, RepetitionsEndNoRecording) {
    click();
    pressKey(*recorder, Qt::Key_K, Qt::AltModifier, scanCodeOf("K"), true);
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_TRUE(captures.empty());
    other->setFocus();
}

TEST_F(ShortcutRecorderViewTest, TheFocusIsSeen) {
    const QImage before = drawn();
    recorder->setFocus(Qt::TabFocusReason);
    EXPECT_NE(drawn(), before);
}

TEST_F(ShortcutRecorderViewTest, AssistiveTechnologyIsToldWhatItShowsAndCanPressIt) {
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(recorder);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Shortcut: ⌃⌥K"));
    recorder->click();
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Shortcut: Press the keys…"));
    other->setFocus();
}

}  // namespace
}  // namespace quorvel
