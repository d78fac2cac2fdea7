#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "main/settings/Flatten.hpp"
#include "main/settings/PlacementIndex.hpp"
#include "platform/linux/JsonDocument.hpp"

using namespace quorvel;

/// Whatever the file of an earlier version holds: what was placed stays, every application is
/// placed on every attached display, and what comes out would not change again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string error;
    const auto file =
        native::JsonDocument::parse({reinterpret_cast<const char*>(data), size}, error);
    if (!file) return 0;
    const auto text = [&](std::string_view key) -> std::optional<std::string> {
        const auto value = file->value(key);
        return value && value->text() ? std::optional(*value->text()) : std::nullopt;
    };
    const std::vector<DisplayInfo> attached{
        {{"PANEL-ID"}, "Panel", {0, 0, 1280, 800}, true},
        {{"MONITOR-ID"}, "Monitor", {1280, 0, 800, 600}, false}};
    const std::vector<Placement> before = Placement::decode(file->value(Keys::placements));
    const Flatten::Stored stored{text(Keys::targetAppPath), text(Keys::hotKey),
                                 text(Keys::hotZone),       text(Keys::tuckEdge),
                                 text(Keys::tuckAuto),      file->value(Keys::appBindings)};

    const Flatten::Plan plan = Flatten::plan(false, stored, before, attached, "/home/user");
    if (!plan.setMarker || plan.retiredKeys.size() != Flatten::retiredKeys.size()) std::abort();
    if (plan.placements.size() < before.size()) std::abort();
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (plan.placements[i] != before[i]) std::abort();
    }
    const PlacementIndex placed(plan.placements);
    for (const AppBinding& binding : plan.bindings) {
        for (const DisplayInfo& display : attached) {
            if (placed.matching(binding.appPath, display) == nullptr) std::abort();
        }
    }

    if (AppBinding::decode(AppBinding::encode(plan.bindings)) != plan.bindings) std::abort();
    Flatten::Stored again;
    again.rawBindings = AppBinding::encode(plan.bindings);
    Flatten::Plan second = Flatten::plan(false, again, plan.placements, attached, "/home/user");
    if (second != plan) std::abort();
    return 0;
}
