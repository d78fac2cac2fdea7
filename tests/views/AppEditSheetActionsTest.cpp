#include <gmock/gmock.h>

#include "tests/views/AppEditSheetFixture.hpp"

// What the controls of the sheet store and do.
namespace quorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using AppEditSheetActionsTest = AppEditSheetTest;

// Corner and edge --------------------------------------------------------------------------------

TEST_F(AppEditSheetActionsTest, ShowsEveryStoredEdge) {
    const struct {
        const char* stored;
        int state;
        int half;
        bool hasHalves;
    } cases[] = {
        {"none", 0, 0, false},     {"left", 1, 0, true},         {"right", 2, 0, true},
        {"bottom", 3, 0, false},   {"top-left", 1, 1, true},     {"Bottom Left", 1, 2, true},
        {"top-right", 2, 1, true}, {"bottom-right", 2, 2, true}, {"nonsense", 0, 0, false}};
    open(display);
    for (const auto& each : cases) {
        settings.setPlacements({{editor, display, "none", each.stored}});
        sheet->refresh();
        EXPECT_EQ(edges().selectedIndex(), each.state) << each.stored;
        EXPECT_EQ(halves().selectedIndex(), each.half) << each.stored;
        EXPECT_EQ(halves().isEnabled(), each.hasHalves) << each.stored;
        EXPECT_EQ(autoTuck().isEnabled(), each.state != 0) << each.stored;
        EXPECT_EQ(tuckNow().isEnabled(), each.state != 0) << each.stored;
    }
}

TEST_F(AppEditSheetActionsTest, OffTakesTheEdgeAwayAndLeavesTheCorner) {
    settings.setPlacements({{editor, display, "topRight", "top-left"}});
    open(display);
    choose(edges(), "Off");
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, display, "topRight", "none"}));
    EXPECT_FALSE(halves().isEnabled());
    EXPECT_EQ(halves().selectedIndex(), 0);
    EXPECT_TRUE(corner("topRight")->isChecked());
}

TEST_F(AppEditSheetActionsTest, RightThenBottomHalfIsBottomRightAndBottomKnowsNoHalves) {
    open(display);
    const auto stored = [&] { return settings.placements().front().tuckEdge; };
    choose(edges(), "Right");
    EXPECT_EQ(stored(), "right");
    choose(halves(), "Bottom Half");
    EXPECT_EQ(stored(), "bottom-right");
    choose(edges(), "Left");
    EXPECT_EQ(stored(), "bottom-left");
    choose(halves(), "Top Half");
    EXPECT_EQ(stored(), "top-left");
    choose(edges(), "Bottom");
    EXPECT_EQ(stored(), "bottom");
    EXPECT_FALSE(halves().isEnabled());
}

TEST_F(AppEditSheetActionsTest, ACornerIsChosenAndTakenAway) {
    settings.setPlacements({{editor, display, "none", "left"}});
    open(display);
    for (const char* name : {"topLeft", "topRight", "bottomLeft", "bottomRight"}) {
        QTest::mouseClick(corner(name), Qt::LeftButton);
        EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, display, name, "left"}));
        EXPECT_TRUE(corner(name)->isChecked());
        EXPECT_FALSE(cornerOff().isChecked());
    }
    QTest::mouseClick(&cornerOff(), Qt::LeftButton);
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, display, "none", "left"}));
    EXPECT_TRUE(cornerOff().isChecked());
}

TEST_F(AppEditSheetActionsTest, APlacementIsFoundByItsDisplayAndWrittenUnderTheSheetsReference) {
    desktop.screens.arrange({SimulatedScreens::screen(1, {0, 0, 1440, 900}, true)});
    const std::string panel = *desktop.screens.screens().front().uuid;
    settings.setPlacements({{editor, "builtin", "topLeft", "none"}});
    open(panel);
    EXPECT_TRUE(corner("topLeft")->isChecked());
    corner("topRight")->click();
    EXPECT_THAT(settings.placements(), ElementsAre(Placement{editor, "builtin", "topLeft", "none"},
                                                   Placement{editor, panel, "topRight", "none"}));
    EXPECT_TRUE(corner("topLeft")->isChecked()) << "the first one still applies";
}

