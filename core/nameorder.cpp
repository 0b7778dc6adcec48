#include "core/nameorder.h"

#include <QCollator>

#include "core/sortname.h"

namespace qmr {

namespace {

const QCollator& collator()
{
    // One per thread: a collator is reentrant, not thread-safe.
    thread_local const QCollator c = [] {
        QCollator made(QLocale(QLocale::English, QLocale::UnitedStates));
        made.setCaseSensitivity(Qt::CaseInsensitive);
        made.setNumericMode(false);
        return made;
    }();
    return c;
}

} // namespace

int compareNames(const QString& a, const QString& b)
{
    return SortName(a).compare(SortName(b));
}

bool nameLess(const QString& a, const QString& b)
{
    return SortName(a) < SortName(b);
}

int compareNamesByCollator(const QString& a, const QString& b)
{
    const int c = collator().compare(a, b);
    if (c != 0)
        return c;
    // The collator may call different texts equal (accents at its level of strength, say);
    // names that differ in more than case are different names.
    return a.compare(b, Qt::CaseInsensitive);
}

} // namespace qmr
