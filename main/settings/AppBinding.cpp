#include "main/settings/AppBinding.hpp"

#include "main/settings/TextRecords.hpp"
#include "main/shortcuts/HotKeySpec.hpp"
#include "platform/Text.hpp"

namespace quorvel {

std::vector<AppBinding> AppBinding::decode(const std::optional<Value>& value) {
    std::vector<AppBinding> list;
    for (const TextRecord& record : textRecords(value)) {
        if (!hasAppPath(record)) continue;
        list.push_back({fieldOf(record, "appPath", ""), fieldOf(record, "hotKey", "none"),
                        fieldOf(record, "autoTuck", "false")});
    }
    return list;
}

Value AppBinding::encode(const std::vector<AppBinding>& list) {
    Value::Array records;
    records.reserve(list.size());
    for (const AppBinding& binding : list) {
        records.emplace_back(Value::Dictionary{{"appPath", binding.appPath},
                                               {"hotKey", binding.hotKey},
                                               {"autoTuck", binding.autoTuck}});
    }
    return records;
}

AppBinding::Validation AppBinding::validated(const std::vector<AppBinding>& list) {
    Validation result;
    for (const AppBinding& binding : list) {
        if (binding.hasNoHotKey() || HotKeySpec::parse(binding.hotKey)) {
            result.kept.push_back(binding);
        } else {
            result.dropped.push_back(
                formatted("%@: unusable hotkey '%@'", binding.appPath, binding.hotKey));
        }
    }
    return result;
}

bool AppBinding::hasNoHotKey() const {
    return lowercased(hotKey) == "none";
}

}  // namespace quorvel
