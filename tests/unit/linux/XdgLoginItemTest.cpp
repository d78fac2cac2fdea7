#include "platform/linux/XdgLoginItem.hpp"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class XdgLoginItemTest : public testing::Test {
protected:
    fs::path entry() const { return scratch / "config/autostart/com.tessivane.quorvel.desktop"; }

    void store(const std::string& content) const {
        scratch.write("config/autostart/com.tessivane.quorvel.desktop", content);
    }

    std::string content() const {
        std::ostringstream text;
        text << std::ifstream(entry(), std::ios::binary).rdbuf();
        return text.str();
    }

    std::string validation() const {
        const fs::path report = scratch / "validation";
        try {
            test::runToEnd({{"desktop-file-validate", entry().string()},
                            {{"PATH", "/usr/bin:/bin"}},
                            report,
                            {}});
        } catch (const std::exception& exception) {
            return exception.what();
        }
        std::ostringstream text;
        text << std::ifstream(report).rdbuf();
        return text.str();
    }

    XdgLoginItem itemFor(const std::string& executable) const {
        return {XdgFolders{(scratch / "config").string(), {}}, executable};
    }

    test::ScratchFolder scratch;
    XdgLoginItem item = itemFor("/opt/quorvel/Quorvel");
};

constexpr const char* ours =
    "[Desktop Entry]\nType=Application\nName=Quorvel\nExec=\"/old/Quorvel\"\n";

TEST_F(XdgLoginItemTest, RegistersAndUnregisters) {
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_THAT(content(), HasSubstr("\nExec=\"/opt/quorvel/Quorvel\"\n"));
    EXPECT_THAT(content(), HasSubstr("\nTryExec=/opt/quorvel/Quorvel\n"));
    EXPECT_EQ(validation(), "");
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::exists(entry()));
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.unregisterItem(), std::nullopt) << "unregistering twice";
}

TEST_F(XdgLoginItemTest, WithoutAProgramNothingIsRegistered) {
    XdgLoginItem unknown = itemFor("");
    EXPECT_EQ(unknown.registerItem(), "the path of the program is not known");
    EXPECT_FALSE(fs::exists(entry()));
    EXPECT_EQ(unknown.programPath(), "");
    EXPECT_EQ(item.programPath(), "/opt/quorvel/Quorvel");
}

TEST_F(XdgLoginItemTest, RegisteringTwiceChangesNothing) {
    EXPECT_EQ(item.registerItem(), std::nullopt);
    const std::string once = content();
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(content(), once);
}

TEST_F(XdgLoginItemTest, SwitchedOffByTheDesktopRequiresApproval) {
    for (const char* line : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n",
                             "X-GNOME-Autostart-enabled = false \n"}) {
        store(std::string(ours) + line);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << line;
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval)
            << "registering removed " << line;
        EXPECT_THAT(content(), HasSubstr("Exec=\"/opt/quorvel/Quorvel\""));
        EXPECT_EQ(validation(), "");
    }
    for (const char* line : {"Hidden=false\n", "X-GNOME-Autostart-enabled=true\n", ""}) {
        store(std::string(ours) + line);
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << line;
    }
}

TEST_F(XdgLoginItemTest, RegisteringKeepsWhatOthersWrote) {
    store(std::string("# by hand\n") + ours +
          "Comment[de]=Deutsch\nX-GNOME-Autostart-Delay=10\nOnlyShowIn=XFCE;\n");
    EXPECT_EQ(item.registerItem(), std::nullopt);
    for (const char* line : {"# by hand\n", "Comment[de]=Deutsch\n", "X-GNOME-Autostart-Delay=10\n",
                             "OnlyShowIn=XFCE;\n"}) {
        EXPECT_THAT(content(), HasSubstr(line));
    }
    EXPECT_THAT(content(), Not(HasSubstr("/old/Quorvel")));
}

TEST_F(XdgLoginItemTest, WhatStartsNothingIsNotRegisteredAndIsReplaced) {
    for (const char* text : {"", "garbage", "[Other]\nExec=x\n",
                             "\x7f"
                             "ELF",
                             "[Desktop Entry]\nType=Application\nName=Quorvel\n"}) {
        store(text);
        EXPECT_EQ(item.status(), LoginItemStatus::notRegistered) << text;
        EXPECT_EQ(item.registerItem(), std::nullopt) << text;
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << text;
        EXPECT_EQ(validation(), "") << text;
    }
}

