#pragma once

#include <QLoggingCategory>

namespace qmr {

// Diagnostics of reading the text on the pages that the user is not shown.
Q_DECLARE_LOGGING_CATEGORY(lcText)

} // namespace qmr
