#pragma once

#include <QLoggingCategory>

namespace qmr {

// Diagnostics of exports and imports that the user is not shown (what the report already
// says in words, and what the home's tidying puts right later).
Q_DECLARE_LOGGING_CATEGORY(lcExchange)

} // namespace qmr
