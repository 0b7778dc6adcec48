#pragma once

#include <QString>

namespace qmr {

// The one order of names everywhere (the store's NOCASE collation, the tree, the lists, the
// template editor): as people read names, without regard to case ("école" beside "Ecole",
// before "Emma"). The order does not follow the user's locale, so a store sorts and compares
// the same on every machine. Names that differ only in case compare equal.
int compareNames(const QString& a, const QString& b);
// A strict order for display: equal names keep a fixed order among themselves.
bool nameLess(const QString& a, const QString& b);

// A name of ASCII letters, digits and blanks alone. Such names are ordered by their lower-case
// letters, which costs a fraction of the general order; a sort of many names asks this once a
// name and passes the answer to the forms below.
bool isPlainName(const QString& name);
int compareNames(const QString& a, bool aPlain, const QString& b, bool bPlain);
bool nameLess(const QString& a, bool aPlain, const QString& b, bool bPlain);

} // namespace qmr
