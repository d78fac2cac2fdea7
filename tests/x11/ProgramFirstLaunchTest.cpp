// The first launch of the built program over what earlier programs and versions have left on disk.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>

#include "platform/Text.hpp"
#include "platform/linux/JsonDocument.hpp"
#include "tests/x11/ProgramOnX.hpp"

namespace quorvel {

void PrintTo(const std::optional<Value>& value, std::ostream* stream) {
    if (!value) {
        *stream << "nothing";
        return;
    }
    native::JsonDocument document;
    std::string error;
    document.set("value", *value, error);
    *stream << document.text() << error;
}

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;
using Array = Value::Array;
using Dictionary = Value::Dictionary;

constexpr const char* ownDomain = "com.tessivane.quorvel";
constexpr const char* firstDomain = "com.tessivane.pellomarch";
constexpr const char* secondDomain = "com.tessivane.vintrosk";

class ProgramFirstLaunchTest : public testing::Test {
protected:
    explicit ProgramFirstLaunchTest(const XSessionOptions& options = {}) : program(options) {}

    ProgramOnX program;
    const fs::path config = program.session.folder() / "config";
    const fs::path autostart = config / "autostart/com.tessivane.quorvel.desktop";

    fs::path fileOf(const std::string& domain) const { return config / domain / "defaults.json"; }

    /// Lays a file of the fixtures down as the preferences of a domain.
    void place(const std::string& domain, const std::string& fixture) {
        fs::create_directories(config / domain);
        const fs::path file = fileOf(domain);
        fs::copy_file(fs::path(QUORVEL_FIXTURES) / (fixture + ".json"), file);
        if (domain != ownDomain) earlier[file] = ProgramOnX::contentOf(file);
    }

    /// One launch from its start to its end.
    void launch(const ProgramOnX::Launch& options = {}) {
        program.start(options);
        EXPECT_EQ(program.terminate(), 0);
        for (const auto& [file, content] : earlier) {
            EXPECT_EQ(ProgramOnX::contentOf(file), content) << file << " is no longer what it was";
            EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1)
                << "something was put beside " << file;
        }
    }

    Dictionary stored() const {
        std::string error;
        const auto document = native::JsonDocument::parse(program.settingsText(), error);
        EXPECT_TRUE(document) << error;
        return document ? document->values() : Dictionary{};
    }
    std::optional<Value> stored(const std::string& key) const {
        const Dictionary values = stored();
        return values.contains(key) ? std::optional(values.at(key)) : std::nullopt;
    }

    /// Identifier and name of the display that is plugged in, as the program remembers it.
    std::pair<std::string, std::string> display() const {
        const auto known = stored("KnownDisplays");
        for (const auto& [identifier, name] : *known.value().dictionary()) {
            if (identifier != "GONE") return {identifier, *name.text()};
        }
        ADD_FAILURE() << "no display is remembered";
        return {};
    }

    static Value binding(const std::string& path, const std::string& hotKey,
                         const std::string& autoTuck) {
        return Dictionary{{"appPath", path}, {"hotKey", hotKey}, {"autoTuck", autoTuck}};
    }
    static Value placement(const std::string& path, const std::string& display,
                           const std::string& corner, const std::string& edge) {
        return Dictionary{
            {"appPath", path}, {"display", display}, {"corner", corner}, {"tuckEdge", edge}};
    }

    static std::string migrated(int count, const std::string& domain) {
        return formatted("Quorvel: migrated %d setting(s) from %@", count, domain);
    }
    std::string flattened(int apps, int placements) const {
        return formatted(
            "Quorvel: flattened settings — %d app(s), %d placement(s), 5 retired "
            "key(s) removed; materialised onto %@",
            apps, placements, display().second);
    }
    static constexpr const char* registered = "Quorvel: registered to open at login";

    void expectUpgraded() const {
        for (const char* marker :
             {"DidMigrateLegacySettings", "DidFlattenPlacements", "DidOfferLoginItem"}) {
            EXPECT_EQ(stored(marker), Value(true)) << marker;
        }
        for (const char* key : {"TargetAppPath", "HotKey", "HotZone", "TuckEdge", "TuckAuto"}) {
            EXPECT_EQ(stored(key), std::nullopt) << key;
        }
    }

    std::map<fs::path, std::string> earlier;
};

