#pragma once

#include <QAccessible>

namespace quorvel {

/// What assistive technology sees of a `ScreenDiagramView`: one button for each place. Null for
/// every other object.
QAccessibleInterface* makeScreenDiagramAccessible(const QString& className, QObject* object);

}  // namespace quorvel
