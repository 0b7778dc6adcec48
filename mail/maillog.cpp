#include "mail/maillog.h"

namespace qmr {

// Debug lines only when asked for: QT_LOGGING_RULES="qmr.mail.debug=true".
Q_LOGGING_CATEGORY(lcMail, "qmr.mail", QtInfoMsg)

} // namespace qmr
