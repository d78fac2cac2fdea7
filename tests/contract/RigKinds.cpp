#include <ostream>

#include "tests/contract/Rig.hpp"

namespace quorvel::test {

void PrintTo(const RigKind& kind, std::ostream* out) {
    *out << kind.name;
}

std::vector<RigKind> operator+(std::vector<RigKind> kinds, const RigKind& more) {
    kinds.push_back(more);
    return kinds;
}

}  // namespace quorvel::test
