#pragma once

#include <QHash>
#include <QVector>

#include "scan/sanelibrary.h"
#include "scan/scansource.h"

namespace qmr {

// The options of an open SANE device as the program describes them: groups, types, units,
// constraints and the values that can be read.
class SaneOptionReader
{
public:
    // `device` is the open SANE handle; `index` (when given) receives each option's number
    // by name, the first of a name winning.
    static QVector<ScanOption> read(SaneLibrary& library, SANE_Handle device,
                                    QHash<QString, int>* index);
};

} // namespace qmr
