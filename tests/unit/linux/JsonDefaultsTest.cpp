#include "platform/linux/JsonDefaults.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/simulated/SimulatedLog.hpp"
#include "tests/support/x11/ScratchFolder.hpp"
#include "tests/support/x11/Waiting.hpp"

namespace quorvel::native {
namespace {

namespace fs = std::filesystem;

constexpr const char* domain = "com.example.program";

/// Runs as a user whom permissions bind, also when the tests run as root.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const fs::path& folder) {
        if (geteuid() != 0) return;
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(chown(folder.c_str(), nobody, nobody), 0);
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            EXPECT_EQ(lchown(entry.path().c_str(), nobody, nobody), 0);
        }
        EXPECT_EQ(seteuid(nobody), 0);
        isRoot = true;
    }
    ~OrdinaryUser() {
        if (isRoot && seteuid(0) != 0) std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    bool isRoot = false;
};

class JsonDefaultsTest : public testing::Test {
protected:
    fs::path folder() const { return scratch / "config" / domain; }
    fs::path file() const { return folder() / "defaults.json"; }

    void store(std::string_view content) const {
        scratch.write("config/" + std::string(domain) + "/defaults.json", content);
    }

    static std::string contentOf(const fs::path& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }
    std::string content() const { return contentOf(file()); }

    static mode_t modeOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    /// What is in the folder, the lock aside.
    std::vector<std::string> filesIn(const fs::path& path) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(path)) {
            if (entry.path().filename() != ".lock") names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    std::vector<std::string> files() const { return filesIn(folder()); }

    using Names = std::vector<std::string>;

    test::ScratchFolder scratch;
    SimulatedLog log;
    XdgFolders folders{(scratch / "config").string(),
                       {(scratch / "home-data").string(), (scratch / "data1").string(),
                        (scratch / "data2").string()}};
    JsonDefaults defaults{domain, folders, log};
};

TEST_F(JsonDefaultsTest, StoresInTheFolderOfItsDomainForThisUserOnly) {
    EXPECT_EQ(defaults.object("Key"), std::nullopt);
    EXPECT_FALSE(fs::exists(scratch / "config")) << "reading created something";
    EXPECT_TRUE(defaults.setObject("Key", "value"));
    EXPECT_EQ(content(), "{\n  \"Key\": \"value\"\n}\n");
    EXPECT_EQ(modeOf(file()), 0600U);
    EXPECT_EQ(modeOf(folder()), 0700U);
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_EQ(defaults.object("Key"), Value("value"));
    EXPECT_EQ(JsonDefaults(domain, folders, log).object("Key"), Value("value"));
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonDefaultsTest, WriteChangesItsOwnKeyOnly) {
    store(
        R"({"Unknown": {"n": null, "big": 123456789012345678901234567890}, "Key": 1, "E": 1.50})");
    EXPECT_TRUE(defaults.setObject("Key", Value::Array{Value::Dictionary{{"a", "b"}}}));
    EXPECT_EQ(content(),
              "{\n"
              "  \"Unknown\": {\"n\": null, \"big\": 123456789012345678901234567890},\n"
              "  \"Key\": [\n    {\n      \"a\": \"b\"\n    }\n  ],\n"
              "  \"E\": 1.50\n"
              "}\n");
    EXPECT_TRUE(defaults.removeObject("Key"));
    EXPECT_EQ(defaults.object("Key"), std::nullopt);
    EXPECT_EQ(defaults.object("E"), Value(1.5));
    EXPECT_NE(content().find("123456789012345678901234567890"), std::string::npos);
}

TEST_F(JsonDefaultsTest, RemovingAnAbsentKeySucceedsWithoutAWrite) {
    EXPECT_TRUE(defaults.removeObject("Key"));
    EXPECT_FALSE(fs::exists(folder()));
    store("{\"a\":1}");
    EXPECT_TRUE(defaults.removeObject("Key"));
    EXPECT_EQ(content(), "{\"a\":1}");
}

TEST_F(JsonDefaultsTest, RemovingANullRemovesIt) {
    store("{\"a\": null}");
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_TRUE(defaults.removeObject("a"));
    EXPECT_EQ(content(), "{}\n");
}

