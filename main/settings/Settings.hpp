#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/Placement.hpp"
#include "platform/Defaults.hpp"
#include "platform/Value.hpp"

namespace quorvel {

/// The keys of the preferences domain.
namespace Keys {
inline constexpr std::string_view appBindings = "AppBindings";
inline constexpr std::string_view placements = "Placements";
inline constexpr std::string_view knownDisplays = "KnownDisplays";
inline constexpr std::string_view hotZoneDwellMs = "HotZoneDwellMs";
inline constexpr std::string_view tuckAnimation = "TuckAnimation";
inline constexpr std::string_view didOfferLoginItem = "DidOfferLoginItem";
inline constexpr std::string_view didFlattenPlacements = "DidFlattenPlacements";
inline constexpr std::string_view didMigrateLegacySettings = "DidMigrateLegacySettings";
// Earlier versions knew one application only; these are read once and removed.
inline constexpr std::string_view targetAppPath = "TargetAppPath";
inline constexpr std::string_view hotKey = "HotKey";
inline constexpr std::string_view hotZone = "HotZone";
inline constexpr std::string_view tuckEdge = "TuckEdge";
inline constexpr std::string_view tuckAuto = "TuckAuto";
}  // namespace Keys

/// Milliseconds in 0…60000 from a stored value of any kind: a number without its fraction, or a
/// text that is a whole number; 300 for everything else. Booleans are never numbers.
int hotZoneDwellMilliseconds(const std::optional<Value>& from);

/// The one gateway to the preferences. A small value over a store that must outlive it; every
/// getter reads afresh, nothing fails: what cannot be read gives the fallback.
struct Settings {
    using BundleValue = std::function<std::optional<Value>(std::string_view key)>;

    Defaults* defaults;       ///< never null; all writes go here
    BundleValue bundleValue;  ///< asked where the domain has no object for a key at all

    /// Presets of the store's own desktop.
    explicit Settings(Defaults& defaults);
    Settings(Defaults& defaults, BundleValue bundleValue);

    std::vector<AppBinding> appBindings() const;
    std::vector<Placement> placements() const;
    std::map<std::string, std::string> knownDisplays() const;
    int hotZoneDwellMs() const;
    std::optional<std::string> tuckAnimation() const;

    /// A boolean itself, a number that is not 0, or "YES", "true" or "1" in any case; false for
    /// everything else.
    bool boolForKey(std::string_view key) const;
    /// Texts, and numbers as their text; a boolean is the number 1 or 0.
    std::optional<std::string> textForKey(std::string_view key) const;

    /// False when the store refused.
    bool setAppBindings(const std::vector<AppBinding>& list) const;
    bool setPlacements(const std::vector<Placement>& list) const;
    bool setKnownDisplays(const std::map<std::string, std::string>& displays) const;

    /// Removes everything but the three markers, so that neither migration nor flattening runs
    /// again. False when the store refused; then all is as it was.
    bool restoreDefaults() const;

private:
    std::optional<Value> objectOrBundleValue(std::string_view key) const;
    std::optional<std::string> resolvedString(std::string_view key) const;
};

}  // namespace quorvel