TEST_F(ProgramFirstLaunchTest, WithNothingStoredItIsSetUpOnceAndLeftAloneAfterwards) {
    launch();
    EXPECT_THAT(
        program.logLines(),
        ElementsAre(flattened(0, 0), registered, "Quorvel: no hot corners placed.",
                    "Quorvel: edge reveal watcher armed", "Quorvel: ready — 0 app(s) bound",
                    "Quorvel: accessibility granted", "Quorvel: no apps bound; opening Settings",
                    "Quorvel: settings window shown (680x620, 5 sections)"));
    expectUpgraded();
    EXPECT_EQ(stored("AppBindings"), Value(Array{}));

    const std::string before = program.settingsText();
    const auto written = fs::last_write_time(program.settingsFile);
    fs::remove(program.logFile);
    launch();
    EXPECT_EQ(program.logLines().front(), "Quorvel: no hot corners placed.");
    EXPECT_EQ(program.settingsText(), before);
    EXPECT_EQ(fs::last_write_time(program.settingsFile), written);
}

TEST_F(ProgramFirstLaunchTest, OfTwoEarlierProgramsTheFirstIsTakenOver) {
    place(firstDomain, "earlier-first");
    place(secondDomain, "earlier-second");
    launch();
    const std::string id = display().first;
    const auto lines = program.logLines();
    EXPECT_EQ(lines[0], migrated(3, firstDomain));
    EXPECT_EQ(lines[1], flattened(1, 1));
    EXPECT_EQ(lines[2], registered);
    EXPECT_THAT(lines, Contains("Quorvel: ready — 1 app(s) bound"));
    EXPECT_EQ(stored("AppBindings"),
              Value(Array{binding("/opt/alpha.desktop", "control,option,A", "true")}));
    EXPECT_EQ(stored("Placements"),
              Value(Array{placement("/opt/alpha.desktop", id, "topLeft", "left")}));
    EXPECT_EQ(stored("HotZoneDwellMs"), Value("450"));
    EXPECT_EQ(stored("TuckAnimation"), Value("spring"));
    EXPECT_EQ(stored("NSWindow Frame Settings"), std::nullopt);
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, TheSecondEarlierProgramAloneIsTakenOver) {
    place(secondDomain, "earlier-second");
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(6, secondDomain));
    EXPECT_EQ(program.logLines()[1], flattened(1, 1));
    EXPECT_EQ(stored("AppBindings"),
              Value(Array{binding("/opt/beta.desktop", "control,option,B", "false")}));
    EXPECT_EQ(stored("Placements"),
              Value(Array{placement("/opt/beta.desktop", display().first, "bottomRight", "none")}));
    EXPECT_EQ(stored("HotZoneDwellMs"), Value(900));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AFirstEarlierProgramWithForeignKeysGivesWayToTheSecond) {
    place(firstDomain, "foreign-keys");
    place(secondDomain, "earlier-second");
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(6, secondDomain));
    EXPECT_EQ(stored("Window"), std::nullopt);
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, TheVersionOfASingleApplicationIsUpgraded) {
    place(ownDomain, "single-application");
    launch();
    const std::string path = (program.home / "Applications/Y.app").string();
    EXPECT_EQ(program.logLines()[0], flattened(1, 1));
    EXPECT_EQ(stored("AppBindings"), Value(Array{binding(path, "control,option,Y", "true")}));
    EXPECT_EQ(stored("Placements"),
              Value(Array{placement(path, display().first, "topRight", "none")}));
    EXPECT_THAT(program.settingsText(), HasSubstr(R"({ "kept": [1, 2.50, null] })"));
    EXPECT_THAT(program.logLines(),
                Contains("Quorvel: global hotkey registered (control,option,Y) for " + path));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, TheSingleApplicationFillsInWhatItsBindingLeavesOpen) {
    place(ownDomain, "retired-and-bindings");
    launch();
    const std::string id = display().first;
    EXPECT_EQ(program.logLines()[0], flattened(2, 2));
    EXPECT_EQ(stored("AppBindings"),
              Value(Array{binding("/opt/beta.desktop", "none", "false"),
                          binding("/opt/alpha.desktop", "control,option,A", "true")}));
    EXPECT_EQ(stored("Placements"),
              Value(Array{placement("/opt/beta.desktop", id, "topLeft", "none"),
                          placement("/opt/alpha.desktop", id, "bottomRight", "left")}));
    expectUpgraded();
}

