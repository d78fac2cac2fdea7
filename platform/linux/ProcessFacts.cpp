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

/// Without what tells that the file was replaced: an upgrade does so while the program runs on.
std::string executableOf(const ProgramTexts& texts) {
    constexpr std::string_view deleted = " (deleted)";
    std::string path = texts.executable;
    if (path.ends_with(deleted)) path.resize(path.size() - deleted.size());
    return path.starts_with('/') ? path : "";
}

struct Program {
    std::string path;
    std::string name;
};

/// The script that an interpreter runs, or the executable itself.
Program programOfProcess(const ProgramTexts& texts, const std::string& executable) {
    if (!isInterpreter(lastPathComponent(executable))) {
        return {executable, lastPathComponent(executable)};
    }
    std::vector<std::string> arguments = partsOf(texts.commandLine, '\0');
    if (arguments.empty()) return {executable, ""};
    arguments.front() = executable;
    const std::string script = programOf(arguments);
    if (script.empty() || script == executable) return {executable, ""};
    std::error_code error;
    std::filesystem::path path(script);
    if (path.is_relative()) path = std::filesystem::path(texts.workingFolder) / path;
    path = path.lexically_normal();
    const bool isThere = path.is_absolute() && std::filesystem::is_regular_file(path, error);
    return {isThere ? path.string() : executable, lastPathComponent(script)};
}

std::int32_t parentIn(const std::string& stat) {
    // The name before the parent may hold anything, brackets too.
    const std::size_t behindName = stat.rfind(')');
    if (behindName == std::string::npos || behindName + 4 >= stat.size()) return 0;
    return numberIn(std::string_view(stat).substr(behindName + 4));
}

ProgramTexts readProgram(const std::string& process) {
    ProgramTexts texts{linkTarget(process + "/exe"), {}, {}};
    if (!isInterpreter(lastPathComponent(executableOf(texts)))) return texts;
    texts.commandLine = readSome(process + "/cmdline", manyBytes);
    texts.workingFolder = linkTarget(process + "/cwd");
    return texts;
}

std::string flatpakName(const std::string& info) {
    bool inApplication = false;
    for (const std::string& line : partsOf(info, '\n')) {
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

std::optional<ProcessFacts> processFactsOf(std::int32_t pid, const ProcessTexts& texts) {
    ProcessFacts facts;
    facts.pid = pid;
    facts.executable = executableOf(texts.program);
    if (facts.executable.empty()) return std::nullopt;
    Program program = programOfProcess(texts.program, facts.executable);
    facts.program = std::move(program.path);
    facts.programName = std::move(program.name);

    std::string snapName;
    for (const std::string& variable : partsOf(texts.environment, '\0')) {
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

    if (const std::string name = flatpakName(texts.flatpakInfo); !name.empty()) {
        facts.sandboxIds.push_back(name);
    }
    if (const std::string name = snapNameIn(trimmed(texts.controlGroup)); !name.empty()) {
        facts.sandboxIds.push_back(name);
    }
    // The variable is inherited by whatever a snap starts, the folder is not.
    if (!snapName.empty() && facts.executable.starts_with("/snap/" + snapName + "/")) {
        facts.sandboxIds.push_back(snapName + "_" + snapName);
    }

    facts.parentPid = parentIn(texts.stat);
    const std::string parentExecutable = executableOf(texts.parent);
    if (isShell(lastPathComponent(parentExecutable))) {
        const std::string script = programOfProcess(texts.parent, parentExecutable).path;
        if (script != parentExecutable) facts.parentScript = script;
    }
    return facts;
}

std::optional<ProcessFacts> readProcessFacts(std::int32_t pid, const std::string& processFolder) {
    if (pid <= 0) return std::nullopt;
    const std::string process = processFolder + "/" + std::to_string(pid);
    ProcessTexts texts;
    texts.program = readProgram(process);
    if (texts.program.executable.empty()) return std::nullopt;
    texts.environment = readSome(process + "/environ", manyBytes);
    texts.stat = readSome(process + "/stat", 4096);
    texts.controlGroup = readSome(process + "/cgroup", 16 * 1024);
    texts.flatpakInfo = readSome(process + "/root/.flatpak-info", manyBytes);
    texts.parent = readProgram(processFolder + "/" + std::to_string(parentIn(texts.stat)));
    return processFactsOf(pid, texts);
}

}  // namespace quorvel::native