TEST_F(JsonDefaultsTest, ChangeByAnotherProgramIsSeenByTheNextRead) {
    store("{\"a\":1}");
    EXPECT_EQ(defaults.object("a"), Value(1));
    JsonDefaults other(domain, folders, log);
    EXPECT_TRUE(other.setObject("a", 2));
    EXPECT_TRUE(other.setObject("b", 3));
    EXPECT_EQ(defaults.object("a"), Value(2));
    EXPECT_TRUE(defaults.setObject("c", 4));
    EXPECT_EQ(other.persistentDomain(domain), (Value::Dictionary{{"a", 2}, {"b", 3}, {"c", 4}}));
    fs::remove(file());
    EXPECT_EQ(defaults.object("a"), std::nullopt);
}

TEST_F(JsonDefaultsTest, RewriteThatLeavesNoTraceInTheStampIsSeen) {
    store("{\"a\":1}");
    const int descriptor = open(file().c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    void* memory = mmap(nullptr, 7, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    ASSERT_NE(memory, MAP_FAILED);
    char* digit = static_cast<char*>(memory) + 5;
    // The first store to a page is stamped, those after it are not: so it is also for two rewrites
    // within one tick of a coarse clock.
    *digit = '2';
    EXPECT_EQ(defaults.object("a"), Value(2));
    const auto before = stampOf(file());
    *digit = '3';
    EXPECT_EQ(stampOf(file()), before);
    EXPECT_EQ(defaults.object("a"), Value(3));
    munmap(memory, 7);
    close(descriptor);
}

TEST_F(JsonDefaultsTest, ChangeToAFileThatLongStoodStillIsSeen) {
    store("{\"a\":1}");
    EXPECT_FALSE(readFile(file(), 100).isSettled);
    ASSERT_TRUE(test::waitUntil([&] { return readFile(file(), 100).isSettled; }));
    EXPECT_EQ(defaults.object("a"), Value(1));
    EXPECT_EQ(defaults.object("a"), Value(1));
    store("{\"a\":2}");
    EXPECT_EQ(defaults.object("a"), Value(2));
}

TEST_F(JsonDefaultsTest, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int processes = 4;
    constexpr int keys = 25;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool stored = true;
            JsonDefaults mine(domain, folders, log);
            for (int key = 0; key < keys; ++key) {
                // On a busy machine one of them may wait too long for its turn, and is told so.
                const std::string name = std::to_string(process * keys + key);
                stored = test::waitUntil([&] { return mine.setObject(name, key); }) && stored;
            }
            _exit(stored ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(defaults.persistentDomain(domain).size(), std::size_t{processes * keys});
    EXPECT_EQ(files(), Names{"defaults.json"});
}

TEST_F(JsonDefaultsTest, UnreadableFileIsSetAsideOnceAndNothingIsLost) {
    const std::string garbage = "{\"AppBindings\": [";
    store(garbage);
    EXPECT_EQ(defaults.object("AppBindings"), std::nullopt);
    EXPECT_EQ(defaults.object("AppBindings"), std::nullopt);
    EXPECT_EQ(files(), Names{"defaults.json.unreadable-1"});
    EXPECT_EQ(contentOf(folder() / "defaults.json.unreadable-1"), garbage);
    EXPECT_EQ(log.taken(), Names{"Quorvel: " + file().string() +
                                 " cannot be read — not valid JSON; it is kept as " +
                                 file().string() + ".unreadable-1"});
    EXPECT_TRUE(defaults.setObject("a", 1));
    EXPECT_EQ(content(), "{\n  \"a\": 1\n}\n");
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonDefaultsTest, UnreadableFileMetByAWriteIsSetAsideBeforeIt) {
    store("[1, 2]");
    EXPECT_TRUE(defaults.setObject("a", 1));
    EXPECT_EQ(contentOf(folder() / "defaults.json.unreadable-1"), "[1, 2]");
    EXPECT_EQ(content(), "{\n  \"a\": 1\n}\n");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(JsonDefaultsTest, FileThatWasSetAsideIsNeverOverwritten) {
    for (int i = 1; i <= 3; ++i) {
        store("garbage " + std::to_string(i));
        EXPECT_TRUE(defaults.persistentDomain(domain).empty());
    }
    EXPECT_EQ(files(), (Names{"defaults.json.unreadable-1", "defaults.json.unreadable-2",
                              "defaults.json.unreadable-3"}));
    EXPECT_EQ(contentOf(folder() / "defaults.json.unreadable-1"), "garbage 1");
    EXPECT_EQ(contentOf(folder() / "defaults.json.unreadable-3"), "garbage 3");
    EXPECT_EQ(log.lines.size(), 3U);
}

TEST_F(JsonDefaultsTest, EveryKindOfUnreadableContentIsSetAside) {
    using namespace std::string_literals;
    const std::vector<std::string> contents{
        "null",      "{\"a\": \"\xff\"}",      "{}\0"s,
        "\0\0\0\0"s, std::string(10'000, '['), std::string(JsonDocument::largest + 1, ' ')};
    for (const std::string& content : contents) {
        store(content);
        EXPECT_TRUE(defaults.removeObject("a"));
        EXPECT_FALSE(fs::exists(file())) << content.substr(0, 20);
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
        EXPECT_EQ(contentOf(file().string() + ".unreadable-" + std::to_string(i + 1)), contents[i]);
    }
    EXPECT_EQ(log.lines.size(), contents.size());
}

TEST_F(JsonDefaultsTest, BlankFileIsAnEmptyDomainAndStays) {
    store("");
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonDefaultsTest, FileWithoutPermissionStaysAndIsNotWritten) {
    store("{\"a\":1}");
    const OrdinaryUser user(scratch.path());
    ASSERT_EQ(chmod(file().c_str(), 0), 0);
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(log.taken(),
              Names{"Quorvel: " + file().string() + " cannot be read — Permission denied"});
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_EQ(log.taken(),
              Names{"Quorvel: could not store a in " + file().string() + " — Permission denied"});
    EXPECT_FALSE(defaults.removeObject("a"));
    ASSERT_EQ(chmod(file().c_str(), 0600), 0);
    EXPECT_EQ(content(), "{\"a\":1}");
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_EQ(defaults.object("a"), Value(1));
}

TEST_F(JsonDefaultsTest, FileThatGivesInputErrorsStaysAndIsNotWritten) {
    fs::create_directories(folder());
    fs::create_symlink("/proc/self/mem", file());  // a regular file whose first byte cannot be read
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_EQ(
        log.lines,
        (Names{"Quorvel: " + file().string() + " cannot be read — Input/output error",
               "Quorvel: could not store a in " + file().string() + " — Input/output error"}));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_EQ(files(), Names{"defaults.json"});
}

TEST_F(JsonDefaultsTest, DirectoryInPlaceOfTheFileStays) {
    fs::create_directories(file());
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_FALSE(defaults.setObject("a", 1));
    EXPECT_TRUE(fs::is_directory(file()));
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_EQ(log.lines,
              (Names{"Quorvel: " + file().string() + " cannot be read — Is a directory",
                     "Quorvel: could not store a in " + file().string() + " — Is a directory"}));
}

TEST_F(JsonDefaultsTest, PipeInPlaceOfTheFileDoesNotHoldTheProgramUp) {
    fs::create_directories(folder());
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_FALSE(defaults.setObject("a", 1));
    EXPECT_TRUE(fs::is_fifo(file()));
}

TEST_F(JsonDefaultsTest, FileInPlaceOfTheFolderStays) {
    scratch.write("config/" + std::string(domain), "not a folder");
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_FALSE(defaults.setObject("a", 1));
    EXPECT_EQ(contentOf(folder()), "not a folder");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(JsonDefaultsTest, ReadOnlyHomeIsReadAndRefusesToStore) {
    store("{\"a\":1}");
    const OrdinaryUser user(scratch.path());
    ASSERT_EQ(chmod(folder().c_str(), 0500), 0);
    EXPECT_EQ(defaults.object("a"), Value(1));
    EXPECT_TRUE(defaults.removeObject("absent"));
    EXPECT_TRUE(log.lines.empty());
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_FALSE(defaults.removeObject("a"));
    EXPECT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(defaults.object("a"), Value(1));
    ASSERT_EQ(chmod(folder().c_str(), 0700), 0);
    EXPECT_EQ(content(), "{\"a\":1}");
}

TEST_F(JsonDefaultsTest, UnreadableFileInAReadOnlyHomeStaysWithOneLine) {
    store("garbage");
    const OrdinaryUser user(scratch.path());
    ASSERT_EQ(chmod(folder().c_str(), 0500), 0);
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_EQ(defaults.object("b"), std::nullopt);
    EXPECT_EQ(log.taken(), Names{"Quorvel: " + file().string() +
                                 " cannot be read — not valid JSON; it could not be set aside — "
                                 "Permission denied"});
    EXPECT_FALSE(defaults.setObject("a", 1));
    ASSERT_EQ(chmod(folder().c_str(), 0700), 0);
    EXPECT_EQ(content(), "garbage");
}

TEST_F(JsonDefaultsTest, FullDiskLeavesEverythingAsItWas) {
    store("{\"a\":1}");
    // Stands for a full disk: the file may not grow beyond this.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool stored = defaults.setObject("big", std::string(2000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_FALSE(stored);
    EXPECT_EQ(log.lines,
              Names{"Quorvel: could not store big in " + file().string() + " — File too large"});
    EXPECT_EQ(content(), "{\"a\":1}");
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_EQ(defaults.object("big"), std::nullopt);
}

TEST_F(JsonDefaultsTest, WhatAnotherDomainCouldHoldFindsRoom) {
    std::string records = "{\"AppBindings\":[";
    while (records.size() < 7'100'000) records += R"({"appPath":"/opt/a","corner":"topLeft"},)";
    records += "{}]}";
    scratch.write("config/com.example.earlier/defaults.json", records);
    const Value::Dictionary earlier = defaults.persistentDomain("com.example.earlier");
    EXPECT_TRUE(defaults.apply({{"AppBindings", earlier.at("AppBindings")}, {"Done", true}}));
    EXPECT_TRUE(defaults.setObject("More", 1));
    EXPECT_TRUE(log.lines.empty());
    EXPECT_TRUE(defaults.object("AppBindings") == earlier.at("AppBindings"));
    EXPECT_EQ(defaults.object("More"), Value(1));
}

TEST_F(JsonDefaultsTest, WhatIsTooLargeIsRefusedAndCanBeTold) {
    EXPECT_TRUE(defaults.setObject("a", std::string(JsonDocument::largest / 2, 'x')));
    const std::vector<DefaultsChange> changes{
        {"b", Value(std::string(JsonDocument::largest / 2, 'x'))}};
    EXPECT_TRUE(defaults.areTooLarge(changes));
    EXPECT_FALSE(defaults.apply(changes));
    EXPECT_EQ(log.taken(),
              Names{"Quorvel: could not store b in " + file().string() + " — too large"});
    EXPECT_EQ(defaults.object("b"), std::nullopt);

    EXPECT_FALSE(defaults.areTooLarge({{"b", Value("small")}}));
    EXPECT_FALSE(defaults.areTooLarge({{"a", std::nullopt}, changes.front()}));
    EXPECT_FALSE(defaults.areTooLarge({{"b", Value("\xff")}})) << "that is another reason";
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonDefaultsTest, SeveralChangesAreOneReplacement) {
    store(R"({"a": 1, "b": 2, "Unknown": 1.50})");
    const int before = open(file().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(before, 0);
    EXPECT_TRUE(defaults.apply(
        {{"a", std::nullopt}, {"c", Value("x")}, {"b", Value(3)}, {"absent", std::nullopt}}));
    EXPECT_EQ(content(), "{\n  \"b\": 3,\n  \"Unknown\": 1.50,\n  \"c\": \"x\"\n}\n");
    // What somebody else holds open is the state before, not one in between.
    std::string old(100, '\0');
    old.resize(
        static_cast<std::size_t>(std::max<ssize_t>(read(before, old.data(), old.size()), 0)));
    EXPECT_EQ(old, R"({"a": 1, "b": 2, "Unknown": 1.50})");
    close(before);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(JsonDefaultsTest, OneChangeThatCannotBeStoredKeepsAllOut) {
    store("{\"a\":1}");
    EXPECT_FALSE(defaults.apply({{"a", std::nullopt}, {"b", Value(2)}, {"c", Value("\xff")}}));
    EXPECT_EQ(log.taken(), Names{"Quorvel: could not store a, b, c in " + file().string() +
                                 " — a text that is not UTF-8 cannot be stored"});
    EXPECT_EQ(content(), "{\"a\":1}");
}

TEST_F(JsonDefaultsTest, ChangesThatChangeNothingWriteNothing) {
    EXPECT_TRUE(defaults.apply({}));
    EXPECT_TRUE(defaults.apply({{"a", std::nullopt}, {"b", std::nullopt}}));
    EXPECT_FALSE(fs::exists(folder()));
}

TEST_F(JsonDefaultsTest, AProcessThatIsKilledLeavesAllChangesOrNone) {
    constexpr int keys = 200;
    store("{\"0\": -1}");
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            JsonDefaults mine(domain, folders, log);
            for (int value = 0;; ++value) {
                std::vector<DefaultsChange> changes;
                for (int key = 0; key < keys; ++key) {
                    changes.push_back({std::to_string(key), Value(value)});
                }
                mine.apply(changes);
            }
        }
        // Somewhere in the middle of one write or another.
        const std::string before = content();
        ASSERT_TRUE(test::waitUntil([&] { return content() != before; }));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        const Value::Dictionary values = defaults.persistentDomain(domain);
        ASSERT_EQ(values.size(), std::size_t{keys});
        for (const auto& [key, value] : values) ASSERT_EQ(value, values.at("0")) << key;
    }
}

TEST_F(JsonDefaultsTest, RestOfACrashedWriteIsNoObstacle) {
    store("{\"a\":1}");
    scratch.write("config/" + std::string(domain) + "/.defaults.json.partial", "{\"a\":");
    EXPECT_TRUE(defaults.setObject("b", 2));
    EXPECT_EQ(files(), Names{"defaults.json"});
    EXPECT_EQ(defaults.object("a"), Value(1));
}

TEST_F(JsonDefaultsTest, LinkIsKeptAndItsTargetReplaced) {
    scratch.write("dotfiles/quorvel.json", "{\"a\":1}");
    fs::create_directories(folder());
    fs::create_symlink("../../dotfiles/link", file());
    fs::create_symlink("quorvel.json", scratch / "dotfiles/link");
    EXPECT_EQ(defaults.object("a"), Value(1));
    EXPECT_TRUE(defaults.setObject("a", 2));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_TRUE(fs::is_symlink(scratch / "dotfiles/link"));
    EXPECT_EQ(contentOf(scratch / "dotfiles/quorvel.json"), "{\n  \"a\": 2\n}\n");
    EXPECT_EQ(filesIn(scratch / "dotfiles"), (Names{"link", "quorvel.json"}));
}

TEST_F(JsonDefaultsTest, DanglingLinkGetsItsTarget) {
    fs::create_directories(folder());
    fs::create_directories(scratch / "dotfiles");
    fs::create_symlink(scratch / "dotfiles/quorvel.json", file());
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_TRUE(defaults.setObject("a", 2));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_EQ(contentOf(scratch / "dotfiles/quorvel.json"), "{\n  \"a\": 2\n}\n");
}

TEST_F(JsonDefaultsTest, LinkIntoAFolderThatIsGoneStays) {
    fs::create_directories(folder());
    fs::create_symlink("/nonexistent/quorvel.json", file());
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_EQ(fs::read_symlink(file()), "/nonexistent/quorvel.json");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(JsonDefaultsTest, LinkThatLeadsToItselfIsNotWritten) {
    fs::create_directories(folder());
    fs::create_symlink("defaults.json", file());
    EXPECT_EQ(defaults.object("a"), std::nullopt);
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_TRUE(fs::is_symlink(file()));
}

TEST_F(JsonDefaultsTest, UnreadableTargetOfALinkIsSetAsideBesideIt) {
    scratch.write("dotfiles/quorvel.json", "garbage");
    fs::create_directories(folder());
    fs::create_symlink(scratch / "dotfiles/quorvel.json", file());
    EXPECT_TRUE(defaults.setObject("a", 2));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_EQ(contentOf(scratch / "dotfiles/quorvel.json.unreadable-1"), "garbage");
    EXPECT_EQ(defaults.object("a"), Value(2));
}

TEST_F(JsonDefaultsTest, LockHeldByAStuckProcessFailsTheWriteInTime) {
    store("{\"a\":1}");
    const int stuck = open((folder() / ".lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(stuck, LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(defaults.setObject("a", 2));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(content(), "{\"a\":1}");
    close(stuck);
    EXPECT_TRUE(defaults.setObject("a", 2));
}

TEST_F(JsonDefaultsTest, WhatJsonCannotExpressIsNotStored) {
    store("{\"a\":1}");
    EXPECT_FALSE(defaults.setObject("a", "\xff"));
    EXPECT_EQ(log.lines, Names{"Quorvel: could not store a in " + file().string() +
                               " — a text that is not UTF-8 cannot be stored"});
    EXPECT_EQ(content(), "{\"a\":1}");
    EXPECT_FALSE(defaults.setObject("a", std::string(JsonDocument::largest, 'x')));
    EXPECT_EQ(content(), "{\"a\":1}");
}

TEST_F(JsonDefaultsTest, OtherDomainsAreReadAndNeverTouched) {
    scratch.write("config/com.example.older/defaults.json", R"({"HotKey": "cmd,K", "N": null})");
    scratch.write("config/com.example.broken/defaults.json", "garbage");
    EXPECT_EQ(defaults.persistentDomain("com.example.older"),
              (Value::Dictionary{{"HotKey", "cmd,K"}}));
    EXPECT_TRUE(defaults.persistentDomain("com.example.absent").empty());
    EXPECT_TRUE(log.lines.empty());
    EXPECT_TRUE(defaults.persistentDomain("com.example.broken").empty());
    EXPECT_EQ(filesIn(scratch / "config/com.example.broken"), Names{"defaults.json"});
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(JsonDefaultsTest, NamesThatCouldLeaveTheFolderAreNoDomains) {
    scratch.write("defaults.json", R"({"secret": 1})");
    scratch.write("config/defaults.json", R"({"secret": 1})");
    scratch.write("config/.hidden/defaults.json", R"({"secret": 1})");
    for (const char* name : {"..", ".", "", "/", ".hidden", "a/..", "a..b", "com.example/x", "ä",
                             "a b", "a\nb", "~", "a\\b"}) {
        EXPECT_FALSE(JsonDefaults::isDomainName(name)) << name;
        EXPECT_TRUE(defaults.persistentDomain(name).empty()) << name;
    }
    EXPECT_FALSE(JsonDefaults::isDomainName(std::string_view("a\0b", 3)));
    EXPECT_FALSE(JsonDefaults::isDomainName(std::string(201, 'a')));
    EXPECT_TRUE(JsonDefaults::isDomainName(std::string(200, 'a')));
    EXPECT_TRUE(JsonDefaults::isDomainName("com.Example_1.my-program"));

    JsonDefaults outside("../config", folders, log);
    EXPECT_EQ(outside.object("secret"), std::nullopt);
    EXPECT_FALSE(outside.setObject("secret", 2));
    EXPECT_EQ(contentOf(scratch / "config/defaults.json"), R"({"secret": 1})");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(JsonDefaultsTest, PresetComesFromTheFirstFolderThatHasTheKey) {
    EXPECT_EQ(defaults.preset("a"), std::nullopt);
    scratch.write("data1/quorvel/presets.json", R"({"a": 1, "c": null})");
    scratch.write("data2/quorvel/presets.json", R"({"a": 2, "b": "two", "c": 3})");
    EXPECT_EQ(defaults.preset("a"), Value(1));
    EXPECT_EQ(defaults.preset("b"), Value("two"));
    EXPECT_EQ(defaults.preset("c"), Value(3));
    EXPECT_EQ(defaults.preset("d"), std::nullopt);
    scratch.write("home-data/quorvel/presets.json", R"({"a": 0})");
    EXPECT_EQ(defaults.preset("a"), Value(0));
    EXPECT_EQ(defaults.object("a"), std::nullopt);
}

TEST_F(JsonDefaultsTest, BrokenPresetsAreSkippedWithOneLineAndNotTouched) {
    scratch.write("data1/quorvel/presets.json", "garbage");
    scratch.write("data2/quorvel/presets.json", R"({"a": 2})");
    EXPECT_EQ(defaults.preset("a"), Value(2));
    EXPECT_EQ(defaults.preset("a"), Value(2));
    EXPECT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(filesIn(scratch / "data1/quorvel"), Names{"presets.json"});
}

}  // namespace
}  // namespace quorvel::native
