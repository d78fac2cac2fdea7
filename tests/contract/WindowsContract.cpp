#include "tests/contract/Contract.hpp"

namespace quorvel::test {
namespace {

class WindowsContract : public Contract {
protected:
    const std::string notes = rig->install("notes");
    const std::string paint = rig->install("paint");

    std::optional<AXWindow> focused(const std::string& path) {
        std::optional<AXWindow> found;
        rig->until([&] {
            found = desktop.windows.focusedWindow(rig->processIdentifier(path), path).window;
            return found.has_value();
        });
        return found;
    }
    /// A window of the notes, once the desktop under test knows it.
    AXWindow openNotes(const Rect& wantedFrameAX = {200, 150, 400, 300}) {
        window = rig->openWindow(notes, wantedFrameAX);
        const std::optional<AXWindow> found = focused(notes);
        if (!found) throw std::runtime_error("the window is not found");
        original = seen();
        return *found;
    }
    Rect seen() { return rig->seenFrameAX(window).value_or(Rect{}); }
    Rect read(AXWindow handle) {
        const FrameReading reading = desktop.windows.readFrame(handle);
        if (!reading.positionAX || !reading.size) return {};
        return {reading.positionAX->x, reading.positionAX->y, reading.size->width,
                reading.size->height};
    }
    std::int32_t moveTo(AXWindow handle, Point originAX) {
        return desktop.windows.setOrigin(handle, originAX, MoveStep::final);
    }
    /// Moves it there and expects to find it there, by reading and by looking.
    void expectAt(AXWindow handle, Point originAX) {
        EXPECT_EQ(moveTo(handle, originAX), 0);
        const Rect expected{originAX.x, originAX.y, original.width, original.height};
        EXPECT_EQ(read(handle), expected);
        EXPECT_EQ(seen(), expected);
    }
    std::chrono::nanoseconds now() { return std::chrono::nanoseconds(runLoop.uptimeNanoseconds()); }

