#include "main/shell/SettingsUpgrade.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "main/settings/Displays.hpp"
#include "main/settings/Flatten.hpp"
#include "main/settings/Migration.hpp"
#include "platform/Text.hpp"

namespace quorvel::SettingsUpgrade {
namespace {

/// Strictly: a text that only reads like it is none.
bool isMigrated(const Defaults& defaults) {
    const auto marker = defaults.object(Keys::didMigrateLegacySettings);
    return marker == Value(true);
}

/// The retired keys do not count: with them alone there is room for an import.
bool isOccupied(const Defaults& defaults) {
    constexpr std::array keys{Keys::hotZoneDwellMs, Keys::tuckAnimation, Keys::appBindings,
                              Keys::placements, Keys::knownDisplays};
    return std::any_of(keys.begin(), keys.end(),
                       [&](std::string_view key) { return defaults.object(key).has_value(); });
}

Migration::Source sourceOf(std::string_view domain, const Value::Dictionary& content) {
    Migration::Source source{std::string(domain), {}};
    for (const auto& entry : content) source.keysPresent.push_back(entry.first);
    return source;
}

}  // namespace

bool migrate(Defaults& defaults, Log& log) {
    const bool markerSet = isMigrated(defaults);
    const bool occupied = !markerSet && isOccupied(defaults);

    std::vector<Value::Dictionary> contents;
    std::vector<Migration::Source> sources;
    if (!markerSet && !occupied) {
        for (const std::string_view domain : Migration::earlierDomains) {
            contents.push_back(defaults.persistentDomain(domain));
            sources.push_back(sourceOf(domain, contents.back()));
        }
    }
    for (;;) {
        const Migration::Plan plan = Migration::plan(markerSet, occupied, sources);
        std::vector<DefaultsChange> changes;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (plan.source != sources[i].domain) continue;
            for (const std::string& key : plan.keys) changes.push_back({key, contents[i].at(key)});
        }
        if (plan.setMarker) {
            changes.push_back({std::string(Keys::didMigrateLegacySettings), Value(true)});
        }
        if (defaults.apply(changes)) {
            if (plan.source) {
                log.line(formatted("Quorvel: migrated %d setting(s) from %@", plan.keys.size(),
                                   *plan.source));
            }
            return true;
        }
        if (!plan.source || !defaults.areTooLarge(changes)) return false;
        // It would be at every launch.
        for (Migration::Source& source : sources) {
            if (plan.source == source.domain) source.keysPresent.clear();
        }
    }
}

void flatten(const Settings& settings, const Screens& screens, const Files& files, Log& log) {
    if (settings.boolForKey(Keys::didFlattenPlacements)) return;
    const Flatten::Stored stored{
        settings.textForKey(Keys::targetAppPath), settings.textForKey(Keys::hotKey),
        settings.textForKey(Keys::hotZone),       settings.textForKey(Keys::tuckEdge),
        settings.textForKey(Keys::tuckAuto),      settings.defaults->object(Keys::appBindings)};
    const std::vector<DisplayInfo> attached = Displays::attached(screens);
    const Flatten::Plan plan =
        Flatten::plan(false, stored, settings.placements(), attached, files.homeDirectory());

    std::vector<DefaultsChange> changes{
        {std::string(Keys::appBindings), AppBinding::encode(plan.bindings)},
        {std::string(Keys::placements), Placement::encode(plan.placements)}};
    for (const std::string& key : plan.retiredKeys) changes.push_back({key, std::nullopt});
    changes.push_back({std::string(Keys::didFlattenPlacements), Value(true)});
    if (!settings.defaults->apply(changes)) return;

    std::vector<std::string> names;
    for (const DisplayInfo& display : attached) names.push_back(display.name);
    log.line(
        formatted("Quorvel: flattened settings — %d app(s), %d placement(s), %d retired "
                  "key(s) removed; materialised onto %@",
                  plan.bindings.size(), plan.placements.size(), plan.retiredKeys.size(),
                  joined(names, ", ")));
    for (const auto& [identifier, name] : settings.knownDisplays()) {
        const bool isAttached =
            std::any_of(attached.begin(), attached.end(),
                        [&](const DisplayInfo& display) { return display.ref.raw == identifier; });
        if (isAttached) continue;
        log.line(
            formatted("Quorvel: flatten — display %@ (%@) was not attached; nothing was "
                      "materialised for it — set its corners in Settings when it returns",
                      name, identifier));
    }
}

}  // namespace quorvel::SettingsUpgrade
