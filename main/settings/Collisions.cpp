#include "main/settings/Collisions.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "main/settings/AppBinding.hpp"
#include "main/settings/HotZoneCorner.hpp"
#include "main/tucking/TuckEdge.hpp"
#include "platform/Text.hpp"

namespace quorvel {
namespace {

struct AcceptedEdge {
    TuckEdge edge;
    std::string_view appPath;
};

/// Windows tucked to two different corners of one side stand on opposite halves of it.
bool overlap(TuckEdge one, TuckEdge other) {
    if (one.side() != other.side()) return false;
    return !one.isCorner() || !other.isCorner() || one == other;
}

}  // namespace

std::vector<std::string> AppBinding::cornerCollisions(const std::vector<ArmedCorner>& armed) {
    // Only those in one corner of one display can collide, so only they are paired.
    using Place = std::pair<std::string_view, HotZoneCorner>;
    std::map<Place, std::vector<std::size_t>> occupants;
    std::vector<const std::vector<std::size_t>*> sharing(armed.size(), nullptr);
    for (std::size_t i = 0; i < armed.size(); ++i) {
        const auto corner = parseHotZoneCorner(armed[i].corner);
        if (!corner) continue;
        auto& here = occupants[{armed[i].display, *corner}];
        here.push_back(i);
        sharing[i] = &here;
    }

    std::vector<std::string> messages;
    // Of two applications that meet in one corner of several displays the first is enough.
    std::set<std::tuple<std::string_view, std::string_view, HotZoneCorner>> reported;
    for (std::size_t i = 0; i < armed.size(); ++i) {
        if (sharing[i] == nullptr) continue;
        const ArmedCorner& earlier = armed[i];
        const HotZoneCorner corner = *parseHotZoneCorner(earlier.corner);
        for (auto j = std::upper_bound(sharing[i]->begin(), sharing[i]->end(), i);
             j != sharing[i]->end(); ++j) {
            const ArmedCorner& later = armed[*j];
            if (later.appPath == earlier.appPath) continue;
            const auto& [first, second] = std::minmax(earlier.appPath, later.appPath);
            if (!reported.insert({first, second, corner}).second) continue;
            messages.push_back(formatted("%@: corner %@ is already used by %@ on the display %@",
                                         later.appPath, rawValue(corner), earlier.appPath,
                                         later.display));
        }
    }
    return messages;
}

std::vector<std::string> AppBinding::tuckEdgeCollisions(const std::vector<EdgeClaim>& claims) {
    std::vector<AcceptedEdge> accepted;
    std::vector<std::string> messages;
    for (const EdgeClaim& claim : claims) {
        const auto edge = TuckEdge::parse(claim.tuckEdge);
        // At the bottom an application is hidden, which takes no room.
        if (!edge || *edge == TuckEdge::bottom) continue;
        const auto holder =
            std::find_if(accepted.begin(), accepted.end(),
                         [&](const AcceptedEdge& other) { return overlap(*edge, other.edge); });
        if (holder == accepted.end()) {
            accepted.push_back({*edge, claim.appPath});
            continue;
        }
        messages.push_back(
            formatted("%@: tuck edge '%@' overlaps '%@' already used by %@ — put them on opposite "
                      "halves so the two do not collide",
                      claim.appPath, edge->rawValue(), holder->edge.rawValue(), holder->appPath));
    }
    return messages;
}

}  // namespace quorvel
