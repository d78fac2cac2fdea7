#include "main/settings/Settings.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "main/settings/TextRecords.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

constexpr int defaultDwell = 300;
constexpr int longestDwell = 60000;

/// A whole decimal number with at most one sign and nothing else.
std::optional<std::int64_t> integerFrom(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

/// The shortest text that reads back as the same number; whole numbers have no fraction.
std::string numberText(double number) {
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), result.ptr};
}

bool isBlank(const std::string* text) {
    return !text || trimmed(*text).empty();
}

}  // namespace

int hotZoneDwellMilliseconds(const std::optional<Value>& from) {
    const auto clampedInteger = [](std::int64_t number) {
        return static_cast<int>(std::clamp<std::int64_t>(number, 0, longestDwell));
    };
    if (!from) return defaultDwell;
    if (const auto* number = from->integer()) return clampedInteger(*number);
    if (const auto* number = from->real()) {
        // Clamped before the conversion, which is undefined for a number that does not fit.
        if (std::isnan(*number)) return defaultDwell;
        return static_cast<int>(std::clamp<double>(*number, 0, longestDwell));
    }
    if (const auto* text = from->text()) {
        const auto number = integerFrom(trimmed(*text));
        return number ? clampedInteger(*number) : defaultDwell;
    }
    return defaultDwell;
}

Settings::Settings(Defaults& defaults)
    : Settings(defaults, [&defaults](std::string_view key) { return defaults.preset(key); }) {}

Settings::Settings(Defaults& defaults, BundleValue bundleValue)
    : defaults(&defaults), bundleValue(std::move(bundleValue)) {}

std::vector<AppBinding> Settings::appBindings() const {
    return AppBinding::decode(objectOrBundleValue(Keys::appBindings));
}

std::vector<Placement> Settings::placements() const {
    return Placement::decode(objectOrBundleValue(Keys::placements));
}

std::map<std::string, std::string> Settings::knownDisplays() const {
    const std::optional<Value> stored = defaults->object(Keys::knownDisplays);
    const auto record = stored ? textRecord(*stored) : std::nullopt;
    if (!record) return {};
    return {record->begin(), record->end()};
}

int Settings::hotZoneDwellMs() const {
    return hotZoneDwellMilliseconds(objectOrBundleValue(Keys::hotZoneDwellMs));
}

std::optional<std::string> Settings::tuckAnimation() const {
    return resolvedString(Keys::tuckAnimation);
}

bool Settings::boolForKey(std::string_view key) const {
    const std::optional<Value> stored = defaults->object(key);
    if (!stored) return false;
    if (const auto* boolean = stored->boolean()) return *boolean;
    if (const auto* integer = stored->integer()) return *integer != 0;
    if (const auto* real = stored->real()) return *real != 0;
    if (const auto* text = stored->text()) {
        const std::string word = lowercased(*text);
        return word == "yes" || word == "true" || word == "1";
    }
    return false;
}

std::optional<std::string> Settings::textForKey(std::string_view key) const {
    const std::optional<Value> stored = defaults->object(key);
    if (!stored) return std::nullopt;
    if (const auto* text = stored->text()) return *text;
    if (const auto* boolean = stored->boolean()) return *boolean ? "1" : "0";
    if (const auto* integer = stored->integer()) return std::to_string(*integer);
    if (const auto* real = stored->real()) return numberText(*real);
    return std::nullopt;
}

bool Settings::setAppBindings(const std::vector<AppBinding>& list) const {
    return defaults->setObject(Keys::appBindings, AppBinding::encode(list));
}

bool Settings::setPlacements(const std::vector<Placement>& list) const {
    return defaults->setObject(Keys::placements, Placement::encode(list));
}

bool Settings::setKnownDisplays(const std::map<std::string, std::string>& displays) const {
    return defaults->setObject(Keys::knownDisplays,
                               Value::Dictionary(displays.begin(), displays.end()));
}

bool Settings::restoreDefaults() const {
    constexpr std::array keys{Keys::hotZoneDwellMs, Keys::tuckAnimation, Keys::appBindings,
                              Keys::placements,     Keys::knownDisplays, Keys::targetAppPath,
                              Keys::hotKey,         Keys::hotZone,       Keys::tuckEdge,
                              Keys::tuckAuto};
    std::vector<DefaultsChange> removals;
    for (const std::string_view key : keys) removals.push_back({std::string(key), std::nullopt});
    return defaults->apply(removals);
}

std::optional<Value> Settings::objectOrBundleValue(std::string_view key) const {
    std::optional<Value> stored = defaults->object(key);
    return stored ? stored : bundleValue(key);
}

std::optional<std::string> Settings::resolvedString(std::string_view key) const {
    const std::optional<Value> stored = defaults->object(key);
    if (stored && !isBlank(stored->text())) return *stored->text();
    const std::optional<Value> preset = bundleValue(key);
    if (preset && !isBlank(preset->text())) return *preset->text();
    return std::nullopt;
}

}  // namespace quorvel
