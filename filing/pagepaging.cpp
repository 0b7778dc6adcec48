#include "filing/pagepaging.h"

#include <QCoreApplication>
#include <QtGlobal>

namespace qmr {

void PagePaging::load(int pageCount)
{
    m_pageCount = qMax(0, pageCount);
    m_viewBase = 1;
    m_viewFirst = 1;
}

void PagePaging::clear()
{
    m_pageCount = 0;
    m_viewBase = 0;
    m_viewFirst = 0;
}

void PagePaging::setDisplayCount(int count)
{
    m_displayCount = qBound(kMinDisplayCount, count, kMaxDisplayCount);
}

int PagePaging::viewLast() const
{
    return qMin(m_viewFirst + m_displayCount - 1, m_pageCount);
}

int PagePaging::blocks() const
{
    // The count divided by the block size, rounded to the nearest (halves to even), and one
    // more when that leaves entries over.
    const int whole = m_pageCount / m_displayCount;
    const int twice = 2 * (m_pageCount % m_displayCount);
    int blocks = whole;
    if (twice > m_displayCount || (twice == m_displayCount && whole % 2 == 1))
        ++blocks;
    if (blocks * m_displayCount < m_pageCount)
        ++blocks;
    return blocks;
}

int PagePaging::currentBlock() const
{
    const int n = blocks();
    for (int i = 1; i <= n; ++i)
        if ((i - 1) * m_displayCount + 1 <= m_viewFirst && m_viewFirst <= i * m_displayCount)
            return i;
    return 0;
}

QString PagePaging::statusText() const
{
    // An empty document says in its list how pages arrive; the line has nothing to add.
    if (m_pageCount == 0)
        return QString();
    return QCoreApplication::translate("qmr::PagePaging", " Showing %1 images (page %2 of %3)")
        .arg(m_displayCount)
        .arg(currentBlock())
        .arg(blocks());
}

bool PagePaging::first()
{
    m_viewFirst = 1;
    return true;
}

bool PagePaging::prev()
{
    if (m_viewFirst <= m_viewBase)
        return false;
    // A block of one would otherwise never move back.
    m_viewFirst = qMax(m_viewBase, m_viewFirst - qMax(1, m_displayCount - 1));
    return true;
}

bool PagePaging::next()
{
    if (viewLast() >= m_pageCount)
        return false;
    m_viewFirst = viewLast() + 1;
    return true;
}

bool PagePaging::last()
{
    m_viewFirst = m_pageCount - m_displayCount + 1;
    if (m_viewFirst < m_viewBase)
        m_viewFirst = 1;
    return true;
}

void PagePaging::showEntry(int index)
{
    if (index < 1 || index > m_pageCount)
        return;
    m_viewFirst = (index - 1) / m_displayCount * m_displayCount + 1;
}

bool PagePaging::changeDisplayCount(int delta)
{
    setDisplayCount(m_displayCount + delta);
    return true;
}

} // namespace qmr
