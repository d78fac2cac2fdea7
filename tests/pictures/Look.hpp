#pragma once

#include <QPalette>
#include <QString>
#include <vector>

namespace quorvel::pictures {

/// A palette that desktops have.
struct Look {
    QString name;
    QPalette palette;
};

/// The toolkit's own light one, and a common dark one.
std::vector<Look> looks();

/// Makes the application look like that, as when the user of a desktop changes its colours.
void wear(const Look& look);

/// The other one.
void wearOther();

}  // namespace quorvel::pictures
