#include "scan/scanlog.h"

namespace qmr {

Q_LOGGING_CATEGORY(lcScan, "qmr.scan")

} // namespace qmr
