#pragma once

#include <QString>

namespace qmr {

// The one order of names everywhere (the store's NOCASE collation, the tree, the lists, the
// template editor): as people read names, without regard to case ("école" beside "Ecole",
// before "Emma"). The order does not follow the user's locale, so a store sorts and compares
// the same on every machine. Names that differ only in case compare equal. A sort that
// compares the same names many times holds them as SortName.
int compareNames(const QString& a, const QString& b);
// A strict order for display: equal names keep a fixed order among themselves.
bool nameLess(const QString& a, const QString& b);

// The same order without the shortcut that plain names take, at the collator's cost for
// every pair.
int compareNamesByCollator(const QString& a, const QString& b);

} // namespace qmr
