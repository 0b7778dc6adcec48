#include "text/textlog.h"

namespace qmr {

Q_LOGGING_CATEGORY(lcText, "qmr.text", QtWarningMsg)

} // namespace qmr
