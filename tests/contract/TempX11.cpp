#include "tests/contract/Rig.hpp"
namespace quorvel::test {
RigKind bareRig(){return {"bare", simulatedRig().make};}
RigKind hotPlugRig(){return {"hotplug", simulatedRig().make};}
std::vector<RigKind> windowManagerRigs(){return {};}
}
