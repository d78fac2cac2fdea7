#include "platform/linux/XdgLoginItem.hpp"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

#include "tests/support/x11/ChildProcess.hpp"
#include "tests/support/x11/ScratchFolder.hpp"

namespace quorvel::native {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class XdgLoginItemTest : public testing::Test {
protected:
    fs::path entry() const { return scratch / "config/autostart/com.tessivane.quorvel.desktop"; }

    void store(const std::string& content) const {
        scratch.write("config/autostart/com.tessivane.quorvel.desktop", content);
    }

    static std::string contentOf(const fs::path& file) {
        std::ostringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }
    std::string content() const { return contentOf(entry()); }

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

    std::string makeProgram(const std::string& path) const {
        const fs::path file = scratch.write(path, "#!/bin/sh\n");
        fs::permissions(file, fs::perms::owner_all);
        return file.string();
    }

    std::vector<std::string> filesBeside() const {
        std::vector<std::string> names;
        for (const auto& each : fs::directory_iterator(entry().parent_path())) {
            if (each.path() != entry()) names.push_back(each.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string keptFile(int number) const {
        return contentOf(entry().string() + ".unreadable-" + std::to_string(number));
    }

    static std::string entryOf(const std::string& lines) {
        return "[Desktop Entry]\nType=Application\nName=Quorvel\n" + lines;
    }

    test::ScratchFolder scratch;
    const std::string program = makeProgram("opt/quorvel/Quorvel");
    const std::string ours = entryOf("Exec=\"" + program + "\"\n");
    XdgLoginItem item = itemFor(program);
};

TEST_F(XdgLoginItemTest, RegistersAndUnregisters) {
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_THAT(content(), HasSubstr("\nExec=\"" + program + "\"\n"));
    EXPECT_THAT(content(), HasSubstr("\nTryExec=" + program + "\n"));
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
    EXPECT_EQ(item.programPath(), program);
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
        store(ours + line);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << line;
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval)
            << "registering removed " << line;
        EXPECT_THAT(content(), HasSubstr("Exec=\"" + program + "\""));
        EXPECT_EQ(validation(), "");
    }
    for (const char* line : {"Hidden=false\n", "X-GNOME-Autostart-enabled=true\n", ""}) {
        store(ours + line);
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << line;
    }
}

TEST_F(XdgLoginItemTest, RegisteringKeepsWhatOthersWrote) {
    store("# by hand\n" + entryOf("Exec=/old/Quorvel\n") +
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

// What counts as starting this program
// ------------------------------------------------------------------

TEST_F(XdgLoginItemTest, AnEntryThatStartsNothingIsNotRegisteredAndIsMadeToStartThisProgram) {
    const std::string notExecutable = scratch.write("old/Quorvel", "").string();
    const std::string other = makeProgram("opt/other");
    for (const std::string& lines : {
             std::string("Exec=/old/Quorvel\nTryExec=/old/Quorvel\n"),
             std::string("Exec=\"/old/Quorvel\"\n"),
             std::string("Exec=NoSuchQuorvel\n"),
             "Exec=" + notExecutable + "\n",
             "Exec=" + other + "\n",
             "Exec=" + program + "\nTryExec=/old/Quorvel\n",
             "Exec=" + program + "\nTryExec=NoSuchQuorvel\n",
             "Exec=" + program + "2\n",
             "Exec=" + program + ".old\n",
             "Exec=" + program + "/bin\n",
             "Exec=/mnt" + program + "\n",
             std::string("Exec=\n"),
         }) {
        store(entryOf(lines));
        EXPECT_EQ(item.status(), LoginItemStatus::notRegistered) << lines;
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << lines;
        EXPECT_THAT(content(), HasSubstr("\nExec=\"" + program + "\"\n"));
        EXPECT_THAT(content(), HasSubstr("\nTryExec=" + program + "\n"));
        EXPECT_THAT(filesBeside(), IsEmpty()) << lines;
    }
}

TEST_F(XdgLoginItemTest, AProgramThatHasMovedIsRegisteredAnew) {
    EXPECT_EQ(item.registerItem(), std::nullopt);
    fs::rename(program, scratch / "Quorvel");
    XdgLoginItem moved = itemFor((scratch / "Quorvel").string());
    EXPECT_EQ(moved.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(moved.registerItem(), std::nullopt);
    EXPECT_EQ(moved.status(), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, WhatTheUserWrappedAroundTheProgramCounts) {
    for (const std::string& lines : {
             "Exec=" + program + "\n",
             "Exec=\"" + program + "\" --quiet\nTryExec=" + program + "\n",
             "Exec=sh -c \"sleep 5; exec " + program + "\"\nTryExec=sh\n",
             "Exec=sh -c \"exec \\\\\"" + program + "\\\\\"\"\n",
             "Exec=env A=b " + program + "\n",
         }) {
        store(entryOf(lines));
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << lines;
        store(entryOf(lines + "Hidden=true\n"));
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << lines;
    }
}

TEST_F(XdgLoginItemTest, AnotherCopyOfTheProgramCounts) {
    store(entryOf("Exec=env A=b \"" + makeProgram("my 100% copy/Quorvel") + "\"\n"));
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    std::string escaped = makeProgram("100%%f/Quorvel");
    escaped.replace(escaped.find("%%"), 2, "%%%%");
    store(entryOf("Exec=\"" + escaped + "\"\n"));
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);

    store(entryOf("Exec=sh\nTryExec=sh\n"));
    EXPECT_EQ(itemFor("/nowhere/sh").status(), LoginItemStatus::enabled) << "it is in PATH";
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, AnyPathOfItsOwnCounts) {
    for (const char* path : {"my programs/Quorvel", "$HOME/`id`/Quorvel", "100%f/Quorvel",
                             "100%%f/Quorvel", "\"a\" 'b'/Quorvel", "back\\slash\\\\x/Quorvel",
                             ";&|<>*?#()/Q", "tab\tand\nline/Quorvel", "ü日/Quorvel", " leading"}) {
        XdgLoginItem own = itemFor(makeProgram(path));
        EXPECT_EQ(own.registerItem(), std::nullopt) << path;
        EXPECT_EQ(own.status(), LoginItemStatus::enabled) << path;
    }
}

// Files that are no entry
// -------------------------------------------------------------------------------

TEST_F(XdgLoginItemTest, ADamagedEntryThatIsSwitchedOffStaysOffAndIsKept) {
    int number = 0;
    for (const std::string& text : {
             ours + "<<<<<<< mine\nHidden=true\n",
             ours + "Hidden = true \r\n=======\n",
             "<<<<<<< mine\n" + ours + "X-GNOME-Autostart-enabled=false\n",
             "[Desktop Entry\nHidden=true\n" + ours.substr(ours.find('\n') + 1),
         }) {
        store(text);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << text;
        EXPECT_EQ(content(), text);
        EXPECT_EQ(item.registerItem(), std::nullopt);
        EXPECT_EQ(keptFile(++number), text);
        EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval) << content();
        EXPECT_THAT(content(), HasSubstr("Exec=\"" + program + "\""));
        EXPECT_EQ(validation(), "");
    }
    EXPECT_EQ(filesBeside().size(), 4U);
}

TEST_F(XdgLoginItemTest, ADamagedEntryThatIsSwitchedOnIsReplacedAndKept) {
    const std::string text = ours +
                             "Hidden=false\nX-GNOME-Autostart-enabled=true\n#Hidden=true\n"
                             "NotHidden=true\n<<<<<<< mine\n[Desktop Action x]\nHidden=true\n";
    store(text);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_EQ(keptFile(1), text);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_THAT(filesBeside(), ElementsAre("com.tessivane.quorvel.desktop.unreadable-1"));
}

TEST_F(XdgLoginItemTest, WhatIsTooLargeForAnEntryIsKept) {
    const std::string text((std::size_t{1} << 20) + 1, '#');
    store(text);
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_EQ(keptFile(1).size(), text.size());
}

TEST_F(XdgLoginItemTest, AFullDiskLeavesADamagedEntryWhereItIs) {
    const std::string text = ours + "<<<<<<< mine\nHidden=true\n";
    store(text);
    // Stands for a full disk: the file may not grow beyond this.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{10, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto error = item.registerItem();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(error, "File too large");
    EXPECT_EQ(content(), text);
    EXPECT_THAT(filesBeside(), IsEmpty());
    EXPECT_EQ(item.status(), LoginItemStatus::requiresApproval);
}

// What is written
// -------------------------------------------------------------------------------

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
