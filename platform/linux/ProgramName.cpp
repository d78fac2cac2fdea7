#include "platform/linux/ProgramName.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

template <std::size_t size>
bool isOneOf(std::string_view word, const std::array<std::string_view, size>& words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

constexpr std::array<std::string_view, 10> shells{"sh",   "bash", "dash", "ash", "ksh",
                                                  "mksh", "zsh",  "fish", "csh", "tcsh"};

/// Also with a version behind it, as in python3.11.
constexpr std::array<std::string_view, 15> interpreters{
    "python", "pypy",   "perl", "ruby", "node",  "nodejs", "gjs", "gjs-console",
    "lua",    "luajit", "php",  "wish", "tclsh", "guile",  "mono"};

/// Programs that only start another one, with options in front of it that carry their values along.
constexpr std::array<std::string_view, 12> starters{
    "nohup",    "setsid", "exec",     "optirun",     "primusrun",        "prime-run",
    "mangohud", "torify", "torsocks", "gamemoderun", "dbus-run-session", "dbus-launch"};

std::string_view withoutVersion(std::string_view name) {
    while (!name.empty() && (std::isdigit(static_cast<unsigned char>(name.back())) != 0 ||
                             name.back() == '.' || name.back() == '-')) {
        name.remove_suffix(1);
    }
    return name;
}

bool isOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

bool isAssignment(std::string_view word) {
    const auto equals = word.find('=');
    if (equals == std::string_view::npos || equals == 0) return false;
    return std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(equals),
                       [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

/// How many values follow an option of bwrap.
std::size_t sandboxOptionValues(std::string_view option) {
    constexpr std::array<std::string_view, 14> two{
        "--setenv",       "--bind",  "--bind-try",    "--dev-bind",  "--dev-bind-try",
        "--ro-bind",      "--file",  "--ro-bind-try", "--bind-data", "--symlink",
        "--ro-bind-data", "--chmod", "--bind-fd",     "--ro-bind-fd"};
    constexpr std::array<std::string_view, 16> none{
        "--unshare-all", "--unshare-user", "--unshare-user-try",   "--unshare-pid",
        "--unshare-net", "--unshare-uts",  "--unshare-cgroup-try", "--unshare-cgroup",
        "--unshare-ipc", "--share-net",    "--new-session",        "--die-with-parent",
        "--as-pid-1",    "--clearenv",     "--disable-userns",     "--assert-userns-disabled"};
    if (isOneOf(option, two)) return 2;
    if (isOneOf(option, none)) return 0;
    return option == "--overlay" ? 3 : 1;
}

using Words = std::vector<std::string>;

Words from(const Words& words, std::size_t first) {
    if (first >= words.size()) return {};
    return {words.begin() + static_cast<std::ptrdiff_t>(first), words.end()};
}

std::size_t behindOptions(const Words& words, std::size_t index,
                          const std::vector<std::string_view>& withValue) {
    while (index < words.size() && isOption(words[index])) {
        if (words[index] == "--") return index + 1;
        const bool takesNext =
            std::find(withValue.begin(), withValue.end(), words[index]) != withValue.end();
        index += takesNext ? 2U : 1U;
    }
    return index;
}

/// The first command of a shell's command text.
Words firstCommand(const std::string& text) {
    Words words = splitCommandLine(text);
    std::size_t index = 0;
    while (index < words.size()) {
        if (words[index] == "exec" || isAssignment(words[index])) {
            ++index;
        } else if (words[index] == "cd") {
            while (index < words.size() && words[index] != "&&" && !words[index].ends_with(';')) {
                ++index;
            }
            ++index;
        } else {
            break;
        }
    }
    words = from(words, index);
    if (!words.empty() && words.front().ends_with(';')) words.front().pop_back();
    return words;
}

std::string programOfShell(const Words& words, int depth);
std::string programOfInterpreter(const Words& words, std::string_view name);
std::string program(const Words& words, int depth);

std::string programOfEnv(const Words& words, int depth) {
    std::size_t index = 1;
    while (index < words.size()) {
        const std::string& word = words[index];
        if (word == "-S" || word == "--split-string") {
            if (index + 1 == words.size()) return {};
            Words rest = splitCommandLine(words[index + 1]);
            const Words tail = from(words, index + 2);
            rest.insert(rest.end(), tail.begin(), tail.end());
            rest.insert(rest.begin(), "env");
            return program(rest, depth + 1);
        }
        if (word == "-u" || word == "-C" || word == "--unset" || word == "--chdir") {
            index += 2;
        } else if (isOption(word) || word == "-" || isAssignment(word)) {
            ++index;
        } else {
            break;
        }
    }
    return program(from(words, index), depth + 1);
}

std::string programOfShell(const Words& words, int depth) {
    std::size_t index = 1;
    while (index < words.size() && isOption(words[index])) {
        const std::string& option = words[index];
        if (option == "--") {
            ++index;
            break;
        }
        if (option[1] != '-' && option.find('c') != std::string::npos) {
            index = behindOptions(words, index + 1, {});
            if (index >= words.size()) return {};
            return program(firstCommand(words[index]), depth + 1);
        }
        index += option == "-o" || option == "--rcfile" || option == "--init-file" ? 2U : 1U;
    }
    return index < words.size() ? words[index] : std::string();
}

std::string programOfInterpreter(const Words& words, std::string_view name) {
    const bool isPython = name == "python" || name == "pypy";
    const std::vector<std::string_view> withValue =
        isPython ? std::vector<std::string_view>{"-W", "-X"}
                 : std::vector<std::string_view>{"-r", "--require", "-I", "--loader", "--import"};
    for (std::size_t index = 1; index < words.size();) {
        const std::string& word = words[index];
        if (!isOption(word)) return word == "-" ? std::string() : word;
        if (isPython && word == "-m") return index + 1 < words.size() ? words[index + 1] : "";
        // The program is a text on the command line itself.
        if (word == "-c" || word == "-e" || word == "--eval") return {};
        index += std::find(withValue.begin(), withValue.end(), word) == withValue.end() ? 1U : 2U;
    }
    return {};
}

std::string programOfJava(const Words& words) {
    for (std::size_t index = 1; index < words.size();) {
        const std::string& word = words[index];
        if (word == "-jar") return index + 1 < words.size() ? words[index + 1] : "";
        if (!isOption(word)) return word;
        const bool takesNext = word == "-cp" || word == "-classpath" || word == "--class-path" ||
                               word == "-p" || word == "--module-path" || word == "--add-modules";
        index += takesNext ? 2U : 1U;
    }
    return {};
}

std::string programOfFlatpak(const Words& words) {
    for (const std::string& word : words) {
        if (word.starts_with("--command=")) return word.substr(10);
    }
    return {};
}

std::string program(const Words& words, int depth) {
    // Somebody may have wrapped a wrapper, but nobody does so for ever.
    if (words.empty() || depth > 8) return {};
    const std::string name = lastPathComponent(words.front());
    if (name == "env") return programOfEnv(words, depth);
    if (name == "bwrap") {
        std::size_t index = 1;
        while (index < words.size() && isOption(words[index])) {
            if (words[index] == "--") {
                ++index;
                break;
            }
            index += 1 + sandboxOptionValues(words[index]);
        }
        return program(from(words, index), depth + 1);
    }
    if (name == "flatpak") return programOfFlatpak(words);
    if (name == "snap") {
        const std::size_t index = words.size() > 1 && words[1] == "run" ? 2 : words.size();
        return program(from(words, behindOptions(words, index, {})), depth + 1);
    }
    if (name == "nice" || name == "ionice") {
        return program(from(words, behindOptions(words, 1, {"-n", "-c"})), depth + 1);
    }
    if (isOneOf(name, starters)) {
        return program(from(words, behindOptions(words, 1, {})), depth + 1);
    }
    if (isShell(name)) return programOfShell(words, depth);
    if (name == "java") return programOfJava(words);
    if (isInterpreter(name)) return programOfInterpreter(words, withoutVersion(name));
    return words.front();
}

}  // namespace

bool isShell(std::string_view baseName) {
    return isOneOf(baseName, shells);
}

bool isInterpreter(std::string_view baseName) {
    return isShell(baseName) || baseName == "java" || isOneOf(baseName, interpreters) ||
           isOneOf(withoutVersion(baseName), interpreters);
}

Words splitCommandLine(const std::string& text) {
    gint count = 0;
    gchar** words = nullptr;
    if (g_shell_parse_argv(text.c_str(), &count, &words, nullptr) == FALSE) return {};
    Words result(words, words + count);
    g_strfreev(words);
    return result;
}

std::string programOf(const std::vector<std::string>& arguments) {
    return program(arguments, 0);
}

}  // namespace quorvel::native
