#include "viewer/matchmarks.h"

#include <QSet>

#include "store/pagestore.h"
#include "store/textindex.h"

namespace qmr {

void MatchMarks::setWords(const PageWords& words)
{
    m_words = words;
    m_documentId = -1;
    m_order.clear();
    m_pages.clear();
    m_boxes.clear();
    m_current = -1;
}

void MatchMarks::load(Database& store, const PageStore& pages, qint32 documentId, qint32 pageId,
                      const QString& file, int box)
{
    m_pageId = pageId;
    m_boxes.clear();
    m_current = -1;
    if (m_words.isEmpty())
        return;
    if (documentId != m_documentId) {
        // Read once a document: the pages in the order a person turns them.
        m_documentId = documentId;
        m_order.clear();
        m_pages.clear();
        const QList<qint32> holding = TextIndex::pagesWith(store, documentId, m_words);
        const QSet<qint32> holds(holding.cbegin(), holding.cend());
        for (const PageRow& row : pages.pages(documentId)) {
            m_order << row.id;
            if (holds.contains(row.id))
                m_pages << row.id;
        }
    }
    m_boxes = TextIndex::boxesOf(store, pageId, file, m_words);
    setCurrent(box < 0 ? int(m_boxes.size()) - 1 : box);
}

void MatchMarks::setCurrent(int box)
{
    m_current = m_boxes.isEmpty() ? -1 : qBound(0, box, int(m_boxes.size()) - 1);
}

std::optional<qint32> MatchMarks::pageFrom(int by) const
{
    // A page in view that holds no match (reached with the page buttons) counts by its place
    // in the document.
    const qsizetype at = m_order.indexOf(m_pageId);
    if (at < 0)
        return std::nullopt;
    for (qsizetype i = at + by; i >= 0 && i < m_order.size(); i += by)
        if (m_pages.contains(m_order.at(i)))
            return m_order.at(i);
    return std::nullopt;
}

std::optional<MatchMarks::Step> MatchMarks::next() const
{
    if (m_current >= 0 && m_current + 1 < m_boxes.size())
        return Step{m_pageId, m_current + 1};
    if (const std::optional<qint32> page = pageFrom(1))
        return Step{*page, 0};
    return std::nullopt;
}

std::optional<MatchMarks::Step> MatchMarks::previous() const
{
    if (m_current > 0)
        return Step{m_pageId, m_current - 1};
    if (const std::optional<qint32> page = pageFrom(-1))
        return Step{*page, -1};
    return std::nullopt;
}

} // namespace qmr
