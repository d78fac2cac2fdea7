#include "main/settings/Displays.hpp"

#include <algorithm>

#include "platform/Text.hpp"

namespace quorvel {
namespace {

constexpr std::string_view builtin = "builtin";

template <class Predicate>
std::optional<DisplayInfo> firstWhere(const std::vector<DisplayInfo>& in, Predicate matches) {
    const auto found = std::find_if(in.begin(), in.end(), matches);
    if (found == in.end()) return std::nullopt;
    return *found;
}

}  // namespace

std::optional<DisplayRef> DisplayRef::parse(std::string_view text) {
    std::string raw = trimmed(text);
    if (raw.empty()) return std::nullopt;
    if (lowercased(raw) == builtin) return DisplayRef{std::string(builtin)};
    return DisplayRef{std::move(raw)};
}

std::vector<DisplayInfo> Displays::attached(const Screens& screens) {
    std::vector<DisplayInfo> result;
    for (const Screen& screen : screens.screens()) {
        if (!screen.number || !screen.uuid || screen.uuid->empty()) continue;
        result.push_back(
            {DisplayRef{*screen.uuid}, screen.localizedName, screen.frameCocoa, screen.isBuiltin});
    }
    return result;
}

std::optional<DisplayInfo> Displays::resolve(const DisplayRef& ref,
                                             const std::vector<DisplayInfo>& in) {
    if (ref.raw == builtin) {
        return firstWhere(in, [](const DisplayInfo& display) { return display.isBuiltin; });
    }
    return firstWhere(in, [&ref](const DisplayInfo& display) { return display.ref == ref; });
}

}  // namespace quorvel
