#include "platform/linux/DesktopEntries.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

using test::ScratchFolder;

std::string entryText(const std::string& lines) {
    return "[Desktop Entry]\nType=Application\nName=Example\n" + lines + "\n";
}

class DesktopEntriesTest : public testing::Test {
protected:
    std::string user(const std::string& name, const std::string& lines = "Exec=foo") {
        return folder.write("user/" + name, entryText(lines)).string();
    }
    std::string system(const std::string& name, const std::string& lines = "Exec=foo") {
        return folder.write("system/" + name, entryText(lines)).string();
    }
    std::string at(const std::string& id) const {
        const DesktopEntry* entry = entries.withId(id);
        return entry == nullptr ? "" : entry->path;
    }

    ScratchFolder folder;
    DesktopEntries entries{
        {(folder / "user").string(), (folder / "missing").string(), (folder / "system").string()}};
};

TEST_F(DesktopEntriesTest, FieldsAreRead) {
    const std::string path = system("org.example.Foo.desktop",
                                    "Exec=env A=1 \"/opt/a b/foo\" %U\nStartupWMClass=Foo\\sBar\n"
                                    "TryExec=foo\nNoDisplay=true");
    const DesktopEntry expected{.path = path,
                                .id = "org.example.Foo.desktop",
                                .startupWMClass = "Foo Bar",
                                .program = "/opt/a b/foo",
                                .command = "env",
                                .tryExec = "foo",
                                .isShown = false};
    EXPECT_EQ(entries.all(), std::vector{expected});
}

TEST_F(DesktopEntriesTest, NoFolderIsNoEntries) {
    EXPECT_TRUE(DesktopEntries({}).all().empty());
    EXPECT_TRUE(DesktopEntries({"/nowhere/at/all"}).all().empty());
}

TEST_F(DesktopEntriesTest, EarlierFolderCounts) {
    system("foo.desktop");
    const std::string own = user("foo.desktop");
    EXPECT_EQ(at("foo.desktop"), own);
    EXPECT_EQ(entries.all().size(), 1U);
}

TEST_F(DesktopEntriesTest, FoldersBelowBecomePartOfTheId) {
    const std::string path = system("kde/sub/foo.desktop");
    EXPECT_EQ(at("kde-sub-foo.desktop"), path);
}

TEST_F(DesktopEntriesTest, HiddenEntryHidesThoseInLaterFolders) {
    system("foo.desktop");
    user("foo.desktop", "Hidden=true");
    EXPECT_TRUE(entries.all().empty());
}

TEST_F(DesktopEntriesTest, OtherTypesAreNotEntriesOfApplications) {
    folder.write("system/link.desktop", "[Desktop Entry]\nType=Link\nURL=x\n");
    folder.write("system/none.desktop", "[Desktop Entry]\nExec=foo\n");
    folder.write("system/readme.txt", entryText("Exec=foo"));
    EXPECT_TRUE(entries.all().empty());
}

TEST_F(DesktopEntriesTest, MalformedFilesAreNoEntries) {
    folder.write("system/empty.desktop", "");
    folder.write("system/text.desktop", "just a text\n");
    folder.write("system/key.desktop", "Type=Application\n[Desktop Entry]\nExec=foo\n");
    folder.write("system/other.desktop", "[Other]\nA=b\n[Desktop Entry]\nType=Application\n");
    folder.write("system/broken.desktop", entryText("Exec=foo\nno equals sign"));
    folder.write("system/binary.desktop", std::string("\0\xFF\xFE\0[", 5));
    std::filesystem::create_directory(folder / "system/folder.desktop");
    std::filesystem::create_symlink("/nowhere", folder / "system/dangling.desktop");
    ASSERT_EQ(mkfifo((folder / "system/pipe.desktop").c_str(), 0600), 0);
    EXPECT_TRUE(entries.all().empty());
}

TEST_F(DesktopEntriesTest, SpacesCommentsAndForeignLineEndsAreTaken) {
    folder.write("system/a.desktop",
                 "# a comment\r\n\r\n  [Desktop Entry] \r\n Type = Application\t\r\n"
                 "StartupWMClass =  Foo\r\nName[de]=[Foo]\r\n");
    ASSERT_EQ(entries.all().size(), 1U);
    EXPECT_EQ(entries.all().front().startupWMClass, "Foo");
}

