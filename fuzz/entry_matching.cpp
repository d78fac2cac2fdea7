#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Lines.hpp"
#include "platform/Text.hpp"
#include "platform/linux/ApplicationMatching.hpp"

using namespace quorvel;
using fuzz::require;
using native::DesktopEntries;
using native::DesktopEntry;

namespace {

/// What the lines of an input say: `entry=ID` and the lines of that entry, then what is known of a
/// window and of its process, one `name=value` a line.
struct Scene {
    std::vector<DesktopEntry> entries;
    std::vector<std::string> preferred;
    native::WindowEvidence evidence;
    std::int32_t pid = 100;
    native::ProcessTexts texts;

    explicit Scene(std::string_view input) {
        std::string id;
        std::string entryText;
        std::set<std::string> ids;
        const auto finishEntry = [&] {
            // As in the folders, where the slashes of a path become dashes and an id counts once.
            std::replace(id.begin(), id.end(), '/', '-');
            id += ".desktop";
            if (auto entry = native::parseDesktopEntry(
                    "[Desktop Entry]\nType=Application\n" + entryText, "/apps/" + id, id);
                entry && ids.insert(id).second) {
                entries.push_back(std::move(*entry));
            }
            id.clear();
            entryText.clear();
        };
        const std::map<std::string_view, std::string*> values{
            {"gtk", &evidence.gtkApplicationId},      {"kde", &evidence.kdeDesktopFile},
            {"instance", &evidence.instanceName},     {"class", &evidence.className},
            {"exe", &texts.program.executable},       {"cwd", &texts.program.workingFolder},
            {"cgroup", &texts.controlGroup},          {"stat", &texts.stat},
            {"parent-exe", &texts.parent.executable}, {"parent-cwd", &texts.parent.workingFolder}};
        const std::map<std::string_view, std::pair<std::string*, char>> lists{
            {"arg", {&texts.program.commandLine, '\0'}},
            {"parent-arg", {&texts.parent.commandLine, '\0'}},
            {"env", {&texts.environment, '\0'}},
            {"flatpak", {&texts.flatpakInfo, '\n'}}};
        for (const std::string_view line : fuzz::parts(input, '\n')) {
            const auto [name, value] = fuzz::cut(line, '=');
            if (name == "entry") {
                finishEntry();
                id = value;
            } else if (name == "parent") {
                evidence.parentApplication = std::string(value);
            } else if (name == "prefer") {
                preferred.emplace_back(value.substr(0, value.find('\0')));
                // Those that lie elsewhere would be read from the disk.
                if (preferred.back().ends_with(".desktop")) {
                    preferred.back() = "/apps/" + lastPathComponent(preferred.back());
                }
            } else if (name == "pid") {
                std::from_chars(value.data(), value.data() + value.size(), pid);
            } else if (const auto text = values.find(name); text != values.end()) {
                *text->second = value;
            } else if (const auto list = lists.find(name); list != lists.end()) {
                list->second.first->append(value).push_back(list->second.second);
            } else {
                entryText.append(line).push_back('\n');
            }
        }
        finishEntry();
        evidence.process = native::processFactsOf(pid, texts);
    }

    DesktopEntries catalogue() const { return DesktopEntries({}, entries); }
};

void check(const native::ProcessFacts& facts) {
    require(facts.executable.starts_with('/') && facts.program.starts_with('/'));
    require(facts.programName == lastPathComponent(facts.programName));
    require(facts.parentScript.empty() || facts.parentScript.starts_with('/'));
    require(facts.sandboxIds.size() <= 3);
    for (const std::string& id : facts.sandboxIds) require(!id.empty());
}

/// Whether anything that is known of the window names this entry.
bool isNamed(const DesktopEntry& entry, const native::WindowEvidence& evidence) {
    std::vector<std::string> ids{evidence.gtkApplicationId, evidence.kdeDesktopFile};
    std::vector<std::string> programs;
    if (evidence.process) {
        const native::ProcessFacts& process = *evidence.process;
        ids.insert(ids.end(), process.sandboxIds.begin(), process.sandboxIds.end());
        ids.push_back(process.desktopFileHint);
        ids.push_back(process.launchedDesktopFile);
        programs = {process.program, process.programName, process.parentScript,
                    lastPathComponent(process.parentScript)};
    }
    const auto isId = [&](const std::string& id) {
        return !id.empty() && (id == entry.path || lastPathComponent(id) == entry.id ||
                               id == entry.id || id + ".desktop" == entry.id);
    };
    if (std::any_of(ids.begin(), ids.end(), isId)) return true;
    for (const std::string& name : {evidence.instanceName, evidence.className}) {
        if (name.empty()) continue;
        if (entry.startupWMClass == name) return true;
        if (lowercased(entry.id) == lowercased(name) + ".desktop") return true;
        if (lowercased(entry.id) == lowercased(name)) return true;
    }
    return std::any_of(programs.begin(), programs.end(), [&](const std::string& program) {
        return !program.empty() &&
               (entry.program == program || lastPathComponent(entry.program) == program);
    });
}

}  // namespace

/// Whatever entries, windows and processes say: a match is one of the entries, something names it,
/// the same question has the same answer, and entries that nothing names have no part in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Scene scene(fuzz::textOf(data, size));
    const auto& evidence = scene.evidence;
    require(evidence.process == native::processFactsOf(scene.pid, scene.texts));
    if (evidence.process) check(*evidence.process);

    const DesktopEntries entries = scene.catalogue();
    require(entries.all() == scene.entries);
    const DesktopEntry* const match = entryOf(evidence, entries);
    require(match == entryOf(evidence, entries));
    if (match != nullptr) {
        require(match >= entries.all().data() &&
                match < entries.all().data() + entries.all().size());
        require(isNamed(*match, evidence));
        require(entries.at(match->path) == match && entries.withId(match->id) == match);
    }

    const auto path = applicationPathOf(evidence, entries);
    if (evidence.parentApplication) {
        require(path == evidence.parentApplication);
    } else if (match != nullptr) {
        require(path == match->path);
    } else {
        require(path ==
                (evidence.process ? std::optional(evidence.process->program) : std::nullopt));
    }

    constexpr std::size_t few = 8;
    for (std::size_t i = 0; i < std::min(few, scene.entries.size()); ++i) {
        if (isNamed(scene.entries[i], evidence)) continue;
        std::vector<DesktopEntry> fewer = scene.entries;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
        const DesktopEntries others({}, fewer);
        const DesktopEntry* const again = entryOf(evidence, others);
        require((again == nullptr) == (match == nullptr));
        require(match == nullptr || *again == *match);
    }

    DesktopEntries choosy = scene.catalogue();
    choosy.prefer(scene.preferred);
    const auto chosen = applicationPathOf(evidence, choosy);
    require(chosen == applicationPathOf(evidence, choosy));
    require(chosen.has_value() == path.has_value());
    if (scene.preferred.empty()) require(chosen == path);
    return 0;
}