/// With a second display beside the first.
class ProgramFirstLaunchOnTwoDisplaysTest : public ProgramFirstLaunchTest {
protected:
    ProgramFirstLaunchOnTwoDisplaysTest()
        : ProgramFirstLaunchTest({.server = XServerKind::hotPlug}) {
        program.session.server().plug("DUMMY1", 1280, 0);
    }
};

TEST_F(ProgramFirstLaunchOnTwoDisplaysTest, CornersOfAllDisplaysArePlacedOnEach) {
    place(ownDomain, "old-bindings");
    launch();
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: flattened settings — 2 app(s), 5 placement(s), 5 retired key(s) removed; "
              "materialised onto DUMMY0, DUMMY1");
    std::vector<std::string> ids;
    const auto known = stored("KnownDisplays");
    for (const auto& [identifier, name] : *known.value().dictionary()) {
        if (identifier != "GONE") ids.push_back(identifier);
    }
    ASSERT_EQ(ids.size(), 2u);
    const auto placements = stored("Placements");
    std::vector<Value> expected{placement("/opt/beta.desktop", "GONE", "bottomLeft", "none")};
    for (const std::string& id : ids) {
        expected.push_back(placement("/opt/alpha.desktop", id, "topLeft", "top-right"));
        expected.push_back(placement("/opt/beta.desktop", id, "none", "none"));
    }
    EXPECT_THAT(*placements.value().array(), UnorderedElementsAreArray(expected));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, CornersOfAllDisplaysArePlacedOnTheAttachedOneAndTheAbsentIsNamed) {
    place(ownDomain, "old-bindings");
    launch();
    const std::string id = display().first;
    EXPECT_EQ(program.logLines()[0], flattened(2, 3));
    EXPECT_EQ(program.logLines()[1],
              "Quorvel: flatten — display Projector (GONE) was not attached; nothing was "
              "materialised for it — set its corners in Settings when it returns");
    EXPECT_EQ(stored("AppBindings"),
              Value(Array{binding("/opt/alpha.desktop", "control,option,A", "true"),
                          binding("/opt/beta.desktop", "none", "false")}));
    EXPECT_EQ(stored("Placements"),
              Value(Array{placement("/opt/beta.desktop", "GONE", "bottomLeft", "none"),
                          placement("/opt/alpha.desktop", id, "topLeft", "top-right"),
                          placement("/opt/beta.desktop", id, "none", "none")}));
    EXPECT_FALSE(fs::exists(autostart)) << "the offer had been made";
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, ValuesOfTheWrongTypeAreTakenForMissing) {
    place(ownDomain, "wrong-types");
    place(firstDomain, "earlier-first");
    launch();
    const auto lines = program.logLines();
    EXPECT_THAT(lines, Not(Contains(StartsWith("Quorvel: migrated")))) << "it has settings";
    EXPECT_EQ(lines[0], flattened(0, 0));
    EXPECT_EQ(stored("AppBindings"), Value(Array{}));
    EXPECT_EQ(stored("Placements"), Value(Array{}));
    EXPECT_EQ(stored("HotZoneDwellMs"), Value(true));
    EXPECT_EQ(stored("TuckAnimation"), Value(7));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, SettingsOfItsOwnKeepTheImportOut) {
    place(ownDomain, "occupied");
    place(firstDomain, "earlier-first");
    place(secondDomain, "earlier-second");
    launch();
    EXPECT_THAT(program.logLines(), Not(Contains(StartsWith("Quorvel: migrated"))));
    EXPECT_EQ(stored("AppBindings"), Value(Array{}));
    EXPECT_EQ(stored("HotZoneDwellMs"), std::nullopt);
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, OnlyTheOfferToOpenAtLoginStoredIsRoomForAnImport) {
    place(ownDomain, "offer-only");
    place(firstDomain, "earlier-first");
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(3, firstDomain));
    EXPECT_EQ(stored("AppBindings"),
              Value(Array{binding("/opt/alpha.desktop", "control,option,A", "true")}));
    EXPECT_FALSE(fs::exists(autostart)) << "the offer had been made";
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AMarkerThatIsATextDoesNotKeepTheImportOut) {
    place(ownDomain, "marker-as-text");
    place(firstDomain, "earlier-first");
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(3, firstDomain));
    EXPECT_EQ(stored("DidMigrateLegacySettings"), Value(true));
    // The other two are read as generously as every boolean.
    EXPECT_EQ(stored("DidFlattenPlacements"), Value("true"));
    EXPECT_EQ(stored("DidOfferLoginItem"), Value("true"));
    EXPECT_FALSE(fs::exists(autostart));
}

