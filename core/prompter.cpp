#include "core/prompter.h"

namespace qmr {

QString Prompter::caption()
{
    return QStringLiteral("Quillmere");
}

} // namespace qmr
