#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace quorvel::Symbols {

/// One of the small drawings in the folder `symbols`, by its name ("plus"), in one colour. It stays
/// sharp at every size and scale; an empty icon where there is no such drawing.
QIcon symbol(const QString& name, const QColor& colour);

}  // namespace quorvel::Symbols
