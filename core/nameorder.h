#pragma once

#include <QString>

namespace qmr {

// The one order of names everywhere (the store's NOCASE collation, the tree, the template
// editor): without regard to case, beyond ASCII too; names that differ only in case keep a
// fixed order among themselves.
inline int compareNames(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive);
}

inline bool nameLess(const QString& a, const QString& b)
{
    const int c = compareNames(a, b);
    return c != 0 ? c < 0 : a < b;
}

} // namespace qmr