TEST_F(AppEditSheetActionsTest, AnAbsentDisplayIsEditedLikeAnyOther) {
    settings.setPlacements(
        {{editor, "ABSENT", "topLeft", "right"}, {editor, "Builtin", "bottomLeft", "none"}});
    open("ABSENT");
    EXPECT_TRUE(corner("topLeft")->isChecked());
    EXPECT_EQ(edges().selectedIndex(), 2);
    open("builtin");
    EXPECT_TRUE(corner("bottomLeft")->isChecked());
}

// The shortcut -----------------------------------------------------------------------------------

TEST_F(AppEditSheetActionsTest, ShowsTheShortcutOrNone) {
    open("");
    EXPECT_EQ(recorder().displayText(), QStringLiteral("⌃⌥K"));
    settings.setAppBindings({{editor, "none"}});
    sheet->refresh();
    EXPECT_EQ(recorder().displayText(), QStringLiteral("None"));
    settings.setAppBindings({});
    sheet->refresh();
    EXPECT_EQ(recorder().displayText(), QStringLiteral("None"));
}

TEST_F(AppEditSheetActionsTest, AFreeShortcutIsStoredAfterATrialThatLeavesNothingBehind) {
    open(display);
    record(Qt::MetaModifier | Qt::ShiftModifier, "SPACE");
    EXPECT_EQ(storedHotKey(), "shift,command,SPACE");
    EXPECT_EQ(storedHotKey(mail), "command,M");
    EXPECT_EQ(recorder().displayText(), QStringLiteral("⇧⌘Space"));
    EXPECT_EQ(status(), "");
    EXPECT_THAT(desktop.hotKeys.registered(), IsEmpty());
}

TEST_F(AppEditSheetActionsTest, ItsOwnShortcutIsStoredAgainWithoutATrial) {
    desktop.hotKeys.registerHotKey(virtualKeyCodes().at("K"), 0x1800, {1, 100});
    open(display);
    record(Qt::ControlModifier | Qt::AltModifier, "K");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(storedHotKey(), "control,option,K");
    EXPECT_EQ(writes(), 1);
}

TEST_F(AppEditSheetActionsTest, ItsOwnShortcutInAnotherSpellingIsTriedLikeAnyOther) {
    settings.setAppBindings({{editor, "ctrl, alt, k"}});
    desktop.hotKeys.registerHotKey(virtualKeyCodes().at("K"), 0x1800, {1, 100});
    open(display);
    record(Qt::ControlModifier | Qt::AltModifier, "K");
    EXPECT_EQ(status(), "⌃⌥K is already used by another app.");
    EXPECT_EQ(storedHotKey(), "ctrl, alt, k");
}

TEST_F(AppEditSheetActionsTest, TheShortcutAtTheOpeningStaysItsOwnWhateverWasRecordedSince) {
    desktop.hotKeys.registerHotKey(virtualKeyCodes().at("K"), 0x1800, {1, 100});
    open(display);
    record(Qt::AltModifier, "F5");
    ASSERT_EQ(storedHotKey(), "option,F5");
    record(Qt::ControlModifier | Qt::AltModifier, "K");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(storedHotKey(), "control,option,K");
}

TEST_F(AppEditSheetActionsTest, AShortcutThatAnotherProgramHoldsIsRefused) {
    desktop.hotKeys.holdElsewhere(virtualKeyCodes().at("SPACE"), 0x800);
    open(display);
    record(Qt::AltModifier, "SPACE");
    EXPECT_EQ(status(), "⌥Space is already used by another app.");
    EXPECT_EQ(storedHotKey(), "control,option,K");
    EXPECT_EQ(writes(), 0);
    EXPECT_EQ(recorder().displayText(), QStringLiteral("⌃⌥K"));
}