    Rig::Window window = 0;
    Rect original;
};

TEST_P(WindowsContract, FrameIsWhatIsSeen) {
    const AXWindow handle = openNotes();
    EXPECT_GE(original.width, 300);
    EXPECT_EQ(read(handle), original);
}

TEST_P(WindowsContract, FrameFollowsTheUsersHand) {
    const AXWindow handle = openNotes();
    rig->moveTo(window, {330, 240});
    EXPECT_NE(seen(), original);
    EXPECT_EQ(read(handle), seen());
}

TEST_P(WindowsContract, MoveOnTheDisplayIsExact) {
    const AXWindow handle = openNotes();
    expectAt(handle, {47, 211});
    expectAt(handle, {600, 90});
}

TEST_P(WindowsContract, TwoPointsStayVisibleAtTheLeft) {
    const AXWindow handle = openNotes();
    desktop.windows.hold(handle, original);
    expectAt(handle, {2 - original.width, original.y});
}

TEST_P(WindowsContract, TwoPointsStayVisibleAtTheRight) {
    const AXWindow handle = openNotes();
    desktop.windows.hold(handle, original);
    expectAt(handle, {1278, original.y});
}

TEST_P(WindowsContract, TwoPointsStayVisibleInTheCorners) {
    const AXWindow handle = openNotes();
    desktop.windows.hold(handle, original);
    expectAt(handle, {2 - original.width, 2 - original.height});
    expectAt(handle, {1278, 2 - original.height});
    expectAt(handle, {2 - original.width, 798});
    expectAt(handle, {1278, 798});
}

TEST_P(WindowsContract, WindowComesHomeToThePixel) {
    const AXWindow handle = openNotes();
    desktop.windows.hold(handle, original);
    expectAt(handle, {2 - original.width, original.y});
    desktop.windows.letGo(handle, EndOfHold::putBack);
    expectAt(handle, original.origin());
    EXPECT_EQ(seen(), original);
}

TEST_P(WindowsContract, WindowComesHomeAgainAndAgain) {
    const AXWindow handle = openNotes();
    for (int i = 0; i < 5; ++i) {
        desktop.windows.hold(handle, original);
        EXPECT_EQ(moveTo(handle, {i % 2 == 0 ? 2 - original.width : 1278, original.y}), 0);
        desktop.windows.letGo(handle, EndOfHold::putBack);
        EXPECT_EQ(moveTo(handle, original.origin()), 0);
        EXPECT_EQ(seen(), original) << "time " << i;
    }
}

TEST_P(WindowsContract, SlideEndsWhereItsLastStepSays) {
    const AXWindow handle = openNotes();
    desktop.windows.hold(handle, original);
    const double last = 2 - original.width;
    for (int step = 1; step < 10; ++step) {
        const double x = original.x + (last - original.x) * step / 10;
        EXPECT_EQ(
            desktop.windows.setOrigin(handle, {std::round(x), original.y}, MoveStep::intermediate),
            0);
    }
    expectAt(handle, {last, original.y});
}

TEST_P(WindowsContract, HeldWindowStaysOutWhileOthersAreActivated) {
    const AXWindow handle = openNotes();
    const Rig::Window other = rig->openWindow(paint, {500, 300, 300, 200});
    desktop.windows.hold(handle, original);
    const Point sliver{2 - original.width, original.y};
    EXPECT_EQ(moveTo(handle, sliver), 0);
    rig->activate(other);
    EXPECT_EQ(seen().origin(), sliver);
    rig->activate(window);
    EXPECT_EQ(seen().origin(), sliver);
    EXPECT_EQ(read(handle).origin(), sliver);
}

TEST_P(WindowsContract, WindowThatFillsTheDisplayDoesSoAgainAtHome) {
    const AXWindow handle = openNotes();
    rig->fillDisplay(window);
    original = seen();
    ASSERT_EQ(read(handle), original);
    desktop.windows.hold(handle, original);
    expectAt(handle, {2 - original.width, original.y});
    EXPECT_FALSE(rig->fillsDisplay(window));
    desktop.windows.letGo(handle, EndOfHold::putBack);
    EXPECT_EQ(moveTo(handle, original.origin()), 0);
    EXPECT_TRUE(rig->until([&] { return rig->fillsDisplay(window); }));
    EXPECT_TRUE(rig->until([&] { return seen() == original; }));
}

TEST_P(WindowsContract, VanishedWindowHasNoFrameAndCannotBeMoved) {
    const AXWindow handle = openNotes();
    rig->closeWindow(window);
    EXPECT_FALSE(desktop.windows.readFrame(handle).positionAX.has_value());
    EXPECT_FALSE(desktop.windows.readFrame(handle).size.has_value());
    EXPECT_EQ(moveTo(handle, {10, 10}), -1);
    EXPECT_EQ(desktop.windows.setOrigin(handle, {20, 20}, MoveStep::intermediate), -1);
    // None of these has anything to say; they must only be harmless.
    desktop.windows.raise(handle);
    desktop.windows.hold(handle, original);
    desktop.windows.letGo(handle, EndOfHold::putBack);
    desktop.windows.letGo(handle, EndOfHold::forgotten);
}

TEST_P(WindowsContract, HandleOfAVanishedWindowNeverMeansAnother) {
    const AXWindow before = openNotes();
    rig->kill(notes);
    // The server's identifier is free now, and the next window gets it on most servers.
    const AXWindow after = openNotes();
    EXPECT_NE(before, after);
    EXPECT_FALSE(desktop.windows.readFrame(before).positionAX.has_value());
}

TEST_P(WindowsContract, HandlesOfOneWindowAreEqual) {
    const AXWindow first = openNotes();
    const std::optional<AXWindow> second = focused(notes);
    ASSERT_TRUE(second.has_value());
    EXPECT_EQ(first, *second);
    EXPECT_EQ(std::hash<AXWindow>{}(first), std::hash<AXWindow>{}(*second));
}

TEST_P(WindowsContract, ApplicationWithoutWindowsHasNoFocusedWindow) {
    openNotes();
    const std::int32_t pid = rig->processIdentifier(notes);
    rig->closeWindow(window);
    EXPECT_TRUE(
        rig->until([&] { return !desktop.windows.focusedWindow(pid, notes).window.has_value(); }));
}

TEST_P(WindowsContract, FocusedWindowIsTheActiveOne) {
    const AXWindow first = openNotes();
    const Rig::Window firstWindow = window;
    rig->openWindow(notes, {500, 300, 300, 200});
    ASSERT_TRUE(rig->until([&] { return focused(notes) != first; }));
    rig->activate(firstWindow);
    EXPECT_TRUE(rig->until([&] { return focused(notes) == first; }));
}

TEST_P(WindowsContract, FocusedWindowInTheBackgroundIsTheLastActiveOne) {
    const AXWindow first = openNotes();
    const Rig::Window firstWindow = window;
    rig->openWindow(notes, {500, 300, 300, 200});
    rig->activate(firstWindow);
    ASSERT_TRUE(rig->until([&] { return focused(notes) == first; }));
    rig->openWindow(paint, {100, 100, 300, 200});
    EXPECT_TRUE(rig->never([&] { return focused(notes) != first; }, 200ms));
}

TEST_P(WindowsContract, DialogYieldsItsMainWindow) {
    const AXWindow main = openNotes();
    rig->openDialog(notes, window);
    EXPECT_TRUE(rig->never([&] { return focused(notes) != main; }, 200ms));
}

TEST_P(WindowsContract, RaisedWindowIsInFrontWithoutTheKeyboard) {
    const AXWindow handle = openNotes();
    const Rig::Window other = rig->openWindow(paint, {250, 200, 300, 200});
    rig->activate(other);
    ASSERT_TRUE(rig->until([&] { return rig->isInFrontOf(other, window); }));
    desktop.windows.raise(handle);
    EXPECT_TRUE(rig->until([&] { return rig->isInFrontOf(window, other); }));
    EXPECT_TRUE(rig->isActive(other));
}

TEST_P(WindowsContract, ProgramThatHangsStopsNobodyForLong) {
    const AXWindow handle = openNotes();
    rig->suspend(notes);
    for (const Point target : {Point{40, 40}, Point{2 - original.width, 40}}) {
        const auto start = now();
        moveTo(handle, target);
        EXPECT_LE(now() - start, 350ms);
    }
    const auto start = now();
    desktop.windows.readFrame(handle);
    EXPECT_LE(now() - start, 350ms);
    rig->resume(notes);
    EXPECT_EQ(moveTo(handle, {40, 40}), 0);
    EXPECT_EQ(read(handle).origin(), (Point{40, 40}));
}

class IconicWindowsContract : public WindowsContract {};

TEST_P(IconicWindowsContract, IconicWindowIsNotTheFocusedOne) {
    const AXWindow first = openNotes();
    const Rig::Window second = rig->openWindow(notes, {500, 300, 300, 200});
    ASSERT_TRUE(rig->until([&] { return focused(notes) != first; }));
    rig->iconify(second);
    EXPECT_TRUE(rig->until([&] { return focused(notes) == first; }));
}

class WindowsOnTwoDisplaysContract : public WindowsContract {
protected:
    void SetUp() override {
        ASSERT_TRUE(rig->until([&] { return desktop.screens.screens().size() == 2; }));
    }
    /// Not opened there: some open windows on the display of the keyboard, and move none to
    /// another.
    AXWindow notesOnTheSecond() {
        const AXWindow handle = openNotes();
        expectAt(handle, {1500, 150});
        original = seen();
        return handle;
    }
};

TEST_P(WindowsOnTwoDisplaysContract, MoveFromOneDisplayToTheOtherIsExact) {
    const AXWindow handle = openNotes();
    expectAt(handle, {1500, 300});
    expectAt(handle, {100, 100});
}

TEST_P(WindowsOnTwoDisplaysContract, TwoPointsStayVisibleAtTheFarEdge) {
    const AXWindow handle = notesOnTheSecond();
    desktop.windows.hold(handle, original);
    expectAt(handle, {2558, original.y});
    desktop.windows.letGo(handle, EndOfHold::putBack);
    expectAt(handle, original.origin());
}

TEST_P(WindowsOnTwoDisplaysContract, WindowWhoseDisplayHasGoneComesHomeToTheNearest) {
    const AXWindow handle = notesOnTheSecond();
    desktop.windows.hold(handle, original);
    expectAt(handle, {2558, original.y});
    rig->arrange({{0, 0, 1280, 800}, {}});
    ASSERT_TRUE(rig->until([&] { return desktop.screens.screens().size() == 1; }));
    desktop.windows.letGo(handle, EndOfHold::putBack);
    EXPECT_EQ(moveTo(handle, original.origin()), 0);
    const Point expected{1280 - original.width, original.y};
    EXPECT_EQ(read(handle).origin(), expected);
    EXPECT_EQ(seen().origin(), expected);
}

INSTANTIATE_TEST_SUITE_P(, WindowsOnTwoDisplaysContract, testing::ValuesIn(twoDisplayRigs()),
                         rigName);

INSTANTIATE_TEST_SUITE_P(, WindowsContract, testing::ValuesIn(windowManagerRigs() + simulatedRig()),
                         rigName);

INSTANTIATE_TEST_SUITE_P(, IconicWindowsContract,
                         testing::ValuesIn(iconifyingRigs() + simulatedRig()), rigName);

}  // namespace
}  // namespace quorvel::test
