#include "main/tucking/AXPermission.hpp"

namespace quorvel::AXPermission {

void promptAndOpenSettings(Trust& trust) {
    trust.isTrustedWithPrompt();
    trust.openSettingsPane();
}

}  // namespace quorvel::AXPermission
