#include "platform/linux/ApplicationMatching.hpp"

#include <string_view>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

using Entry = const DesktopEntry*;

constexpr std::string_view extension = ".desktop";

std::string_view withoutExtension(std::string_view id) {
    if (id.ends_with(extension)) id.remove_suffix(extension.size());
    return id;
}

/// An id with or without its extension, or a path.
Entry named(const std::string& name, const DesktopEntries& entries) {
    if (name.empty()) return nullptr;
    if (name.front() == '/') {
        const Entry entry = entries.at(name);
        return entry != nullptr ? entry : entries.withId(lastPathComponent(name));
    }
    return entries.withId(std::string(withoutExtension(name)) + std::string(extension));
}

/// By the instance name, then by the class. An instance name that is merely what the entry's
/// program is called says no more than that this program runs: there a class of its own, as from
/// `xterm -class`, says more.
template <class Fits>
Entry byClass(const WindowEvidence& evidence, const DesktopEntries& entries, const Fits& fits) {
    const auto& process = evidence.process;
    const auto find = [&](const std::string& name) -> Entry {
        if (name.empty()) return nullptr;
        if (process && process->launchedPid == process->pid) {
            const Entry launched = named(process->launchedDesktopFile, entries);
            if (launched != nullptr && fits(*launched, name)) return launched;
        }
        return entries.best([&](const DesktopEntry& entry) { return fits(entry, name); });
    };
    const Entry instance = find(evidence.instanceName);
    if (instance == nullptr) return find(evidence.className);
    if (lastPathComponent(instance->program) != evidence.instanceName) return instance;
    const Entry ofClass = find(evidence.className);
    return ofClass == nullptr || fits(*instance, evidence.className) ? instance : ofClass;
}

Entry byProgram(const std::string& path, const std::string& name, const DesktopEntries& entries) {
    if (name.empty()) return nullptr;
    // One that names the very file knows better than one that merely has a namesake.
    const Entry exact =
        entries.best([&](const DesktopEntry& entry) { return entry.program == path; });
    if (exact != nullptr) return exact;
    return entries.best([&](const DesktopEntry& entry) {
        return !entry.program.empty() && lastPathComponent(entry.program) == name;
    });
}

}  // namespace

const DesktopEntry* entryOf(const WindowEvidence& evidence, const DesktopEntries& entries) {
    if (const Entry entry = named(evidence.gtkApplicationId, entries)) return entry;
    if (const Entry entry = named(evidence.kdeDesktopFile, entries)) return entry;
    const auto& process = evidence.process;
    if (process) {
        for (const std::string& id : process->sandboxIds) {
            if (const Entry entry = named(id, entries)) return entry;
        }
    }

    const auto hasClass = [](const DesktopEntry& entry, const std::string& name) {
        return entry.startupWMClass == name;
    };
    if (const Entry entry = byClass(evidence, entries, hasClass)) return entry;
    const auto hasId = [](const DesktopEntry& entry, const std::string& name) {
        return lowercased(withoutExtension(entry.id)) == lowercased(name);
    };
    if (const Entry entry = byClass(evidence, entries, hasId)) return entry;

    if (!process) return nullptr;
    if (const Entry entry = named(process->desktopFileHint, entries)) return entry;
    // Whatever a program starts inherits the variables; only its own process is meant by them, or
    // that of the entry's own script, which is there for nothing but to start it.
    if (const Entry entry = named(process->launchedDesktopFile, entries)) {
        if (process->launchedPid == process->pid) return entry;
        if (process->launchedPid == process->parentPid && !process->parentScript.empty() &&
            entry->program == process->parentScript) {
            return entry;
        }
    }
    if (const Entry entry = byProgram(process->program, process->programName, entries)) {
        return entry;
    }
    if (process->parentScript.empty()) return nullptr;
    return byProgram(process->parentScript, lastPathComponent(process->parentScript), entries);
}

std::optional<std::string> applicationPathOf(const WindowEvidence& evidence,
                                             const DesktopEntries& entries) {
    if (evidence.parentApplication) return evidence.parentApplication;
    const Entry entry = entryOf(evidence, entries);
    if (entry != nullptr && entries.isPreferred(entry->path)) return entry->path;
    if (evidence.process) {
        for (const std::string& program :
             {evidence.process->program, evidence.process->parentScript}) {
            if (auto path = entries.preferredProgram(program)) return path;
        }
    }
    if (entry != nullptr) return entry->path;
    if (evidence.process) return evidence.process->program;
    return std::nullopt;
}

}  // namespace quorvel::native
