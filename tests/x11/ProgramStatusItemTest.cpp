// The item in real panels: seen, clicked, and there again whatever happens to the panels.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "tests/support/x11/Panel.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint8_t left = 1;
constexpr std::uint8_t right = 3;

class StatusItemFixture : public testing::Test {
protected:
    StatusItemFixture() = default;
    explicit StatusItemFixture(XSessionOptions options) : program(options) {}

    ProgramWithNotes program;
    static constexpr const char* shownSettings =
        "Quorvel: settings window shown (680x620, 5 sections)";

    XInput& input() { return program.session.input(); }
    const XProbe& probe() const { return program.probe(); }

    void startProgram() {
        program.bind({{program.path, program.shortcut, "left"}});
        program.start();
    }

    void click(const Rect& item, std::uint8_t button) {
        input().moveTo(static_cast<int>(item.x + item.width / 2),
                       static_cast<int>(item.y + item.height / 2));
        input().click(button);
    }

    /// Opens the menu and gives its place on the screen.
    Rect openMenu(const Rect& item, std::uint8_t button = right) {
        auto before = probe().stacking();
        // Some toolkits use the same window for each menu.
        std::erase_if(before, [&](xcb_window_t window) { return !probe().isViewable(window); });
        click(item, button);
        Rect menu;
        const bool isOpen = waitUntil([&] {
            for (const xcb_window_t window : probe().stacking()) {
                if (std::find(before.begin(), before.end(), window) != before.end()) continue;
                const auto frame = probe().clientArea(window);
                if (!probe().isViewable(window) || !frame) continue;
                // In its place: some are shown before they are moved onto the screen.
                const bool isOnScreen = frame->maxX() <= 1280 && frame->maxY() <= 800;
                if (isOnScreen && frame->width > 60 && frame->height > 40) menu = *frame;
            }
            return !menu.isEmpty();
        });
        if (!isOpen) throw std::runtime_error("no menu opens");
        // Once it is drawn: its entries are darker or lighter than what they stand on.
        waitUntil([&] {
            const std::uint32_t ground =
                probe().pixel(static_cast<int>(menu.maxX()) - 8, static_cast<int>(menu.y) + 8);
            return probe().boundsOf(ground).has_value() && ground != 0;
        });
        return menu;
    }

    /// Clicks on an entry; the menu has `count` of them and a separator before the last one.
    void choose(const Rect& menu, int entry, int count) {
        constexpr double border = 4;
        constexpr double separator = 9;
        const double height = (menu.height - 2 * border - separator) / count;
        const bool isLast = entry == count - 1;
        const double y =
            isLast ? menu.maxY() - border - height / 2 : menu.y + border + (entry + 0.5) * height;
        // Until it is highlighted the toolkit may take the click for the end of the one before.
        const auto ground = [&] {
            return probe().pixel(static_cast<int>(menu.x) + 14, static_cast<int>(y));
        };
        const std::uint32_t before = ground();
        input().moveTo(static_cast<int>(menu.x + menu.width / 2), static_cast<int>(y));
        int step = 1;
        EXPECT_TRUE(waitUntil([&] {
            input().moveBy(step = -step, 0);
            return ground() != before;
        }));
        input().click(left);
    }

    xcb_window_t settingsAfterClick(const Rect& item) {
        click(item, left);
        const xcb_window_t window = program.waitForOwnWindow();
        EXPECT_EQ(program.titleOf(window), "Quorvel Settings");
        return window;
    }

    void closeAndWait(xcb_window_t window) {
        probe().close(window);
        EXPECT_TRUE(program.waitUntilGone(window));
    }

    void keepPicture(const std::string& name) const {
        fs::create_directories(QUORVEL_PICTURES);
        probe().screenshot(fs::path(QUORVEL_PICTURES) / (name + ".png"));
    }
};

class ProgramOnPanel : public StatusItemFixture, public testing::WithParamInterface<PanelKind> {};

TEST_P(ProgramOnPanel, ALeftClickOpensTheSettingsAlsoAfterTheMenuWasOpen) {
    Panel panel(GetParam(), program.session);
    startProgram();
    const Rect item = panel.waitForItem();
    keepPicture("status-item-" + nameOf(GetParam()));
    closeAndWait(settingsAfterClick(item));
    openMenu(item);
    input().tap("ESCAPE");
    closeAndWait(settingsAfterClick(panel.waitForItem()));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(panel.waitUntilItemIsGone());
}

