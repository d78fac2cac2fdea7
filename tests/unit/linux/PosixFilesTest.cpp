#include "platform/linux/PosixFiles.hpp"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

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

/// A mount as the kernel lists it.
struct Mount {
    std::string path;
    bool isReadOnly = false;
};

/// Those that nothing is mounted over.
std::vector<Mount> mounts() {
    std::vector<Mount> all;
    std::ifstream list("/proc/self/mountinfo");
    for (std::string line; std::getline(list, line);) {
        std::istringstream fields(line);
        std::string skipped, path, options, superOptions;
        fields >> skipped >> skipped >> skipped >> skipped >> path >> options;
        while (fields >> skipped) superOptions = skipped;
        const auto isReadOnly = [](const std::string& text) {
            return text == "ro" || text.starts_with("ro,");
        };
        std::erase_if(all, [&](const Mount& earlier) {
            return earlier.path == path || earlier.path.starts_with(path + "/");
        });
        all.push_back({path, isReadOnly(options) || isReadOnly(superOptions)});
    }
    return all;
}

TEST(PosixFilesTest, AReadOnlyVolumeIsKnownWhereverItIsMounted) {
    const test::ScratchFolder scratch;
    const std::string folder = scratch.path().string();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Where this is not allowed, as in most containers, some of the mounts are read-only.
        if (unshare(CLONE_NEWNS) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) {
            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
            mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr);
            mount(nullptr, folder.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr);
        }
        const PosixFiles files;
        int readOnly = 0;
        int writable = 0;
        for (const Mount& mount : mounts()) {
            const auto told = files.isOnReadOnlyVolume(mount.path);
            if (!told) continue;  // one that this user may not look at
            if (*told != mount.isReadOnly) _exit(2);
            ++(*told ? readOnly : writable);
        }
        _exit(readOnly > 0 && writable > 0 ? 0 : 3);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(PosixFilesTest, AVolumeThatCannotBeAskedAboutGivesNothing) {
    const PosixFiles files;
    EXPECT_EQ(files.isOnReadOnlyVolume("/nonexistent/program"), std::nullopt);
    EXPECT_EQ(files.isOnReadOnlyVolume(""), std::nullopt);
    EXPECT_EQ(files.isOnReadOnlyVolume(std::string_view("/\0x", 3)), std::nullopt);
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
