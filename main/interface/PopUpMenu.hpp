#pragma once

#include <QMenu>
#include <memory>

#include "platform/StatusBar.hpp"

namespace quorvel {

/// A menu with these entries. Their keys work while it is open.
std::unique_ptr<QMenu> makePopUpMenu(const Menu& menu);

}  // namespace quorvel
