#include "platform/linux/JsonDefaults.hpp"

#include <algorithm>
#include <utility>

#include "platform/Text.hpp"

namespace quorvel::native {
namespace {

constexpr std::string_view fileName = "/defaults.json";

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
}

/// Nothing when JSON cannot express it; why, in `error`.
std::optional<std::string> textWith(const std::vector<DefaultsChange>& changes,
                                    JsonDocument document, std::string& error) {
    for (const auto& [key, value] : changes) {
        if (!value) {
            document.remove(key);
        } else if (!document.set(key, *value, error)) {
            return std::nullopt;
        }
    }
    return document.text();
}

}  // namespace

bool JsonDefaults::isDomainName(std::string_view name) {
    constexpr std::size_t longest = 200;
    return !name.empty() && name.size() <= longest && name.front() != '.' &&
           name.find("..") == std::string_view::npos &&
           std::all_of(name.begin(), name.end(), isNameCharacter);
}

JsonDefaults::JsonDefaults(std::string domain, const XdgFolders& folders, Log& log)
    : domain(std::move(domain)),
      configHome(folders.configHome),
      log(log),
      isUsable(isDomainName(this->domain)),
      folder(configHome + "/" + this->domain),
      own(folder + std::string(fileName)) {
    for (const std::string& data : folders.dataFolders) {
        presets.emplace_back(data + "/quorvel/presets.json");
    }
}

void JsonDefaults::refresh(File& file) const {
    if (file.stamp && file.stamp == stampOf(file.path)) return;
    file.stamp.reset();
    file.document = {};
    file.reason.clear();

    FileReading reading = readFile(file.path, JsonDocument::largest);
    switch (reading.outcome) {
        case FileReading::Outcome::absent:
            file.outcome = Outcome::absent;
            return;
        case FileReading::Outcome::failed:
            file.outcome = Outcome::failed;
            file.reason = errorText(reading.error);
            return;
        case FileReading::Outcome::tooLarge:
            file.outcome = Outcome::unreadable;
            file.reason = "too large";
            break;
        case FileReading::Outcome::read:
            if (auto document = JsonDocument::parse(reading.text, file.reason)) {
                file.outcome = Outcome::read;
                file.document = std::move(*document);
            } else {
                file.outcome = Outcome::unreadable;
            }
            break;
    }
    if (reading.isSettled) file.stamp = reading.stamp;
}

void JsonDefaults::complain(File& file, const std::string& message) const {
    if (file.complaint == message) return;
    file.complaint = message;
    log.line(message);
}

const JsonDocument& JsonDefaults::current(File& file) const {
    refresh(file);
    if (file.outcome == Outcome::unreadable || file.outcome == Outcome::failed) {
        complain(file, formatted("Quorvel: %@ cannot be read — %@", file.path, file.reason));
    } else {
        file.complaint.clear();
    }
    return file.document;
}

const JsonDocument& JsonDefaults::currentOwn() const {
    refresh(own);
    if (own.outcome != Outcome::unreadable) return current(own);
    const FileLock lock(folder + "/.lock");
    if (lock.error() != 0) {
        couldNotSetAside(lock.error());
        return own.document;
    }
    // Another process may have been faster.
    own.stamp.reset();
    refresh(own);
    if (own.outcome == Outcome::unreadable) setAsideOwn();
    return own.document;
}

void JsonDefaults::couldNotSetAside(int error) const {
    complain(own, formatted("Quorvel: %@ cannot be read — %@; it could not be set aside — %@",
                            own.path, own.reason, errorText(error)));
}

bool JsonDefaults::setAsideOwn() const {
    const SettingAside kept = native::setAside(own.path);
    if (kept.error != 0) {
        couldNotSetAside(kept.error);
        return false;
    }
    log.line(formatted("Quorvel: %@ cannot be read — %@; it is kept as %@", own.path, own.reason,
                       kept.to));
    own = File(own.path);
    return true;
}

bool JsonDefaults::areNeeded(const std::vector<DefaultsChange>& changes) const {
    if (std::any_of(changes.begin(), changes.end(),
                    [](const DefaultsChange& change) { return change.value.has_value(); })) {
        return true;
    }
    // Nothing to remove needs no folder and no lock, and succeeds where nothing can be written.
    if (!isUsable || changes.empty()) return false;
    const JsonDocument& stored = currentOwn();
    return own.outcome == Outcome::failed ||
           std::any_of(changes.begin(), changes.end(), [&stored](const DefaultsChange& change) {
               return stored.contains(change.key);
           });
}

bool JsonDefaults::update(const std::vector<DefaultsChange>& changes, std::string& error) {
    if (!isUsable) {
        error = "no valid name of a domain";
        return false;
    }
    if (const int failure = createFolder(folder); failure != 0) {
        error = errorText(failure);
        return false;
    }
    const FileLock lock(folder + "/.lock");
    if (lock.error() != 0) {
        error = errorText(lock.error());
        return false;
    }
    own.stamp.reset();
    refresh(own);
    if (own.outcome == Outcome::failed || (own.outcome == Outcome::unreadable && !setAsideOwn())) {
        error = own.reason;
        return false;
    }

    const auto text = textWith(changes, own.document, error);
    if (!text) return false;
    if (text->size() > JsonDocument::largest) {
        error = "too large";
        return false;
    }
    if (const int failure = replaceFile(linkDestination(own.path), *text); failure != 0) {
        error = errorText(failure);
        return false;
    }
    own.stamp.reset();
    return true;
}

std::optional<Value> JsonDefaults::object(std::string_view key) const {
    if (!isUsable) return std::nullopt;
    return currentOwn().value(key);
}

bool JsonDefaults::apply(const std::vector<DefaultsChange>& changes) {
    if (!areNeeded(changes)) return true;
    std::string error;
    if (update(changes, error)) return true;
    std::vector<std::string> keys;
    for (const DefaultsChange& change : changes) keys.push_back(change.key);
    log.line(
        formatted("Quorvel: could not store %@ in %@ — %@", joined(keys, ", "), own.path, error));
    return false;
}

bool JsonDefaults::areTooLarge(const std::vector<DefaultsChange>& changes) const {
    if (!isUsable) return false;
    const JsonDocument& stored = currentOwn();
    if (own.outcome != Outcome::read && own.outcome != Outcome::absent) return false;
    std::string error;
    const auto text = textWith(changes, stored, error);
    return text && text->size() > JsonDocument::largest;
}

Value::Dictionary JsonDefaults::persistentDomain(std::string_view name) const {
    if (!isDomainName(name)) return {};
    if (name == domain) return currentOwn().values();
    File other(configHome + "/" + std::string(name) + std::string(fileName));
    return current(other).values();
}

std::optional<Value> JsonDefaults::preset(std::string_view key) const {
    for (File& file : presets) {
        if (auto value = current(file).value(key)) return value;
    }
    return std::nullopt;
}

}  // namespace quorvel::native
