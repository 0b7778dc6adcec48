#include "store/storelog.h"

namespace qmr {

Q_LOGGING_CATEGORY(lcStore, "qmr.store", QtWarningMsg)

} // namespace qmr