TEST_F(XdgLoginItemTest, AnyPathArrivesAsOneArgument) {
    for (const char* path :
         {"/opt/my programs/Quorvel", "/opt/$HOME/`id`/Quorvel", "/opt/100%f/Quorvel",
          "/opt/\"a\" 'b'/Quorvel", "/opt/back\\slash\\\\x/Quorvel", "/opt/;&|<>*?#()/Q",
          "/opt/tab\tand\nline/Quorvel", "/opt/ü日/Quorvel", " /leading"}) {
        EXPECT_EQ(itemFor(path).registerItem(), std::nullopt) << path;
        // Read as a desktop reads it.
        const std::unique_ptr<GKeyFile, void (*)(GKeyFile*)> file(g_key_file_new(),
                                                                  g_key_file_free);
        ASSERT_TRUE(
            g_key_file_load_from_file(file.get(), entry().c_str(), G_KEY_FILE_NONE, nullptr));
        gchar* exec = g_key_file_get_string(file.get(), "Desktop Entry", "Exec", nullptr);
        gchar* tryExec = g_key_file_get_string(file.get(), "Desktop Entry", "TryExec", nullptr);
        EXPECT_STREQ(tryExec, path);
        gchar** arguments = nullptr;
        gint count = 0;
        ASSERT_TRUE(g_shell_parse_argv(exec, &count, &arguments, nullptr)) << exec;
        EXPECT_EQ(count, 1);
        std::string argument = arguments[0];
        // Field codes are what the desktop expands after that.
        for (std::size_t at = 0; (at = argument.find("%%", at)) != std::string::npos; ++at) {
            argument.erase(at, 1);
        }
        EXPECT_EQ(argument, path);
        g_strfreev(arguments);
        g_free(exec);
        g_free(tryExec);
    }
}

TEST_F(XdgLoginItemTest, EntryOfAnyPrintablePathIsValid) {
    for (const char* path : {"/opt/my programs/Quorvel", "/opt/$HOME/Quorvel", "/opt/100%f/Quorvel",
                             "/opt/\"a\"/Quorvel", "/opt/ü/Quorvel"}) {
        EXPECT_EQ(itemFor(path).registerItem(), std::nullopt);
        EXPECT_EQ(validation(), "") << path;
    }
}

TEST_F(XdgLoginItemTest, RemovedProgramMakesTheEntryInert) {
    const fs::path program = scratch.write("bin/Quorvel", "#!/bin/sh\n");
    fs::permissions(program, fs::perms::owner_all);
    EXPECT_EQ(itemFor(program.string()).registerItem(), std::nullopt);
    const auto canStart = [&] {
        GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(entry().c_str());
        if (info != nullptr) g_object_unref(info);
        return info != nullptr;
    };
    EXPECT_TRUE(canStart());
    fs::remove(program);
    EXPECT_FALSE(canStart());
}

TEST_F(XdgLoginItemTest, FailuresAreToldInWords) {
    EXPECT_EQ(itemFor("/opt/\xff").registerItem(), "the path of the program is not UTF-8");
    fs::create_directories(entry());
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), "Is a directory");
    EXPECT_EQ(item.unregisterItem(), "Is a directory");
    EXPECT_TRUE(fs::is_directory(entry()));
    scratch.write("blocked", "");
    XdgLoginItem blocked(XdgFolders{(scratch / "blocked").string(), {}}, "/opt/Quorvel");
    EXPECT_EQ(blocked.registerItem(), "Not a directory");
    EXPECT_EQ(blocked.unregisterItem(), std::nullopt);
}

TEST_F(XdgLoginItemTest, LinkToAnEntryElsewhereIsKept) {
    scratch.write("dotfiles/entry", ours);
    fs::create_directories(entry().parent_path());
    fs::create_symlink(scratch / "dotfiles/entry", entry());
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(entry()));
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_FALSE(fs::is_symlink(entry()));
    EXPECT_TRUE(fs::exists(scratch / "dotfiles/entry"));
}

}  // namespace
}  // namespace quorvel::native
