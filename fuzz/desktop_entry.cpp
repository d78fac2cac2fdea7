#include <glib.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/Lines.hpp"
#include "platform/linux/DesktopEntryFile.hpp"
#include "platform/linux/GlibTypes.hpp"
#include "platform/linux/ProgramName.hpp"

using namespace quorvel;
using fuzz::require;
using native::DesktopEntry;
using native::takeText;

namespace {

std::optional<DesktopEntry> parsed(std::string_view text) {
    return native::parseDesktopEntry(text, "/apps/a.desktop", "a.desktop");
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        constexpr std::string_view special = " \n\t\r\\";
        const std::size_t which = special.find(c);
        if (which == std::string_view::npos) {
            result += c;
        } else {
            result += {'\\', "sntr\\"[which]};
        }
    }
    return result;
}

std::string withoutSpaceBehind(const std::string& text) {
    return text.substr(0, text.find_last_not_of(" \t\r\n\f") + 1);
}

/// The entry written anew says the same.
void checkRoundTrip(const DesktopEntry& entry) {
    // No escape keeps these where a value begins and ends.
    const std::string both = entry.startupWMClass + entry.tryExec;
    if (both.find('\f') != std::string::npos) return;
    const bool hasExec = !entry.command.empty();
    const std::string quoted = hasExec ? takeText(g_shell_quote(entry.command.c_str())) : "";
    const auto again = parsed(
        "[Desktop Entry]\nType=Application\nStartupWMClass=" + escaped(entry.startupWMClass) +
        "\nTryExec=" + escaped(entry.tryExec) + "\nExec=" + escaped(quoted) +
        "\nNoDisplay=" + (entry.isShown ? "false" : "true"));
    require(again.has_value());
    require(again->startupWMClass == entry.startupWMClass && again->tryExec == entry.tryExec);
    require(again->isShown == entry.isShown && again->command == entry.command);
    require(again->program == native::programOf(native::splitCommandLine(quoted)));
}

/// What the library that launches and shows applications can read is read as it does.
void checkAgainstLibrary(std::string_view text, const std::optional<DesktopEntry>& entry) {
    constexpr const char* group = "Desktop Entry";
    constexpr std::string_view opened = "[Desktop Entry";
    // Where it expects a character it takes whatever bytes look like one. No zeros, either.
    // A carriage return it takes away only in front of a newline.
    const std::string whole = std::string(text) + "\n";
    if (g_utf8_validate(whole.data(), static_cast<gssize>(whole.size()), nullptr) == FALSE) return;
    // There the group may go on further down.
    if (text.find(opened) != text.rfind(opened)) return;
    const native::OwnedKeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(file.get(), whole.data(), whole.size(), G_KEY_FILE_NONE,
                                  nullptr) == FALSE ||
        takeText(g_key_file_get_start_group(file.get())) != group) {
        return;
    }
    const auto raw = [&](const char* key) {
        return withoutSpaceBehind(takeText(g_key_file_get_value(file.get(), group, key, nullptr)));
    };
    const auto isTrue = [&](const char* key) {
        return g_key_file_get_boolean(file.get(), group, key, nullptr) != FALSE;
    };
    require(entry.has_value() == (raw("Type") == "Application" && !isTrue("Hidden")));
    if (!entry) return;
    require(entry->isShown != isTrue("NoDisplay"));
    // Nothing where the library finds fault with an escape, even if it gives what it has got.
    const auto textOf = [&](const char* key) -> std::optional<std::string> {
        GError* error = nullptr;
        const native::OwnedText value(g_key_file_get_string(file.get(), group, key, &error));
        const native::OwnedError owner(error);
        return value && error == nullptr ? std::optional<std::string>(value.get()) : std::nullopt;
    };
    const auto isSame = [&](const char* key, const std::string& ours) {
        const auto theirs = textOf(key);
        return !theirs || withoutSpaceBehind(*theirs) == withoutSpaceBehind(ours);
    };
    require(isSame("StartupWMClass", entry->startupWMClass));
    require(isSame("TryExec", entry->tryExec));
    if (const auto exec = textOf("Exec")) {
        const auto words = native::splitCommandLine(*exec);
        require(entry->command == (words.empty() ? "" : words.front()));
        require(entry->program == native::programOf(words));
    }
}

}  // namespace

/// Any text is taken; what is read of it survives being written, and is what others read of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto entry = parsed(text);
    require(entry == parsed(text));
    checkAgainstLibrary(text, entry);
    if (!entry) return 0;
    require(entry->path == "/apps/a.desktop" && entry->id == "a.desktop");
    for (const std::string& value :
         {entry->startupWMClass, entry->tryExec, entry->command, entry->program}) {
        require(value.size() <= size);
    }
    checkRoundTrip(*entry);
    return 0;
}
