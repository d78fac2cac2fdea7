#pragma once

#include "platform/Trust.hpp"

namespace quorvel::AXPermission {

/// Tells the user what is missing and opens the place to give it, where the desktop has one.
void promptAndOpenSettings(Trust& trust);

}  // namespace quorvel::AXPermission
