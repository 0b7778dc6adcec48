#include "exchange/exchangelog.h"

namespace qmr {

Q_LOGGING_CATEGORY(lcExchange, "qmr.exchange", QtWarningMsg)

} // namespace qmr