TEST_P(ProgramOnPanel, QuitFromTheMenuPutsTheTuckedWindowBack) {
    Panel panel(GetParam(), program.session);
    const xcb_window_t window = program.startWithWindow("left");
    const Rect item = panel.waitForItem();
    const Rect home = program.settledFrame(window);
    program.press(program.shortcut);
    ASSERT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    const Rect menu = openMenu(item);
    keepPicture("status-menu-" + nameOf(GetParam()));
    choose(menu, 1, 2);
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_P(ProgramOnPanel, ControlClickOpensTheMenuAndSettingsCanBeChosen) {
    Panel panel(GetParam(), program.session);
    startProgram();
    const Rect item = panel.waitForItem();
    input().press("Control");
    const Rect menu = openMenu(item, left);
    input().release("Control");
    keepPicture("status-menu-control-" + nameOf(GetParam()));
    choose(menu, 0, 2);
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_EQ(program.terminate(), 0);
}

TEST_P(ProgramOnPanel, APanelThatStartsLaterOrAgainGetsTheItem) {
    startProgram();
    std::optional<Panel> panel;
    for (int start = 0; start < 3; ++start) {
        panel.emplace(GetParam(), program.session);
        const Rect item = panel->waitForItem();
        if (start == 2) closeAndWait(settingsAfterClick(item));
        panel->kill();
        EXPECT_TRUE(panel->waitUntilItemIsGone());
    }
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_THAT(program.linesSinceReady(), testing::Each(shownSettings));
}

TEST_P(ProgramOnPanel, WithoutItsIconItShowsACircle) {
    const fs::path elsewhere = program.session.folder() / "moved";
    fs::create_directories(elsewhere);
    fs::copy(ProgramOnX::defaultPath(), elsewhere / "Quorvel");
    fs::copy(QUORVEL_INTERFACE_MODULE, elsewhere / "quorvel-interface.so");
    Panel panel(GetParam(), program.session);
    program.bind({{program.path, program.shortcut, "left"}});
    program.start({.executable = elsewhere / "Quorvel"});
    constexpr std::uint32_t grey = 0x8A8A8A;
    std::optional<Rect> circle;
    ASSERT_TRUE(waitUntil([&] {
        circle = probe().boundsOfColoursNear(grey, 4, {0, 0, 1280, 32});
        return circle && circle->width > 10;
    }));
    keepPicture("status-item-without-icon-" + nameOf(GetParam()));
    EXPECT_FALSE(panel.item());
    closeAndWait(settingsAfterClick(*circle));
    EXPECT_EQ(program.terminate(), 0);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramOnPanel, testing::ValuesIn(allPanels()),
                         [](const auto& each) { return nameOf(each.param); });

class ProgramOnPanelWithoutManager : public StatusItemFixture,
                                     public testing::WithParamInterface<PanelKind> {
protected:
    ProgramOnPanelWithoutManager() : StatusItemFixture({.windowManager = std::nullopt}) {}
};

TEST_P(ProgramOnPanelWithoutManager, TheMenuOffersThePermissionUntilItIsThere) {
    Panel panel(GetParam(), program.session);
    program.bind({{program.path, "none"}});
    program.start();
    Rect menu = openMenu(panel.waitForItem());
    keepPicture("status-menu-permission-" + nameOf(GetParam()));
    const double heightOfThree = menu.height;
    choose(menu, 1, 3);
    xcb_window_t prompt = XCB_WINDOW_NONE;
    ASSERT_TRUE(waitUntil([&] {
        prompt = probe().inputFocus();
        return prompt > 1 && program.titleOf(prompt) == "Quorvel";
    }));
    keepPicture("permission-prompt-" + nameOf(GetParam()));
    input().tap("RETURN");
    EXPECT_TRUE(program.waitUntilGone(prompt));

    program.session.startWindowManager(WindowManagerKind::openbox);
    // It takes the panel over.
    ASSERT_TRUE(waitUntil([&] { return !probe().clientList().empty(); }));
    menu = openMenu(panel.waitForItem());
    EXPECT_LT(menu.height, heightOfThree);
    choose(menu, 1, 2);
    EXPECT_EQ(program.waitForExit(), 0);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramOnPanelWithoutManager, testing::ValuesIn(allPanels()),
                         [](const auto& each) { return nameOf(each.param); });

class ProgramStatusItemTest : public StatusItemFixture {};

TEST_F(ProgramStatusItemTest, ItIsShownOnceAndGoesToWhicheverPanelIsLeft) {
    Panel tray(PanelKind::trayer, program.session, Panel::Edge::bottom);
    startProgram();
    tray.waitForItem();
    for (int round = 0; round < 2; ++round) {
        Panel panel(PanelKind::lxqtPanel, program.session);
        panel.waitForItem();
        EXPECT_TRUE(tray.waitUntilItemIsGone());
        EXPECT_TRUE(neverWithin(600ms, [&] { return tray.item() || !panel.item(); }));
        panel.kill();
        tray.waitForItem();
    }
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(tray.waitUntilItemIsGone());
}

TEST_F(ProgramStatusItemTest, WithoutASessionBusItIsInTheTray) {
    Panel panel(PanelKind::trayer, program.session);
    program.bind({{program.path, program.shortcut, "left"}});
    program.start({.without = {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}});
    closeAndWait(settingsAfterClick(panel.waitForItem()));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStatusItemTest, ABusThatNeverAnswersDoesNotKeepItOutOfTheTray) {
    const FileDescriptor silent(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = program.session.folder() / "silent";
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(silent.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(silent.get(), 8), 0);
    Panel panel(PanelKind::trayer, program.session);
    program.bind({{program.path, program.shortcut, "left"}});
    program.start({.environment = {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + path}}});
    panel.waitForItem();
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStatusItemTest, NoBusIsStartedForIt) {
    const auto script =
        program.session.folder().write("bin/dbus-launch", "#!/bin/sh\ntouch \"$HOME/launched\"\n");
    fs::permissions(script, fs::perms::owner_all);
    Panel panel(PanelKind::trayer, program.session);
    program.bind({{program.path, program.shortcut, "left"}});
    program.start({.environment = {{"DBUS_SESSION_BUS_ADDRESS", "autolaunch:"},
                                   {"PATH", script.parent_path().string() + ":/usr/bin:/bin"}}});
    panel.waitForItem();
    EXPECT_FALSE(fs::exists(program.home / "launched"));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStatusItemTest, NonsenseFromTheBusWhileAnAlertIsUpChangesNothing) {
    program.bind({{"/opt/nowhere/Missing.desktop", program.shortcut}});
    program.start();
    const std::string name = "org.kde.StatusNotifierItem-" + std::to_string(program.pid()) + "-1";
    program.session.start({"gdbus", "wait", "--session", name}).waitForExit();
    program.press(program.shortcut);
    const xcb_window_t alert = program.waitForOwnWindow();
    const auto call = [&](const std::string& path, const std::string& method,
                          std::vector<std::string> arguments) {
        std::vector<std::string> command{"gdbus",         "call", "--session", "--dest", name,
                                         "--object-path", path,   "--method",  method};
        command.insert(command.end(), arguments.begin(), arguments.end());
        program.session.start(command).waitForExit();
    };
    const std::string item = "org.kde.StatusNotifierItem.";
    const std::string menu = "com.canonical.dbusmenu.";
    for (int i = 0; i < 5; ++i) call("/StatusNotifierItem", item + "Activate", {"1", "2"});
    call("/StatusNotifierItem", item + "Activate", {"'one'", "'two'"});
    call("/StatusNotifierItem", item + "Scroll", {"2147483647", "'sideways'"});
    call("/StatusNotifierItem", item + "NoSuchThing", {});
    call("/MenuBar", menu + "Event", {"--", "-7", "'clicked'", "<'x'>", "0"});
    call("/MenuBar", menu + "EventGroup", {"[(99, 'clicked', <1>, 0)]"});
    call("/MenuBar", menu + "GetLayout", {"--", "-1", "-1", "[]"});
    call("/MenuBar", menu + "AboutToShowGroup", {"[1, 2, 3]"});
    EXPECT_TRUE(program.isRunning());
    EXPECT_TRUE(probe().isViewable(alert));
    EXPECT_EQ(probe().clientList().size(), 1u);
    input().tap("ESCAPE");
    EXPECT_TRUE(program.waitUntilGone(alert));
    // The clicks that came meanwhile are one.
    EXPECT_EQ(program.titleOf(program.waitForOwnWindow()), "Quorvel Settings");
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_THAT(program.linesSinceReady(), testing::Each(shownSettings));
}

TEST_F(ProgramStatusItemTest, ABusThatDiesCostsALineAndNothingElse) {
    std::optional<Panel> panel(std::in_place, PanelKind::lxqtPanel, program.session);
    const xcb_window_t window = program.startWithWindow("left");
    panel->waitForItem();
    const Rect home = program.settledFrame(window);
    program.session.bus().kill();
    EXPECT_TRUE(program.waitForLine("Quorvel: the session bus has gone"));
    panel->kill();
    Panel tray(PanelKind::tint2, program.session);
    tray.waitForItem();
    program.press(program.shortcut);
    EXPECT_TRUE(program.waitForFrame(window, ProgramOnX::atLeftEdge(home)));
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_TRUE(program.waitForFrame(window, home));
}

TEST_F(ProgramStatusItemTest, ABusThatDiesAfterAnActivationOverItDoesNotEndTheProgram) {
    program.bind({{"/usr/share/applications/org.gnome.gedit.desktop", program.shortcut}});
    program.start();
    program.press(program.shortcut);
    program.waitForWindow("Gedit");
    program.session.bus().kill();
    EXPECT_TRUE(program.waitForLine("Quorvel: the session bus has gone"));
    EXPECT_TRUE(neverWithin(300ms, [&] { return !program.isRunning(); }));
    EXPECT_EQ(program.terminate(), 0);
}

TEST_F(ProgramStatusItemTest, ASecondStartAsksTheFirstToShowItsSettings) {
    startProgram();
    const auto second = program.session.start({ProgramOnX::defaultPath()});
    const xcb_window_t window = program.waitForOwnWindow();
    EXPECT_TRUE(program.waitUntilActive(window));
    closeAndWait(window);
    ChildProcess third = program.session.start({ProgramOnX::defaultPath()});
    EXPECT_EQ(third.waitForExit(), 0);
    EXPECT_TRUE(program.waitUntilActive(program.waitForOwnWindow()));
    EXPECT_THAT(program.linesSinceReady(), testing::Each(shownSettings));
    EXPECT_EQ(program.terminate(), 0);
}

}  // namespace
}  // namespace quorvel::test