// Earlier files that are no preferences
// -----------------------------------------------------------------

TEST_F(ProgramFirstLaunchTest, AnEarlierFileThatIsNoJsonIsPassedOverInOneLine) {
    place(firstDomain, "malformed");
    place(secondDomain, "earlier-second");
    launch();
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: " + fileOf(firstDomain).string() + " cannot be read — not valid JSON");
    EXPECT_EQ(program.logLines()[1], migrated(6, secondDomain));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AHugeEarlierFileIsPassedOverInOneLine) {
    place(firstDomain, "earlier-first");
    fs::resize_file(fileOf(firstDomain), 100'000'000);
    earlier[fileOf(firstDomain)] = ProgramOnX::contentOf(fileOf(firstDomain));
    launch();
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: " + fileOf(firstDomain).string() + " cannot be read — too large");
    EXPECT_EQ(program.logLines()[1], flattened(0, 0));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AnEarlierFileThatIsTooLargeOnlyWithBlanksIsTakenOverOnce) {
    // Indented, each of the numbers stands behind 180 blanks.
    std::string list = std::string(89, '[');
    for (int i = 0; i < 60'000; ++i) list += "1,";
    list += "1" + std::string(89, ']');
    fs::create_directories(fileOf(firstDomain).parent_path());
    std::ofstream(fileOf(firstDomain)) << R"({"TuckAnimation":)" << list << "}";
    earlier[fileOf(firstDomain)] = ProgramOnX::contentOf(fileOf(firstDomain));
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(1, firstDomain));
    EXPECT_EQ(program.logLines()[1], flattened(0, 0));
    EXPECT_THAT(program.settingsText(), HasSubstr(list));
    expectUpgraded();
    fs::remove(program.logFile);
    launch();
    EXPECT_EQ(program.logLines()[0], "Quorvel: no hot corners placed.");
}

TEST_F(ProgramFirstLaunchTest, AnEarlierFileThatIsTooLargeToBeStoredIsPassedOverOnce) {
    // With the marker beside it there is no room for it.
    const std::string rest = R"({"Placements":"","Other":{}})";
    std::string text = rest;
    text.insert(rest.find(",\"Other") - 1, native::JsonDocument::largest - rest.size(), 'x');
    fs::create_directories(fileOf(firstDomain).parent_path());
    std::ofstream(fileOf(firstDomain)) << text;
    earlier[fileOf(firstDomain)] = ProgramOnX::contentOf(fileOf(firstDomain));
    place(secondDomain, "earlier-second");
    launch();
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: could not store Placements, DidMigrateLegacySettings in " +
                  program.settingsFile.string() + " — too large");
    EXPECT_EQ(program.logLines()[1], migrated(6, secondDomain));
    expectUpgraded();
    fs::remove(program.logFile);
    launch();
    EXPECT_THAT(program.logLines(), Not(Contains(HasSubstr("could not store"))));
}

TEST_F(ProgramFirstLaunchTest, AFolderInPlaceOfAnEarlierFileIsPassedOverInOneLine) {
    fs::create_directories(fileOf(firstDomain) / "occupied");
    launch();
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: " + fileOf(firstDomain).string() + " cannot be read — Is a directory");
    EXPECT_EQ(program.logLines()[1], flattened(0, 0));
    EXPECT_TRUE(fs::is_directory(fileOf(firstDomain) / "occupied"));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AnEarlierFileThatMayNotBeReadIsPassedOverInOneLine) {
    place(firstDomain, "earlier-first");
    place(secondDomain, "earlier-second");
    fs::create_directories(program.settingsFolder);
    program.handOver();
    fs::permissions(fileOf(firstDomain), fs::perms::none);
    program.start({.prefix = ProgramOnX::asOrdinaryUser()});
    EXPECT_EQ(program.terminate(), 0);
    fs::permissions(fileOf(firstDomain), fs::perms::owner_read);
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: " + fileOf(firstDomain).string() + " cannot be read — Permission denied");
    EXPECT_EQ(program.logLines()[1], migrated(6, secondDomain));
    expectUpgraded();
}

// Where nothing can be stored
// ---------------------------------------------------------------------------

