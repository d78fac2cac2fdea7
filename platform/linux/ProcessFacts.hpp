#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorvel::native {

/// What tells which application a process belongs to. Texts are empty when unknown.
struct ProcessFacts {
    std::int32_t pid = 0;
    std::string executable;  ///< absolute path
    std::string program;     ///< absolute path; the script when the executable interprets one
    /// Its base name, or that of a module; empty for an interpreter that runs neither.
    std::string programName;
    std::int32_t parentPid = 0;
    /// The shell script that started it as its child.
    std::string parentScript;
    /// Desktop ids that its sandbox gives it, without the extension, the likeliest first.
    std::vector<std::string> sandboxIds;
    std::string desktopFileHint;      ///< BAMF_DESKTOP_FILE_HINT
    std::string launchedDesktopFile;  ///< GIO_LAUNCHED_DESKTOP_FILE
    std::int32_t launchedPid = 0;     ///< GIO_LAUNCHED_DESKTOP_FILE_PID

    bool operator==(const ProcessFacts&) const = default;
};

/// The program that a process runs, as the system tells it.
struct ProgramTexts {
    std::string executable;     ///< where /proc/PID/exe leads
    std::string commandLine;    ///< each argument ends with a zero
    std::string workingFolder;  ///< where /proc/PID/cwd leads
};

/// The rest that it tells of a process.
struct ProcessTexts {
    ProgramTexts program;
    std::string environment;   ///< each variable ends with a zero
    std::string stat;          ///< /proc/PID/stat
    std::string controlGroup;  ///< /proc/PID/cgroup
    std::string flatpakInfo;   ///< .flatpak-info, as the process sees it
    ProgramTexts parent;       ///< the process that `stat` names as its parent
};

/// Nothing when the texts name no executable. Looks into the file system only to tell whether a
/// script is there.
std::optional<ProcessFacts> processFactsOf(std::int32_t pid, const ProcessTexts& texts);

/// Nothing when there is no such process or it may not be looked at. What cannot be read of it
/// stays empty. `processFolder` is /proc.
std::optional<ProcessFacts> readProcessFacts(std::int32_t pid,
                                             const std::string& processFolder = "/proc");

/// At most `limit` bytes of a file. Never waits for a writer, as a pipe in a file's place would
/// make one do; empty when it cannot be read.
std::string readSome(const std::string& path, std::size_t limit);

}  // namespace quorvel::native
