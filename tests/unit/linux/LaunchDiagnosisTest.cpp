#include "platform/linux/LaunchDiagnosis.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

using test::ScratchFolder;
using testing::AllOf;
using testing::HasSubstr;
using testing::Optional;

class LaunchDiagnosisTest : public testing::Test {
protected:
    std::string entry(const std::string& lines) {
        return folder.write("a.desktop", "[Desktop Entry]\nType=Application\nName=A\n" + lines)
            .string();
    }
    std::string file(const std::string& name, const std::string& content, mode_t mode = 0644) {
        const std::string path = folder.write(name, content).string();
        chmod(path.c_str(), mode);
        return path;
    }

    ScratchFolder folder;
};

TEST_F(LaunchDiagnosisTest, WhatCanBeStartedHasNoFault) {
    EXPECT_EQ(whyNotLaunchable(entry("Exec=sh -c true")), std::nullopt);
    EXPECT_EQ(whyNotLaunchable(entry("DBusActivatable=true")), std::nullopt);
    EXPECT_EQ(whyNotLaunchable("/bin/sh"), std::nullopt);
    EXPECT_EQ(whyNotLaunchable(file("größe", "", 0755)), std::nullopt);
}

TEST_F(LaunchDiagnosisTest, MissingFile) {
    EXPECT_EQ(whyNotLaunchable("/nowhere/a.desktop"), "There is nothing at “/nowhere/a.desktop”.");
    EXPECT_EQ(whyNotLaunchable(""), "There is nothing at “”.");
    EXPECT_THAT(whyNotLaunchable(file("a", "", 0755) + "/b"), Optional(HasSubstr("nothing at")));
}

TEST_F(LaunchDiagnosisTest, FolderAndPipe) {
    EXPECT_THAT(whyNotLaunchable(folder.path()), Optional(HasSubstr("is a folder")));
    ASSERT_EQ(mkfifo((folder / "pipe.desktop").c_str(), 0755), 0);
    EXPECT_THAT(whyNotLaunchable(folder / "pipe.desktop"), Optional(HasSubstr("not a program")));
}

TEST_F(LaunchDiagnosisTest, FileThatMayNotBeExecuted) {
    EXPECT_THAT(whyNotLaunchable(file("a", "")), Optional(HasSubstr("may not be executed")));
}

TEST_F(LaunchDiagnosisTest, EmptyAndMalformedEntries) {
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", " \n\n")), Optional(HasSubstr("is empty")));
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", "garbage")),
                Optional(AllOf(HasSubstr("malformed"), HasSubstr("garbage"))));
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", "[Other]\nA=b\n")),
                Optional(HasSubstr("[Desktop Entry]")));
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", std::string("\0\xFF\n", 3))),
                Optional(HasSubstr("malformed")));
}

TEST_F(LaunchDiagnosisTest, EntryOfSomethingElse) {
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", "[Desktop Entry]\nType=Link\nURL=x\n")),
                Optional(HasSubstr("not the desktop entry of an application")));
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", "[Desktop Entry]\nExec=sh\n")),
                Optional(HasSubstr("not the desktop entry of an application")));
}

TEST_F(LaunchDiagnosisTest, MissingExec) {
    EXPECT_THAT(whyNotLaunchable(entry("")), Optional(HasSubstr("Exec line is missing")));
    EXPECT_THAT(whyNotLaunchable(entry("Exec= \n")), Optional(HasSubstr("Exec line is missing")));
}

TEST_F(LaunchDiagnosisTest, ExecThatCannotBeUnderstood) {
    EXPECT_THAT(whyNotLaunchable(entry("Exec=\"sh")), Optional(HasSubstr("cannot be understood")));
}

TEST_F(LaunchDiagnosisTest, ProgramThatIsNotThere) {
    EXPECT_THAT(whyNotLaunchable(entry("Exec=no-such-program %U")),
                Optional(AllOf(HasSubstr("“no-such-program”"), HasSubstr("is not installed"))));
    EXPECT_THAT(whyNotLaunchable(entry("Exec=sh\nTryExec=/nowhere/foo")),
                Optional(AllOf(HasSubstr("“/nowhere/foo”"), HasSubstr("is not installed"))));
}

TEST_F(LaunchDiagnosisTest, ProgramThatMayNotBeExecuted) {
    EXPECT_THAT(whyNotLaunchable(entry("Exec=" + file("foo", ""))),
                Optional(HasSubstr("may not be executed")));
}

TEST_F(LaunchDiagnosisTest, HugeFile) {
    EXPECT_THAT(whyNotLaunchable(file("a.desktop", std::string(2 << 20, '#'))),
                Optional(HasSubstr("too large")));
}

}  // namespace
}  // namespace quorvel::native
