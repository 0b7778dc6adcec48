#pragma once

#include <QString>

#include "core/level.h"

namespace qmr {

// Where a level lives in the store.
struct ItemTable
{
    const char* table;
    const char* idColumn;
    const char* parentColumn; // "" for cabinets

    static const ItemTable& of(Level level);
    QString name() const { return QLatin1String(table); }
    QString id() const { return QLatin1String(idColumn); }
    QString parent() const { return QLatin1String(parentColumn); }
};

} // namespace qmr