TEST_F(DesktopEntriesTest, CarriageReturnsAtTheEndsOfLinesAreNoPartOfTheProgram) {
    system("a.desktop", "Exec=foo --bar baz\r\nStartupWMClass=Foo\r");
    system("b.desktop", "Exec=/opt/foo\r");
    EXPECT_EQ(entries.withId("a.desktop")->startupWMClass, "Foo");
    EXPECT_EQ(entries.withId("b.desktop")->program, "/opt/foo");
    EXPECT_EQ(entries.withId("b.desktop")->command, "/opt/foo");
}

TEST_F(DesktopEntriesTest, UnparsableExecLeavesTheRestUsable) {
    system("a.desktop", "Exec=\"never closed\nStartupWMClass=Foo");
    ASSERT_EQ(entries.all().size(), 1U);
    EXPECT_EQ(entries.all().front().program, "");
    EXPECT_EQ(entries.all().front().startupWMClass, "Foo");
}

TEST_F(DesktopEntriesTest, ActionsBelongToNobody) {
    system("a.desktop",
           "Exec=foo\n[Desktop Action new]\nExec=bar\nStartupWMClass=Bar\nHidden=true");
    ASSERT_EQ(entries.all().size(), 1U);
    EXPECT_EQ(entries.all().front().program, "foo");
    EXPECT_EQ(entries.all().front().startupWMClass, "");
}

TEST_F(DesktopEntriesTest, NamesBeyondAsciiAreTaken) {
    const std::string path = user("größe 日本語.desktop", "Exec=/opt/größe\nStartupWMClass=Größe");
    EXPECT_EQ(at("größe 日本語.desktop"), path);
    EXPECT_EQ(entries.all().front().startupWMClass, "Größe");
}

TEST_F(DesktopEntriesTest, HugeEntryCostsNoMoreThanItsMainGroup) {
    std::string text = entryText("Exec=foo") + "[Desktop Action new]\n";
    text.append(32 * 1024 * 1024, 'x');
    folder.write("system/huge.desktop", text);
    EXPECT_EQ(entries.all().size(), 1U);
}

TEST_F(DesktopEntriesTest, LinkBackUpEnds) {
    system("a.desktop");
    std::filesystem::create_directory_symlink(folder / "system", folder / "system/again");
    EXPECT_EQ(entries.all().size(), 1U);
}

TEST_F(DesktopEntriesTest, OneFolderByTwoNamesCountsOnce) {
    system("a.desktop");
    DesktopEntries twice({(folder / "system/").string(), (folder / "system").string()});
    EXPECT_EQ(twice.all().size(), 1U);
    EXPECT_EQ(twice.all().front().path, (folder / "system/a.desktop").string());
}

TEST_F(DesktopEntriesTest, PreferredOfTwoPathsWithOneIdCounts) {
    const std::string shared = system("foo.desktop");
    const std::string own = user("foo.desktop");
    entries.prefer({shared});
    EXPECT_EQ(at("foo.desktop"), shared);
    EXPECT_EQ(entries.at(own)->path, shared);
    entries.prefer({});
    EXPECT_EQ(at("foo.desktop"), own);
}

TEST_F(DesktopEntriesTest, PreferredEntryMayStandAnywhere) {
    const std::string path = folder.write("desk/my app.desktop", entryText("Exec=foo")).string();
    EXPECT_EQ(entries.at(path), nullptr);
    entries.prefer({path});
    ASSERT_NE(entries.at(path), nullptr);
    EXPECT_EQ(entries.at(path)->id, "my app.desktop");
}

TEST_F(DesktopEntriesTest, PreferredPathWithoutAnEntryIsPassedOver) {
    const std::string own = user("foo.desktop");
    entries.prefer({"/nowhere/foo.desktop", "", "/bin/sh"});
    EXPECT_EQ(at("foo.desktop"), own);
    EXPECT_EQ(entries.all().size(), 1U);
}

