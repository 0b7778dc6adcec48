#pragma once

#include <QList>
#include <QRect>
#include <optional>

#include "core/pagewords.h"

namespace qmr {

class Database;
class PageStore;

// Where the words on the pages that found a document are, for the viewer: the boxes on the
// page in view, the one marked now, and the document's other pages that hold the words, so
// that the next match goes from box to box and on to the next such page.
class MatchMarks
{
public:
    // Where a step goes: a box of the page in view, or the first (the last, going back) box
    // of another page.
    struct Step
    {
        qint32 pageId = -1;
        int box = 0; // -1: the page's last box
        bool operator==(const Step&) const = default;
    };

    // The words to mark; none marks nothing.
    void setWords(const PageWords& words);
    const PageWords& words() const { return m_words; }

    // The page now in view, shown from `file`: its boxes, and the document's pages that hold
    // the words, in page order. The box marked is `box` (-1: the last one).
    void load(Database& store, const PageStore& pages, qint32 documentId, qint32 pageId,
              const QString& file, int box = 0);
    // The marks no longer fit the picture (it was turned or cut).
    void hide() { m_boxes.clear(); }

    const QList<QRect>& boxes() const { return m_boxes; }
    int current() const { return m_current; }
    void setCurrent(int box);
    // The document holds the words somewhere: the viewer shows the match buttons.
    bool active() const { return !m_pages.isEmpty(); }
    std::optional<Step> next() const;
    std::optional<Step> previous() const;

private:
    // The nearest page that holds the words, going `by` (1 or -1) from the page in view.
    std::optional<qint32> pageFrom(int by) const;

    PageWords m_words;
    qint32 m_documentId = -1;
    qint32 m_pageId = -1;
    QList<qint32> m_order; // the document's pages in page order
    QList<qint32> m_pages; // those that hold the words
    QList<QRect> m_boxes;
    int m_current = -1;
};

} // namespace qmr
