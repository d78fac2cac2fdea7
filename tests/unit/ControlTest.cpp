// What other programs may ask of the running one.

#include "tests/unit/LauncherFixture.hpp"

namespace quorvel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class ControlTest : public LauncherFixture {
protected:
    static constexpr Rect home = editorHome;

    void SetUp() override {
        sim.pointer.moveTo({720, 450});
        sim.install(editor);
        sim.install(browser);
        bind({{editor, editorKeys, "false"}, {browser, browserKeys, "false"}});
        place({{editor, displayId(1), "none", "left"}});
    }
    RemoteAnswer ask(const std::string& command, const std::string& argument = "") {
        const auto answer = sim.remoteControl.ask(command, argument);
        EXPECT_TRUE(answer) << "nobody serves";
        sim.settle();
        return answer.value_or(RemoteAnswer{});
    }
    static Value::Array list(const RemoteAnswer& answer, const char* key) {
        return *answer.value.at(key).array();
    }
    static std::string text(const Value& record, const char* key) {
        return *record.dictionary()->at(key).text();
    }
    std::vector<std::string> steps() {
        std::vector<std::string> result;
        for (const Value& step : list(ask("why"), "steps")) result.push_back(*step.text());
        return result;
    }
};

TEST_F(ControlTest, StatusTellsTheListTheDisplaysAndWhatIsTucked) {
    launch();
    tuckEditor();
    const RemoteAnswer answer = ask("status");
    ASSERT_FALSE(answer.error);
    const Value::Array bindings = list(answer, "bindings");
    ASSERT_EQ(bindings.size(), 2U);
    EXPECT_EQ(text(bindings[0], "application"), editor);
    EXPECT_EQ(text(bindings[0], "shortcut"), "⌃⌥E");
    EXPECT_EQ(bindings[0].dictionary()->at("isRefused"), Value(false));
    EXPECT_EQ(bindings[0].dictionary()->at("isInstalled"), Value(true));
    EXPECT_EQ(text(bindings[0].dictionary()->at("places").array()->at(0), "edge"), "left");
    EXPECT_EQ(list(answer, "displays").size(), 1U);
    const Value::Array tucked = list(answer, "tucked");
    ASSERT_EQ(tucked.size(), 1U);
    EXPECT_EQ(text(tucked[0], "edge"), "left");
    EXPECT_EQ(tucked[0].dictionary()->at("isRevealed"), Value(false));
}

TEST_F(ControlTest, DoctorNamesARefusedShortcutAndWhoMayHoldIt) {
    const auto spec = HotKeySpec::parse(browserKeys);
    sim.hotKeys.holdElsewhere(virtualKeyCodes().at(spec->keyName), spec->carbonMask());
    sim.diagnostics.takers = {"sxhkd"};
    sim.diagnostics.findings = {{"window manager", "Openbox.", false}};
    launch();
    EXPECT_EQ(list(ask("status"), "bindings")[1].dictionary()->at("isRefused"), Value(true));
    std::vector<std::string> problems;
    for (const Value& finding : list(ask("doctor"), "findings")) {
        if (finding.dictionary()->at("isProblem") == Value(true)) {
            problems.push_back(text(finding, "text"));
        }
    }
    EXPECT_THAT(problems, ElementsAre("⌃⌥B of browser is held by another program. The server does "
                                      "not tell which; these take shortcuts here: sxhkd."));
}

TEST_F(ControlTest, DoctorSaysWhatIsNotInstalledAndWhyWindowsCannotBeMoved) {
    bind({{"/opt/gone/Gone.desktop", "none", "false"}});
    sim.trust.granted = false;
    launch();
    std::vector<std::string> topics;
    for (const Value& finding : list(ask("doctor"), "findings")) {
        if (finding.dictionary()->at("isProblem") == Value(true)) {
            topics.push_back(text(finding, "topic"));
        }
    }
    EXPECT_THAT(topics, ElementsAre("permission", "settings"));
}

TEST_F(ControlTest, WhyBeforeAnythingHasHappened) {
    launch();
    EXPECT_EQ(ask("why").error, "Nothing has been triggered since Quorvel was started.");
}

