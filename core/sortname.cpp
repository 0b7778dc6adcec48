#include "core/sortname.h"

#include "core/nameorder.h"

namespace qmr {

namespace {

bool isPlain(const QString& name)
{
    for (const QChar ch : name) {
        const char16_t u = ch.unicode();
        if (!((u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') ||
              u == u' '))
            return false;
    }
    return true;
}

} // namespace

SortName::SortName(const QString& text) : m_text(text), m_plain(isPlain(text))
{
}

int SortName::compare(const SortName& other) const
{
    // Plain names stand in the collator's order when compared by their lower-case letters
    // (blank, then digits, then letters), so the collator need not be asked: a sort of a large
    // found branch spent most of its time in it.
    if (m_plain && other.m_plain)
        return m_text.compare(other.m_text, Qt::CaseInsensitive);
    return compareNamesByCollator(m_text, other.m_text);
}

bool SortName::operator<(const SortName& other) const
{
    const int c = compare(other);
    return c != 0 ? c < 0 : m_text < other.m_text;
}

} // namespace qmr