TEST_F(AppEditSheetActionsTest, AShortcutOfAnotherApplicationOfTheListIsRefused) {
    desktop.hotKeys.registerHotKey(virtualKeyCodes().at("M"), 0x100, {1, 100});
    open(display);
    record(Qt::MetaModifier, "M");
    EXPECT_EQ(status(), "⌘M is already used by another app.");
    EXPECT_EQ(storedHotKey(), "control,option,K");
    EXPECT_TRUE(desktop.hotKeys.isRegistered(virtualKeyCodes().at("M"), 0x100));
}

TEST_F(AppEditSheetActionsTest, SaysWhatIsWrongWithAPressUntilAShortcutIsAccepted) {
    open(display);
    record({}, "K");
    EXPECT_EQ(status(), "Add a modifier — ⌘, ⌃, ⌥ or ⇧.");
    QTest::mouseClick(&recorder(), Qt::LeftButton);
    pressKey(recorder(), Qt::Key_VolumeUp, Qt::AltModifier, unnamedScanCode);
    EXPECT_EQ(status(), "That key can't be used as a shortcut.");
    record({}, "ESCAPE");
    EXPECT_EQ(status(), "That key can't be used as a shortcut.");
    EXPECT_EQ(writes(), 0);
    record(Qt::AltModifier, "F5");
    EXPECT_EQ(status(), "");
}

TEST_F(AppEditSheetActionsTest, AnApplicationThatIsNotInTheListGetsNoShortcut) {
    open(display, Arrival::edit(), "/opt/unknown");
    record(Qt::AltModifier, "F5");
    EXPECT_EQ(writes(), 0);
    EXPECT_EQ(recorder().displayText(), QStringLiteral("None"));
}

TEST_F(AppEditSheetActionsTest, WhileItRecordsNeitherEscapeNorReturnClosesIt) {
    open(display);
    record({}, "ESCAPE");
    QTest::mouseClick(&recorder(), Qt::LeftButton);
    QTest::keyClick(sheet->windowHandle(), Qt::Key_Escape);
    QTest::mouseClick(&recorder(), Qt::LeftButton);
    QTest::keyClick(sheet->windowHandle(), Qt::Key_Return);
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_EQ(doneCount, 0);
}

// Tucking ----------------------------------------------------------------------------------------

TEST_F(AppEditSheetActionsTest, AutoTuckIsStoredAndShownAsStored) {
    settings.setPlacements({{editor, display, "none", "left"}});
    open(display);
    EXPECT_FALSE(autoTuck().isChecked());
    autoTuck().click();
    EXPECT_EQ(settings.appBindings().back().autoTuck, "true");
    autoTuck().click();
    EXPECT_EQ(settings.appBindings().back().autoTuck, "false");
    EXPECT_EQ(settings.appBindings().front().autoTuck, "false");
    settings.setAppBindings({{editor, "none", " YES\n"}});
    sheet->refresh();
    EXPECT_TRUE(autoTuck().isChecked());
    settings.setPlacements({});
    sheet->refresh();
    EXPECT_FALSE(autoTuck().isChecked());
    EXPECT_FALSE(autoTuck().isEnabled());
}

TEST_F(AppEditSheetActionsTest, AutoTuckClearsTheMessage) {
    settings.setPlacements({{editor, display, "none", "left"}});
    open(display);
    tuckNow().click();
    ASSERT_NE(status(), "");
    autoTuck().click();
    EXPECT_EQ(status(), "");
}

TEST_F(AppEditSheetActionsTest, TuckNowWithoutADisplayActsOnTheFirstEdgeThatIsNotTheBottom) {
    desktop.start(editor);
    settings.setPlacements({{editor, "A", "none", "bottom"},
                            {mail, "A", "none", "left"},
                            {editor, "B", "none", "nonsense"},
                            {editor, "C", "none", "Top Right"},
                            {editor, "D", "none", "left"}});
    open("");
    tuckNow().click();
    EXPECT_THAT(host.toggled, ElementsAre(std::pair{editor, TuckEdge(TuckEdge::topRight)}));
    EXPECT_EQ(tuckNow().text(), QStringLiteral("Untuck Now"));
    tuckNow().click();
    EXPECT_EQ(tuckNow().text(), QStringLiteral("Tuck Now"));
}