TEST_F(ProgramFirstLaunchTest, AReadOnlyFolderLeavesTheOldSettingsInUseAndTheNextLaunchUpgrades) {
    place(ownDomain, "old-bindings");
    // Neither the import nor the offer has been made yet.
    std::string text = program.settingsText();
    for (const std::string marker : {"DidMigrateLegacySettings", "DidOfferLoginItem"}) {
        text.replace(text.find(marker), marker.size(), "Other" + marker);
    }
    program.writeSettings(text);
    program.handOver();
    fs::permissions(program.settingsFolder, fs::perms::owner_read | fs::perms::owner_exec);
    const std::vector<std::string> asUser = ProgramOnX::asOrdinaryUser();
    launch({.prefix = asUser});
    const std::string refused = " in " + program.settingsFile.string() + " — Permission denied";
    EXPECT_THAT(program.logLines(),
                ElementsAre("Quorvel: could not store DidMigrateLegacySettings" + refused,
                            "Quorvel: could not store DidOfferLoginItem" + refused,
                            "Quorvel: global hotkey registered (control,option,A) for "
                            "/opt/alpha.desktop",
                            "Quorvel: no hot corners placed.", "Quorvel: edge reveal watcher armed",
                            "Quorvel: ready — 2 app(s) bound", "Quorvel: accessibility granted"));
    EXPECT_EQ(program.settingsText(), text);
    EXPECT_FALSE(fs::exists(autostart));

    fs::permissions(program.settingsFolder, fs::perms::owner_all);
    fs::remove(program.logFile);
    launch({.prefix = asUser});
    EXPECT_EQ(program.logLines()[0], flattened(2, 3));
    EXPECT_EQ(program.logLines()[2], registered);
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, AFileInPlaceOfTheFolderLeavesItWorking) {
    fs::create_directories(config);
    std::ofstream(program.settingsFolder) << "a file";
    place(firstDomain, "earlier-first");
    launch();
    EXPECT_THAT(program.logLines(),
                AllOf(Contains("Quorvel: ready — 0 app(s) bound"),
                      Not(Contains(StartsWith("Quorvel: migrated"))),
                      Not(Contains(StartsWith("Quorvel: flattened"))), Not(Contains(registered))));
    EXPECT_EQ(ProgramOnX::contentOf(program.settingsFolder), "a file");
}

TEST_F(ProgramFirstLaunchTest, ADiskThatIsFullForTheImportKeepsItForTheNextLaunch) {
    // The limit on a file stands for the disk: what is small still finds room.
    std::string large = "{\"AppBindings\": [";
    for (int i = 0; i < 200; ++i) {
        large += (i == 0 ? "" : ",") + std::string(R"({"appPath": "/opt/app-)") +
                 std::to_string(i) + R"(.desktop", "hotKey": "none", "corner": "topLeft"})";
    }
    fs::create_directories(fileOf(firstDomain).parent_path());
    std::ofstream(fileOf(firstDomain)) << large << "]}";
    earlier[fileOf(firstDomain)] = ProgramOnX::contentOf(fileOf(firstDomain));
    launch({.prefix = {"sh", "-c", "trap '' XFSZ; exec prlimit --fsize=8192 \"$@\"", "sh"}});
    EXPECT_EQ(program.logLines()[0],
              "Quorvel: could not store AppBindings, DidMigrateLegacySettings in " +
                  program.settingsFile.string() + " — File too large");
    EXPECT_THAT(program.logLines(), AllOf(Contains("Quorvel: ready — 0 app(s) bound"),
                                          Not(Contains(StartsWith("Quorvel: flattened")))));
    EXPECT_EQ(stored(), (Dictionary{{"DidOfferLoginItem", true}}));

    fs::remove(program.logFile);
    launch();
    EXPECT_EQ(program.logLines()[0], migrated(1, firstDomain));
    EXPECT_EQ(program.logLines()[1], flattened(200, 200));
    expectUpgraded();
}

TEST_F(ProgramFirstLaunchTest, SettingsOfItsOwnThatAreNoJsonAreKeptAsideAndTheEarlierTakenOver) {
    place(ownDomain, "malformed");
    place(firstDomain, "earlier-first");
    launch();
    EXPECT_THAT(program.logLines()[0], StartsWith("Quorvel: " + program.settingsFile.string() +
                                                  " cannot be read — not valid JSON; it is kept"));
    EXPECT_EQ(program.logLines()[1], migrated(3, firstDomain));
    EXPECT_TRUE(fs::exists(program.settingsFile.string() + ".unreadable-1"));
    expectUpgraded();
}

