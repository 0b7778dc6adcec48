#pragma once

#include <QLoggingCategory>

namespace qmr {

// What scanning does that the person is not shown (a device left behind, for instance).
Q_DECLARE_LOGGING_CATEGORY(lcScan)

} // namespace qmr
