// A day with the program: what a press of a shortcut does to programs that nobody here wrote.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* shortcut = "control,option,T";

std::string entry(const std::string& name) {
    return "/usr/share/applications/" + name + ".desktop";
}

class ProgramJourneyTest : public testing::TestWithParam<WindowManagerKind> {
protected:
    ProgramOnX program{{.windowManager = GetParam()}};

    xcb_window_t launch(const std::string& path, const std::string& windowClass,
                        const std::string& edge) {
        program.bind({{path, shortcut, edge}});
        program.start();
        program.press(shortcut);
        return program.waitForWindow(windowClass);
    }

    void tuckAndBringBack(const std::string& path, const std::string& windowClass) {
        const xcb_window_t window = launch(path, windowClass, "left");
        const Rect home = program.settledFrame(window);
        const Rect tucked = ProgramOnX::atLeftEdge(home);

        program.press(shortcut);
        EXPECT_TRUE(program.waitForFrame(window, tucked));
        EXPECT_TRUE(program.staysAt(window, tucked));

        program.press(shortcut);
        EXPECT_TRUE(program.waitForFrame(window, home));
        EXPECT_TRUE(program.staysAt(window, home));
        EXPECT_EQ(program.probe().activeWindow(), window);

        EXPECT_THAT(
            program.logLines(),
            ElementsAre("Quorvel: global hotkey registered (control,option,T) for " + path,
                        "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                        "Quorvel: ready — 1 app(s) bound", "Quorvel: accessibility granted",
                        "Quorvel: tucked " + path + " window to left", "Quorvel: untucked window"));
        EXPECT_EQ(program.terminate(), 0);
        EXPECT_TRUE(program.staysAt(window, home));
    }
};

INSTANTIATE_TEST_SUITE_P(, ProgramJourneyTest, testing::ValuesIn(allWindowManagers()),
                         testing::PrintToStringParamName());

TEST_P(ProgramJourneyTest, AProgramOfTheServersOwnKindIsStartedTuckedAndBroughtBack) {
    tuckAndBringBack(entry("debian-xterm"), "XTerm");
}

TEST_P(ProgramJourneyTest, AProgramThatDecoratesItselfIsStartedTuckedAndBroughtBack) {
    tuckAndBringBack(entry("org.gnome.gedit"), "Gedit");
}

TEST_P(ProgramJourneyTest, AQtProgramIsStartedTuckedAndBroughtBack) {
    tuckAndBringBack(entry("featherpad"), "featherpad");
}

TEST_P(ProgramJourneyTest, WithoutAnEdgeItIsHiddenAndShownAgain) {
    const xcb_window_t window = launch(entry("debian-xterm"), "XTerm", "none");
    const Rect home = program.settledFrame(window);
    const auto isHidden = [&] {
        if (GetParam() == WindowManagerKind::i3) return program.seen(window).maxX() <= 0;
        return program.probe().isIconic(window) && !program.probe().isViewable(window);
    };

    program.press(shortcut);
    EXPECT_TRUE(waitUntil(isHidden));
    program.press(shortcut);
    EXPECT_TRUE(program.waitForFrame(window, home));
    EXPECT_TRUE(program.waitUntilActive(window));
    EXPECT_FALSE(isHidden());
    EXPECT_TRUE(program.staysAt(window, home));

    // Once more, as the first time may have depended on what came before.
    program.press(shortcut);
    EXPECT_TRUE(waitUntil(isHidden));
    program.press(shortcut);
    EXPECT_TRUE(program.waitForFrame(window, home));
    EXPECT_TRUE(program.waitUntilActive(window));
    EXPECT_THAT(program.linesSinceReady(), IsEmpty());
}

TEST_P(ProgramJourneyTest, AWindowBehindAnotherIsBroughtToTheFrontBeforeItIsPutAway) {
    const xcb_window_t window = launch(entry("debian-xterm"), "XTerm", "left");
    const Rect home = program.settledFrame(window);
    TestClient other(program.session.displayName());
    const xcb_window_t cover = program.session.open(other, {.area = home});
    program.probe().activate(cover);
    ASSERT_TRUE(program.waitUntilActive(cover));

    program.press(shortcut);
    EXPECT_TRUE(program.waitUntilActive(window));
    EXPECT_TRUE(waitUntil([&] { return program.probe().isAbove(window, cover); }));
    EXPECT_EQ(program.seen(window), home);
    program.press(shortcut);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
}

}  // namespace
}  // namespace quorvel::test
