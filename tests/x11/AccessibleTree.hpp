#pragma once

#include <string>
#include <vector>

namespace quorvel::test {

/// A widget as assistive programs see it.
struct AccessibleNode {
    std::string role;
    std::string name;

    bool operator==(const AccessibleNode&) const = default;
};

void PrintTo(const AccessibleNode& node, std::ostream* stream);

/// All that the application of this name shows on the accessibility bus of the session, parents
/// first; empty while it is not there. The toolkit takes part in it when it is started with
/// QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1.
std::vector<AccessibleNode> accessibleTree(const std::string& sessionBusAddress,
                                           const std::string& application);

}  // namespace quorvel::test
