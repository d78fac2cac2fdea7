#pragma once

#include <QMessageBox>
#include <memory>

#include "main/shell/Interface.hpp"

namespace quorvel {

/// A message box that shows this alert.
std::unique_ptr<QMessageBox> makeAlertBox(const Alert& alert);

/// What to return for a box that has been answered.
int alertResponse(const QMessageBox& box);

}  // namespace quorvel
