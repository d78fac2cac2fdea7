#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "main/settings/Settings.hpp"
#include "main/settings/SettingsLayout.hpp"
#include "main/settings/TextRecords.hpp"
#include "platform/linux/JsonDocument.hpp"

using namespace quorvel;

/// Whatever is bound and placed: every attached display has its card in its place, every other one
/// that is named has one, and each position of a card is either free or taken.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string error;
    const auto file =
        native::JsonDocument::parse({reinterpret_cast<const char*>(data), size}, error);
    if (!file) return 0;
    const auto apps = AppBinding::decode(file->value(Keys::appBindings));
    const auto placements = Placement::decode(file->value(Keys::placements));
    const auto known = textRecord(file->value(Keys::knownDisplays).value_or(Value()));
    std::map<std::string, std::string> remembered;
    if (known) remembered = {known->begin(), known->end()};
    const std::vector<DisplayInfo> attached{
        {{"PANEL-ID"}, "Panel", {0, 0, 1280, 800}, true},
        {{"MONITOR-ID"}, "Monitor", {1280, 0, 800, 600}, false}};

    const auto cards = SettingsLayout::cards(apps, placements, attached, remembered);
    const auto absent = SettingsLayout::absentRefs(placements, attached);
    if (cards.size() != attached.size() + absent.size()) std::abort();
    constexpr std::size_t positions = 7;
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const DisplayCard& card = cards[i];
        const bool isAttached = i < attached.size();
        if (card.isAttached != isAttached || card.aspect.has_value() != isAttached) std::abort();
        if (card.ref != (isAttached ? attached[i].ref.raw : absent[i - attached.size()])) {
            std::abort();
        }
        std::vector<Slot> taken;
        for (const Assignment& row : card.rows) {
            const auto& unoccupied = card.freeSlots;
            if (std::find(unoccupied.begin(), unoccupied.end(), row.slot) != unoccupied.end()) {
                std::abort();
            }
            if (row.edge.has_value() == (row.slot.position.index() == 0)) std::abort();
            if (std::find(taken.begin(), taken.end(), row.slot) == taken.end()) {
                taken.push_back(row.slot);
            }
        }
        if (taken.size() + card.freeSlots.size() != positions) std::abort();
    }
    return 0;
}
