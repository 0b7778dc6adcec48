#pragma once

#include <QString>

namespace qmr {

// The arithmetic of the page pane's blocks: which entries a block holds, where each paging
// control moves it, and the status text. Entries are numbered from 1.
class PagePaging
{
public:
    static constexpr int kMinDisplayCount = 1;
    static constexpr int kMaxDisplayCount = 64;

    explicit PagePaging(int displayCount = 20) { setDisplayCount(displayCount); }

    // A new document of `pageCount` entries, at its first block.
    void load(int pageCount);
    // No document: every index 0.
    void clear();

    int displayCount() const { return m_displayCount; }
    // Clamped to 1..64; the block keeps its first entry.
    void setDisplayCount(int count);
    int pageCount() const { return m_pageCount; }
    int viewBase() const { return m_viewBase; }
    int viewFirst() const { return m_viewFirst; }
    // The last entry of the block in view.
    int viewLast() const;
    // The number of blocks and the block in view, both from 1; the block is 0 when there
    // are no entries.
    int blocks() const;
    int currentBlock() const;
    // " Showing 16 images (page 1 of 3)": the count is the block size, not the entries in
    // the block. "" when there are no entries.
    QString statusText() const;

    // Whether First and Prev, and Next and Last, have somewhere to go.
    bool canGoBack() const { return m_viewFirst != m_viewBase; }
    bool canGoForward() const { return viewLast() < m_pageCount; }

    // The paging controls. Each returns whether the block must be shown again.
    bool first();
    // Steps back one short of a block, so the old first entry stays in view as the last.
    bool prev();
    bool next();
    bool last();
    bool showLess() { return changeDisplayCount(-1); }
    bool showMore() { return changeDisplayCount(+1); }
    // Moves to the block that holds entry `index`, counting blocks from the first entry.
    void showEntry(int index);

private:
    bool changeDisplayCount(int delta);

    int m_displayCount = 20;
    int m_pageCount = 0;
    int m_viewBase = 0;
    int m_viewFirst = 0;
};

} // namespace qmr
