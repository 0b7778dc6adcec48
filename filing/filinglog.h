#pragma once

#include <QLoggingCategory>

namespace qmr {

// Diagnostics of the filing work that the user is not shown (a thumbnail that could not be
// written is made again when it is missed, so it is only logged).
Q_DECLARE_LOGGING_CATEGORY(lcFiling)

} // namespace qmr
