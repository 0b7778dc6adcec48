#include "core/nameorder.h"

#include <QCollator>

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

bool isPlainName(const QString& name)
{
    for (const QChar ch : name) {
        const char16_t u = ch.unicode();
        if (!((u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') ||
              u == u' '))
            return false;
    }
    return true;
}

int compareNames(const QString& a, const QString& b)
{
    return compareNames(a, isPlainName(a), b, isPlainName(b));
}

int compareNames(const QString& a, bool aPlain, const QString& b, bool bPlain)
{
    // Plain names stand in the collator's order when compared by their lower-case letters
    // (blank, then digits, then letters), so the collator need not be asked: a sort of a large
    // found branch spent most of its time in it.
    if (aPlain && bPlain)
        return a.compare(b, Qt::CaseInsensitive);
    const int c = collator().compare(a, b);
    if (c != 0)
        return c;
    // The collator may call different texts equal (accents at its level of strength, say);
    // names that differ in more than case are different names.
    return a.compare(b, Qt::CaseInsensitive);
}

bool nameLess(const QString& a, const QString& b)
{
    return nameLess(a, isPlainName(a), b, isPlainName(b));
}

bool nameLess(const QString& a, bool aPlain, const QString& b, bool bPlain)
{
    const int c = compareNames(a, aPlain, b, bPlain);
    return c != 0 ? c < 0 : a < b;
}

} // namespace qmr
