#include "platform/linux/PosixFiles.hpp"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/XdgFolders.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

namespace fs = std::filesystem;

/// The environment as it was, again at the end.
class Variable {
public:
    explicit Variable(const char* name) : name(name) {
        if (const char* value = getenv(name)) before = value;
        unsetenv(name);
    }
    ~Variable() {
        if (before) {
            setenv(name, before->c_str(), 1);
        } else {
            unsetenv(name);
        }
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

    void set(const char* value) const { setenv(name, value, 1); }

private:
    const char* name;
    std::optional<std::string> before;
};

TEST(PosixFilesTest, FollowsLinksAndDanglingOnesDoNotExist) {
    const test::ScratchFolder scratch;
    const PosixFiles files;
    const std::string file = scratch.write("file", "").string();
    fs::create_symlink("file", scratch / "link");
    fs::create_symlink("gone", scratch / "dangling");
    EXPECT_TRUE(files.exists(file));
    EXPECT_TRUE(files.exists(scratch.path().string()));
    EXPECT_TRUE(files.exists((scratch / "link").string()));
    EXPECT_FALSE(files.exists((scratch / "dangling").string()));
    EXPECT_FALSE(files.exists(file + "/below"));
    EXPECT_FALSE(files.exists(""));
    EXPECT_FALSE(files.exists(file + std::string("\0x", 2)));
}

TEST(PosixFilesTest, HomeIsTheVariableWhenItIsAbsolute) {
    const PosixFiles files;
    const Variable home("HOME");
    home.set("/home/someone");
    EXPECT_EQ(files.homeDirectory(), "/home/someone");
    home.set("/home/someone//");
    EXPECT_EQ(files.homeDirectory(), "/home/someone");
    home.set("/");
    EXPECT_EQ(files.homeDirectory(), "/");
}

TEST(PosixFilesTest, HomeComesFromThePasswordDatabaseOtherwise) {
    const PosixFiles files;
    const Variable home("HOME");
    const std::string expected = getpwuid(getuid())->pw_dir;
    EXPECT_EQ(files.homeDirectory(), expected);
    for (const char* unusable : {"", "relative/home", "."}) {
        home.set(unusable);
        EXPECT_EQ(files.homeDirectory(), expected) << unusable;
    }
}

TEST(XdgFoldersTest, StandardFoldersBelowHomeWithoutVariables) {
    const Variable config("XDG_CONFIG_HOME");
    const Variable data("XDG_DATA_HOME");
    const Variable shared("XDG_DATA_DIRS");
    const XdgFolders folders = XdgFolders::fromEnvironment("/home/x");
    EXPECT_EQ(folders.configHome, "/home/x/.config");
    EXPECT_EQ(folders.dataFolders,
              (std::vector<std::string>{"/home/x/.local/share", "/usr/local/share", "/usr/share"}));
}

TEST(XdgFoldersTest, VariablesCountWhenTheyAreAbsolute) {
    const Variable config("XDG_CONFIG_HOME");
    const Variable data("XDG_DATA_HOME");
    const Variable shared("XDG_DATA_DIRS");
    config.set("/c/");
    data.set("relative");
    shared.set("/a/:b::/d:");
    XdgFolders folders = XdgFolders::fromEnvironment("/home/x");
    EXPECT_EQ(folders.configHome, "/c");
    EXPECT_EQ(folders.dataFolders, (std::vector<std::string>{"/home/x/.local/share", "/a", "/d"}));
    config.set("");
    data.set("/e");
    shared.set("");
    folders = XdgFolders::fromEnvironment("/home/x");
    EXPECT_EQ(folders.configHome, "/home/x/.config");
    EXPECT_EQ(folders.dataFolders,
              (std::vector<std::string>{"/e", "/usr/local/share", "/usr/share"}));
}

}  // namespace
}  // namespace quorvel::native
