#pragma once

#include <QIcon>

namespace qmr {

// The application's own icon, at every size it is drawn in; every window shows it.
class AppIcon
{
public:
    static QIcon icon();
    static QList<int> sizes();
};

} // namespace qmr
