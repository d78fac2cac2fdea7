#include "platform/linux/ProcessFacts.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/Text.hpp"
#include "platform/linux/ProgramName.hpp"

namespace quorvel::native {
namespace {

constexpr std::size_t manyBytes = 256 * 1024;

std::string linkTarget(const std::string& path) {
    std::array<char, 4096> buffer{};
    const ssize_t length = readlink(path.c_str(), buffer.data(), buffer.size());
    return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : "";
}

/// The parts of a text that a separator ends, as in /proc/PID/environ.
std::vector<std::string> partsOf(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parts;
}

std::int32_t numberIn(std::string_view text) {
    std::int32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string executableOf(const std::string& process) {
    // An upgrade replaces the file of a program that goes on running.
    constexpr std::string_view deleted = " (deleted)";
    std::string path = linkTarget(process + "/exe");
    if (path.ends_with(deleted)) path.resize(path.size() - deleted.size());
    return path.starts_with('/') ? path : "";
}

struct Program {
    std::string path;
    std::string name;
};

/// The script that an interpreter runs, or the executable itself.
Program programOfProcess(const std::string& process, const std::string& executable) {
    if (!isInterpreter(lastPathComponent(executable))) {
        return {executable, lastPathComponent(executable)};
    }
    std::vector<std::string> arguments = partsOf(readSome(process + "/cmdline", manyBytes), '\0');
    if (arguments.empty()) return {executable, ""};
    arguments.front() = executable;
    const std::string script = programOf(arguments);
    if (script.empty() || script == executable) return {executable, ""};
    std::error_code error;
    std::filesystem::path path(script);
    if (path.is_relative()) path = std::filesystem::path(linkTarget(process + "/cwd")) / path;
    path = path.lexically_normal();
    const bool isThere = path.is_absolute() && std::filesystem::is_regular_file(path, error);
    return {isThere ? path.string() : executable, lastPathComponent(script)};
}

std::int32_t parentOf(const std::string& process) {
    // The name before the parent may hold anything, brackets too.
    const std::string stat = readSome(process + "/stat", 4096);
    const std::size_t behindName = stat.rfind(')');
    if (behindName == std::string::npos || behindName + 4 >= stat.size()) return 0;
    return numberIn(std::string_view(stat).substr(behindName + 4));
}

std::string flatpakName(const std::string& process) {
    bool inApplication = false;
    for (const std::string& line :
         partsOf(readSome(process + "/root/.flatpak-info", manyBytes), '\n')) {
        if (line.starts_with('[')) inApplication = line == "[Application]";
        if (inApplication && line.starts_with("name=")) return trimmed(line.substr(5));
    }
    return {};
}

/// "snap.NAME.APP.UUID.scope" and "snap.NAME.APP-UUID.scope" are both in use.
std::string snapNameIn(std::string_view controlGroup) {
    constexpr std::size_t uuidLength = 36;
    const std::size_t start = controlGroup.rfind("/snap.");
    if (start == std::string_view::npos) return {};
    std::string_view unit = controlGroup.substr(start + 6);
    unit = unit.substr(0, unit.find('/'));
    const std::size_t dot = unit.find('.');
    if (dot == std::string_view::npos) return {};
    const std::string name(unit.substr(0, dot));
    std::string_view application = unit.substr(dot + 1);
    application = application.substr(0, application.find('.'));
    if (application.size() > uuidLength + 1 &&
        application[application.size() - uuidLength - 1] == '-') {
        application.remove_suffix(uuidLength + 1);
    }
    return application.empty() ? name + "_" + name : name + "_" + std::string(application);
}

}  // namespace

std::string readSome(const std::string& path, std::size_t limit) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0) return {};
    struct stat status {};
    std::string text;
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
        std::array<char, 16 * 1024> buffer{};
        while (text.size() < limit) {
            const ssize_t count = read(file, buffer.data(), buffer.size());
            if (count <= 0) break;
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
        if (text.size() > limit) text.resize(limit);
    }
    close(file);
    return text;
}

std::optional<ProcessFacts> readProcessFacts(std::int32_t pid, const std::string& processFolder) {
    if (pid <= 0) return std::nullopt;
    const std::string process = processFolder + "/" + std::to_string(pid);
    ProcessFacts facts;
    facts.pid = pid;
    facts.executable = executableOf(process);
    if (facts.executable.empty()) return std::nullopt;
    Program program = programOfProcess(process, facts.executable);
    facts.program = std::move(program.path);
    facts.programName = std::move(program.name);

    std::string snapName;
    for (const std::string& variable : partsOf(readSome(process + "/environ", manyBytes), '\0')) {
        const std::size_t equals = variable.find('=');
        if (equals == std::string::npos) continue;
        const std::string_view name = std::string_view(variable).substr(0, equals);
        const std::string value = variable.substr(equals + 1);
        if (name == "BAMF_DESKTOP_FILE_HINT") facts.desktopFileHint = value;
        if (name == "GIO_LAUNCHED_DESKTOP_FILE") facts.launchedDesktopFile = value;
        if (name == "GIO_LAUNCHED_DESKTOP_FILE_PID") facts.launchedPid = numberIn(value);
        if (name == "SNAP_INSTANCE_NAME" || (name == "SNAP_NAME" && snapName.empty())) {
            snapName = value;
        }
    }

    if (const std::string name = flatpakName(process); !name.empty()) {
        facts.sandboxIds.push_back(name);
    }
    if (const std::string name = snapNameIn(trimmed(readSome(process + "/cgroup", 16 * 1024)));
        !name.empty()) {
        facts.sandboxIds.push_back(name);
    }
    // The variable is inherited by whatever a snap starts, the folder is not.
    if (!snapName.empty() && facts.executable.starts_with("/snap/" + snapName + "/")) {
        facts.sandboxIds.push_back(snapName + "_" + snapName);
    }

    facts.parentPid = parentOf(process);
    const std::string parent = processFolder + "/" + std::to_string(facts.parentPid);
    const std::string parentExecutable = executableOf(parent);
    if (isShell(lastPathComponent(parentExecutable))) {
        const std::string script = programOfProcess(parent, parentExecutable).path;
        if (script != parentExecutable) facts.parentScript = script;
    }
    return facts;
}

}  // namespace quorvel::native