TEST_F(DesktopEntriesTest, PreferredProgramIsFoundThroughLinks) {
    const std::string target = folder.write("opt/foo-1.2", "").string();
    std::filesystem::create_symlink(target, folder / "foo");
    entries.prefer({(folder / "foo").string()});
    EXPECT_EQ(entries.preferredProgram(target), (folder / "foo").string());
    EXPECT_FALSE(entries.preferredProgram(folder / "opt"));
    EXPECT_FALSE(entries.preferredProgram(""));
}

TEST_F(DesktopEntriesTest, PreferredProgramIsOneFileByWhateverName) {
    const std::string program = folder.write("bin/foo", "").string();
    const std::string twin = (folder / "bin/twin").string();
    std::filesystem::create_hard_link(program, twin);
    entries.prefer({program});
    EXPECT_EQ(entries.preferredProgram(twin), program);
    // The very name says more than the same file.
    entries.prefer({program, twin});
    EXPECT_EQ(entries.preferredProgram(twin), twin);
    EXPECT_EQ(entries.preferredProgram(program), program);
}

TEST_F(DesktopEntriesTest, PreferredProgramThatIsNotThereIsKnownByItsPath) {
    entries.prefer({"/opt/absent/foo", "/opt/absent/bar"});
    EXPECT_EQ(entries.preferredProgram("/opt/absent/bar"), "/opt/absent/bar");
    EXPECT_FALSE(entries.preferredProgram("/opt/absent/other"));
}

TEST_F(DesktopEntriesTest, PreferredProgramMayBeReplaced) {
    const std::string link = (folder / "foo").string();
    const std::string first = folder.write("opt/1/foo", "1").string();
    const std::string second = folder.write("opt/2/foo", "2").string();
    std::filesystem::create_symlink(first, link);
    entries.prefer({link});
    EXPECT_EQ(entries.preferredProgram(first), link);
    std::filesystem::remove(link);
    std::filesystem::create_symlink(second, link);
    entries.invalidate();
    EXPECT_EQ(entries.preferredProgram(second), link);
    EXPECT_FALSE(entries.preferredProgram(first));
}

TEST_F(DesktopEntriesTest, BestIsPreferredThenShownThenFirst) {
    const auto any = [](const DesktopEntry&) { return true; };
    const std::string program = folder.write("bin/foo", "").string();
    chmod(program.c_str(), 0755);
    const std::string a = system("a.desktop", "NoDisplay=true\nExec=" + program);
    const std::string b = system("b.desktop", "Exec=/nowhere/foo");
    const std::string c = system("c.desktop", "TryExec=/nowhere/foo\nExec=" + program);
    EXPECT_EQ(entries.best(any)->path, a);
    const std::string d = system("d.desktop", "Exec=" + program);
    const std::string e = system("e.desktop", "Exec=" + program);
    entries.invalidate();
    EXPECT_EQ(entries.best(any)->path, d);
    entries.prefer({e, b});
    EXPECT_EQ(entries.best(any)->path, e);
    entries.prefer({b});
    EXPECT_EQ(entries.best(any)->path, b);
    EXPECT_EQ(entries.best([](const DesktopEntry&) { return false; }), nullptr);
}

TEST_F(DesktopEntriesTest, ChangedFoldersAreReadAgain) {
    system("a.desktop");
    int changes = 0;
    const Subscription subscription = entries.onChange([&] { ++changes; });
    EXPECT_FALSE(entries.invalidateIfFoldersChanged());
    EXPECT_EQ(entries.all().size(), 1U);
    EXPECT_FALSE(entries.invalidateIfFoldersChanged());
    EXPECT_EQ(changes, 0);

    folder.write("missing/b.desktop", entryText("Exec=foo"));
    EXPECT_EQ(entries.all().size(), 1U);
    EXPECT_TRUE(entries.invalidateIfFoldersChanged());
    EXPECT_EQ(entries.all().size(), 2U);
    EXPECT_FALSE(entries.invalidateIfFoldersChanged());
    EXPECT_EQ(changes, 1);
}

TEST_F(DesktopEntriesTest, PreferringTheSameAgainReadsNothing) {
    int changes = 0;
    const Subscription subscription = entries.onChange([&] { ++changes; });
    entries.prefer({"/bin/sh"});
    entries.prefer({"/bin/sh"});
    EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace quorvel::native
