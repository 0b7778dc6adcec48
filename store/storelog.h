#pragma once

#include <QLoggingCategory>

namespace qmr {

// Diagnostics of the store and its files that the user is not shown.
Q_DECLARE_LOGGING_CATEGORY(lcStore)

} // namespace qmr
