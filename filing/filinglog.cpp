#include "filing/filinglog.h"

namespace qmr {

Q_LOGGING_CATEGORY(lcFiling, "qmr.filing", QtWarningMsg)

} // namespace qmr