// Opening at login
// --------------------------------------------------------------------------------------

TEST_F(ProgramFirstLaunchTest, TheEntryIsValidAndStartsThisProgram) {
    launch();
    const std::string entry = ProgramOnX::contentOf(autostart);
    const std::string path = fs::canonical(ProgramOnX::defaultPath()).string();
    EXPECT_THAT(entry, AllOf(HasSubstr("\nExec=\"" + path + "\"\n"),
                             HasSubstr("\nTryExec=" + path + "\n")));
    const fs::path report = program.session.folder() / "validation";
    runToEnd(
        {{"desktop-file-validate", autostart.string()}, {{"PATH", "/usr/bin:/bin"}}, report, {}});
    EXPECT_THAT(ProgramOnX::contentOf(report), IsEmpty());
}

TEST_F(ProgramFirstLaunchTest, AnEntryThatTheUserRemovedStaysRemoved) {
    launch();
    ASSERT_TRUE(fs::remove(autostart));
    launch();
    EXPECT_FALSE(fs::exists(autostart));
    const auto lines = program.logLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), registered), 1);
}

TEST_F(ProgramFirstLaunchTest, AnEntryThatStartsNothingIsMadeToStartThisProgram) {
    program.session.folder().write("config/autostart/com.tessivane.quorvel.desktop",
                                   "[Desktop Entry]\nType=Application\nName=Quorvel\n"
                                   "Exec=/old/Quorvel\nTryExec=/old/Quorvel\nX-Mine=1\n");
    launch();
    EXPECT_THAT(program.logLines(), Contains(registered));
    const std::string path = fs::canonical(ProgramOnX::defaultPath()).string();
    EXPECT_THAT(ProgramOnX::contentOf(autostart),
                AllOf(HasSubstr("\nExec=\"" + path + "\"\n"), HasSubstr("\nTryExec=" + path + "\n"),
                      HasSubstr("X-Mine=1\n")));
}

TEST_F(ProgramFirstLaunchTest, AnEntryThatTheUserSwitchedOffStaysOffAndTheLogSaysSo) {
    for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
        program.session.folder().write("config/autostart/com.tessivane.quorvel.desktop",
                                       std::string("[Desktop Entry]\nType=Application\n"
                                                   "Name=Quorvel\nExec=/old/Quorvel\n"
                                                   "Comment[de]=Von Hand\n") +
                                           off);
        launch();
        EXPECT_THAT(program.logLines(),
                    Contains("Quorvel: could not register to open at login — macOS is holding "
                             "this back. Open System Settings → General → Login Items and allow "
                             "Quorvel."));
        EXPECT_THAT(ProgramOnX::contentOf(autostart),
                    AllOf(HasSubstr(off), HasSubstr("Comment[de]=Von Hand\n")));
        EXPECT_EQ(stored("DidOfferLoginItem"), Value(true));
        fs::remove(program.settingsFile);
        fs::remove(program.logFile);
    }
}

TEST_F(ProgramFirstLaunchTest, ADamagedEntryThatTheUserSwitchedOffStaysOffAndIsKept) {
    const std::string text =
        "[Desktop Entry]\nType=Application\nHidden=true\n<<<<<<< mine\nExec=/old/Quorvel\n";
    program.session.folder().write("config/autostart/com.tessivane.quorvel.desktop", text);
    launch();
    EXPECT_THAT(program.logLines(), Not(Contains(registered)));
    EXPECT_THAT(ProgramOnX::contentOf(autostart),
                AllOf(HasSubstr("Hidden=true\n"), Not(HasSubstr("<<<"))));
    EXPECT_EQ(ProgramOnX::contentOf(autostart.string() + ".unreadable-1"), text);
}

TEST_F(ProgramFirstLaunchTest, AnEntryThatCannotBeWrittenIsOneLineAndNotTriedAgain) {
    fs::create_directories(config);
    std::ofstream(config / "autostart") << "a file";
    launch();
    launch();
    const auto lines = program.logLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         "Quorvel: could not register to open at login — Not a directory"),
              1);
    EXPECT_THAT(lines, Not(Contains(registered)));
    expectUpgraded();
}

}  // namespace
}  // namespace test
}  // namespace quorvel
