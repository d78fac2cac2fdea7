#include "platform/linux/XdgApplicationCatalog.hpp"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>

#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

using test::ScratchFolder;

/// GLib reads the environment once, so whatever depends on it runs in a process of its own: the
/// body of a death test, which says what it found on standard error.
class XdgApplicationCatalogTest : public testing::Test {
protected:
    XdgApplicationCatalogTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    std::string install(const std::string& file, const std::string& lines) const {
        return folder
            .write("data/applications/" + file,
                   "[Desktop Entry]\nType=Application\n" + lines + "\n")
            .string();
    }
    void useFolder() const {
        setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        setenv("XDG_DATA_DIRS", (folder / "shared").c_str(), 1);
        setenv("XDG_CURRENT_DESKTOP", "Mine:Other", 1);
        setenv("LANGUAGE", "de", 1);
        setenv("LC_ALL", "de_DE.UTF-8", 1);
    }
    [[noreturn]] void end() const {
        std::cerr << '.';
        std::filesystem::remove_all(folder.path());
        std::exit(0);
    }

    ScratchFolder folder;
};

TEST_F(XdgApplicationCatalogTest, InstalledAreThoseToBeShownSortedByTheirLocalizedNames) {
    install("a.desktop", "Exec=sh\nName=Zebra\nName[de]=apfel\nIcon=fruit");
    install("b.desktop", "Exec=sh\nName=Birne");
    install("c.desktop", "Exec=sh\nName=Hidden one\nNoDisplay=true");
    install("d.desktop", "Exec=sh\nName=Elsewhere\nOnlyShowIn=Foreign;");
    install("e.desktop", "Exec=sh\nName=Not here\nNotShowIn=Mine;");
    install("f.desktop", "Exec=sh\nName=Clementine\nOnlyShowIn=Other;");
    install("g.desktop", "Exec=/nowhere/at/all\nName=Gone");
    install("h.desktop", "Exec=sh\nTryExec=/nowhere/at/all\nName=Gone too");
    folder.write("shared/applications/b.desktop",
                 "[Desktop Entry]\nType=Application\nExec=sh\nName=Overridden\n");
    EXPECT_EXIT(
        {
            useFolder();
            DesktopEntries entries(DesktopEntries::standardFolders());
            for (const auto& application : XdgApplicationCatalog(entries).installed()) {
                std::cerr << application.name << '='
                          << application.path.substr(folder.path().string().size()) << ' ';
            }
            end();
        },
        testing::ExitedWithCode(0),
        testing::HasSubstr("apfel=/data/applications/a.desktop "
                           "Birne=/data/applications/b.desktop "
                           "Clementine=/data/applications/f.desktop ."));
}

// The index is our own reading of the folders; where GIO can read an entry, both must agree on the
// path that stands for an id.
TEST_F(XdgApplicationCatalogTest, IndexAndGioAgreeOnEveryEntry) {
    install("a.desktop", "Exec=sh\nName=A");
    install("sub/b.desktop", "Exec=sh\nName=B");
    install("c.desktop", "Exec=sh\nName=C\nHidden=true");
    install("d.desktop", "Exec=sh\nName=D\nNoDisplay=true");
    install("e.desktop", "Exec=\"sh\nName=E");
    install("größe.desktop", "Exec=sh\nName=Größe");
    folder.write("data/applications/f.desktop", "garbage");
    for (const char* name : {"a", "c", "f", "g"}) {
        folder.write(std::string("shared/applications/") + name + ".desktop",
                     "[Desktop Entry]\nType=Application\nExec=sh\nName=Shared\n");
    }
    EXPECT_EXIT(
        {
            useFolder();
            std::set<std::string> ofGio;
            GList* all = g_app_info_get_all();
            for (GList* item = all; item != nullptr; item = item->next) {
                ofGio.insert(g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(item->data)));
            }
            g_list_free_full(all, g_object_unref);
            std::set<std::string> ours;
            DesktopEntries entries(DesktopEntries::standardFolders());
            for (const DesktopEntry& entry : entries.all()) {
                // GIO leaves out what it cannot start; we still recognise its windows.
                if (!entry.command.empty()) ours.insert(entry.path);
            }
            std::cerr << (ours == ofGio ? "agreed on " : "differ on ") << ofGio.size();
            end();
        },
        testing::ExitedWithCode(0), "agreed on 5");
}

TEST_F(XdgApplicationCatalogTest, NameOfAnythingButAnEntryIsThatOfItsFile) {
    DesktopEntries entries({});
    const XdgApplicationCatalog catalog(entries);
    EXPECT_EQ(catalog.nameOf("/usr/bin/foo"), "foo");
    EXPECT_EQ(catalog.nameOf("/opt/Größe.AppImage"), "Größe");
    EXPECT_EQ(catalog.nameOf("/nowhere/org.example.Foo.desktop"), "org.example.Foo");
    EXPECT_EQ(catalog.nameOf(install("nameless.desktop", "Exec=sh")), "nameless");
    EXPECT_EQ(catalog.nameOf(folder.write("bad.desktop", "garbage").string()), "bad");
}

TEST_F(XdgApplicationCatalogTest, EntryOfARemovedProgramKeepsItsNameAndIcon) {
    DesktopEntries entries({});
    const XdgApplicationCatalog catalog(entries);
    const std::string path = install("gone.desktop", "Exec=/nowhere/foo\nName=Gone\nIcon=gone");
    EXPECT_EQ(catalog.nameOf(path), "Gone");
    EXPECT_EQ(catalog.iconOf(path).themeNames.front(), "gone");
}

TEST_F(XdgApplicationCatalogTest, IconIsANameOrAFileOrThatOfAnyProgram) {
    DesktopEntries entries({});
    const XdgApplicationCatalog catalog(entries);
    const ApplicationIcon generic{{"application-x-executable"}, ""};
    EXPECT_EQ(catalog.iconOf(install("a.desktop", "Exec=sh\nIcon=org.example.Foo")),
              (ApplicationIcon{{"org.example.Foo", "application-x-executable"}, ""}));
    EXPECT_EQ(catalog.iconOf(install("b.desktop", "Exec=sh\nIcon=foo.png")),
              (ApplicationIcon{{"foo", "application-x-executable"}, ""}));
    EXPECT_EQ(catalog.iconOf(install("c.desktop", "Exec=sh\nIcon=/opt/größe.svg")),
              (ApplicationIcon{{}, "/opt/größe.svg"}));
    EXPECT_EQ(catalog.iconOf(install("d.desktop", "Exec=sh")), generic);
    EXPECT_EQ(catalog.iconOf("/usr/bin/foo"), generic);
}

}  // namespace
}  // namespace quorvel::native
