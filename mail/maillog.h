#pragma once

#include <QLoggingCategory>

namespace qmr {

// What the mail folder does that nobody is shown (qmr.mail).
Q_DECLARE_LOGGING_CATEGORY(lcMail)

} // namespace qmr
