#pragma once

#include <QHash>
#include <QString>
#include <functional>

namespace qmr {

// Menu entry names (objectNames such as "mnuPopupPageOpen") and what they run. Each feature's
// commands object adds its own entries; an entry nobody fills stands disabled in the menus.
using CommandTable = QHash<QString, std::function<void()>>;

} // namespace qmr
