#include "platform/linux/WindowOwners.hpp"

#include <gtest/gtest.h>

#include <string>

#include "tests/x11/ConnectedTest.hpp"

namespace quorvel::test {
namespace {

/// The test's own windows, on a bare server. No change of a folder is told to anybody.
class WindowOwnersTest : public ConnectedTest {
protected:
    std::string install(const std::string& className) const {
        return session.folder()
            .write("entries/" + className + ".desktop",
                   "[Desktop Entry]\nType=Application\nName=" + className +
                       "\nExec=/bin/true\nStartupWMClass=" + className + "\n")
            .string();
    }
    xcb_window_t open(const std::string& className, xcb_window_t transientFor = 0) {
        const xcb_window_t window =
            client.open({.className = className, .transientFor = transientFor});
        EXPECT_TRUE(waitInLoop([&] { return clients.isManaged(window); }));
        return window;
    }
    void changeClass(xcb_window_t window, const std::string& className) {
        bool isTold = false;
        const Subscription told =
            clients.onWindowChange([&](xcb_window_t changed, native::ClientWindows::Change) {
                isTold = isTold || changed == window;
            });
        xcb_change_property(client.connection().xcb(), XCB_PROP_MODE_REPLACE, window,
                            XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(className.size()), className.c_str());
        client.connection().sync();
        ASSERT_TRUE(waitInLoop([&] { return isTold; }));
    }

    native::WindowManagerInfo manager{*connection};
    native::ClientWindows clients{*connection, manager};
    native::DesktopEntries entries{{(session.folder() / "entries").string()}};
    native::WindowOwners owners{clients, entries};
    TestClient client{session.displayName()};
};

TEST_F(WindowOwnersTest, WindowThatChangesItsClassIsAnotherApplications) {
    const std::string first = install("First");
    const std::string second = install("Second");
    const xcb_window_t window = open("First");
    EXPECT_EQ(owners.pathOf(window), first);
    changeClass(window, "Second");
    EXPECT_EQ(owners.pathOf(window), second);
}

TEST_F(WindowOwnersTest, DialogsOfDialogsGoWithTheWindow) {
    const std::string first = install("First");
    const std::string second = install("Second");
    const xcb_window_t window = open("First");
    const xcb_window_t dialog = open("", window);
    const xcb_window_t inner = open("", dialog);
    EXPECT_EQ(owners.pathOf(inner), first);
    EXPECT_EQ(owners.pathOf(dialog), first);
    changeClass(window, "Second");
    EXPECT_EQ(owners.pathOf(inner), second);
    EXPECT_EQ(owners.pathOf(dialog), second);
}

TEST_F(WindowOwnersTest, NobodyElseIsAskedAgain) {
    install("First");
    const std::string second = install("Second");
    const xcb_window_t other = open("Later");
    const xcb_window_t window = open("First");
    const auto before = owners.pathOf(other);
    EXPECT_NE(owners.pathOf(window), before);
    // Whoever were asked again would find it.
    const std::string later = install("Later");
    changeClass(window, "Second");
    EXPECT_EQ(owners.pathOf(window), second);
    EXPECT_EQ(owners.pathOf(other), before);
    changeClass(other, "Later");
    EXPECT_EQ(owners.pathOf(other), later);
}

}  // namespace
}  // namespace quorvel::test