TEST_F(ControlTest, WhyTellsTheTriggerWhatItDidAndHowLongAgo) {
    launch();
    tuckEditor();
    sim.advance(std::chrono::seconds(4));
    const RemoteAnswer answer = ask("why");
    EXPECT_EQ(*answer.value.at("trigger").text(), "the shortcut ⌃⌥E of editor");
    EXPECT_GE(*answer.value.at("secondsAgo").integer(), 4);
    EXPECT_THAT(steps(),
                ElementsAre("It is in front, and has the left edge: to the edge, or back.",
                            HasSubstr("tucked /usr/share/applications/editor.desktop window")));
}

TEST_F(ControlTest, WhyTellsWhyAnApplicationWithoutAnEdgeIsHidden) {
    launch();
    sim.start(browser);
    press(browserKeys);
    EXPECT_THAT(steps(), ElementsAre("It is in front, and has no edge: hidden."));
}

TEST_F(ControlTest, WhyTellsWhatIsInFrontInstead) {
    launch();
    sim.start(browser);
    sim.start(editor);
    press(browserKeys);
    EXPECT_THAT(steps(), Contains(HasSubstr("It is not in front (editor is)")));
}

TEST_F(ControlTest, WhatComesLongAfterATriggerIsNotItsDoing) {
    launch();
    tuckEditor();
    const auto before = steps();
    sim.advance(std::chrono::seconds(5));
    ask("untuck");
    EXPECT_EQ(steps(), before);
}

TEST_F(ControlTest, ToggleDoesWhatAPressDoesByNameOrPath) {
    launch();
    const AXWindow window = sim.start(editor, home);
    for (const std::string name : {"editor", "EDITOR", "/usr/share/applications/editor.desktop"}) {
        EXPECT_FALSE(ask("toggle", name).error) << name;
        waitForSlides();
        EXPECT_EQ(sim.frameAX(window)->x, -798) << name;
        EXPECT_FALSE(ask("toggle", name).error) << name;
        waitForSlides();
        EXPECT_EQ(sim.frameAX(window), home) << name;
    }
}

TEST_F(ControlTest, AnApplicationThatIsNotInTheListIsSaidSo) {
    launch();
    EXPECT_EQ(ask("toggle", "Paint").error, "No application “Paint” is in the list.");
    EXPECT_EQ(ask("toggle").error, "Which application?");
}

TEST_F(ControlTest, OneNameForTwoIsAskedBack) {
    sim.install("/opt/other/editor.desktop", "editor");
    bind({{editor, editorKeys, "false"}, {"/opt/other/editor.desktop", "none", "false"}});
    launch();
    EXPECT_THAT(ask("toggle", "editor").error.value_or(""), HasSubstr("name it by its path"));
}

TEST_F(ControlTest, RevealBringsATuckedWindowOut) {
    launch();
    EXPECT_EQ(ask("reveal", "editor").error, "editor has no tucked window.");
    const AXWindow window = tuckEditor();
    EXPECT_FALSE(ask("reveal", "editor").error);
    sim.advance(std::chrono::milliseconds(400));
    EXPECT_GE(sim.frameAX(window)->x, 0);
}

TEST_F(ControlTest, UntuckPutsAllBack) {
    launch();
    const AXWindow window = tuckEditor();
    EXPECT_EQ(*ask("untuck").value.at("untucked").integer(), 1);
    EXPECT_EQ(sim.frameAX(window), home);
}

TEST_F(ControlTest, SettingsOpensTheirWindow) {
    launch();
    EXPECT_FALSE(ask("settings").error);
    EXPECT_EQ(interface.settingsShown, 1);
}

TEST_F(ControlTest, ReloadTakesWhatIsStoredNow) {
    launch();
    bind({{editor, "control,option,J", "false"}});
    EXPECT_FALSE(ask("reload").error);
    EXPECT_EQ(text(list(ask("status"), "bindings")[0], "shortcut"), "⌃⌥J");
    const AXWindow window = sim.start(editor, home);
    press("control,option,J");
    waitForSlides();
    EXPECT_EQ(sim.frameAX(window)->x, -798);
}

TEST_F(ControlTest, ACommandThatIsNoneIsRefused) {
    launch();
    EXPECT_EQ(ask("explode").error, "There is no command “explode”.");
}

}  // namespace
}  // namespace quorvel