TEST_F(AppEditSheetActionsTest, TuckNowWithoutADisplayIsTheBottomWhereThereIsNothingElse) {
    desktop.start(editor);
    settings.setPlacements({{editor, "A", "none", "bottom"}, {editor, "B", "none", "none"}});
    open("");
    tuckNow().click();
    EXPECT_THAT(host.toggled, ElementsAre(std::pair{editor, TuckEdge(TuckEdge::bottom)}));
    settings.setPlacements({});
    sheet->refresh();
    EXPECT_FALSE(tuckNow().isEnabled());
}

TEST_F(AppEditSheetActionsTest, TuckNowOnADisplayActsOnTheEdgeThere) {
    desktop.start(editor);
    settings.setPlacements({{editor, "B", "none", "left"}, {editor, display, "none", "bottom"}});
    open(display);
    tuckNow().click();
    EXPECT_THAT(host.toggled, ElementsAre(std::pair{editor, TuckEdge(TuckEdge::bottom)}));
}

TEST_F(AppEditSheetActionsTest, TuckNowForAnApplicationThatIsNotRunningSaysSo) {
    desktop.start(mail);
    settings.setPlacements({{editor, display, "none", "left"}});
    open(display);
    const int before = writes();
    tuckNow().click();
    EXPECT_EQ(status(), "Text <b>Editor</b> is not running.");
    EXPECT_THAT(host.toggled, IsEmpty());
    EXPECT_EQ(writes(), before);
    desktop.start(editor);
    tuckNow().click();
    EXPECT_EQ(status(), "");
}

TEST_F(AppEditSheetActionsTest, TuckNowWhoseEdgeWasTakenAwayMeanwhileSaysSo) {
    desktop.start(editor);
    settings.setPlacements({{editor, display, "none", "left"}});
    open(display);
    settings.setPlacements({});
    tuckNow().click();
    EXPECT_EQ(status(), "Set a tuck edge first.");
    EXPECT_THAT(host.toggled, IsEmpty());
}

// Storing ----------------------------------------------------------------------------------------

TEST_F(AppEditSheetActionsTest, ARefusedWriteIsSaidAndWhatIsStoredIsShown) {
    settings.setPlacements({{editor, display, "topLeft", "left"}});
    open(display);
    desktop.defaults.failsToSave = true;
    const std::function<void()> actions[] = {
        [&] { corner("topRight")->click(); }, [&] { cornerOff().click(); },
        [&] { choose(edges(), "Right"); },    [&] { choose(halves(), "Top Half"); },
        [&] { autoTuck().click(); },          [&] { record(Qt::AltModifier, "F5"); },
    };
    for (const auto& act : actions) {
        find<QLabel>("status")->clear();
        act();
        EXPECT_EQ(status(), "The settings could not be saved.");
        EXPECT_TRUE(corner("topLeft")->isChecked());
        EXPECT_EQ(edges().selectedIndex(), 1);
        EXPECT_EQ(halves().selectedIndex(), 0);
        EXPECT_FALSE(autoTuck().isChecked());
        EXPECT_EQ(recorder().displayText(), QStringLiteral("⌃⌥K"));
    }
    desktop.defaults.failsToSave = false;
    corner("topRight")->click();
    EXPECT_EQ(status(), "") << "what it said is over";
}

TEST_F(AppEditSheetActionsTest, WhatWasStoredElsewhereMeanwhileIsKept) {
    open(display);
    settings.setAppBindings({{"/opt/new", "command,N"}, {editor, "control,option,K"}});
    settings.setPlacements({{"/opt/new", display, "topLeft", "none"}});
    record(Qt::AltModifier, "F5");
    corner("topRight")->click();
    EXPECT_EQ(storedHotKey("/opt/new"), "command,N");
    EXPECT_EQ(settings.placements().size(), 2U);
}

}  // namespace
}  // namespace quorvel
