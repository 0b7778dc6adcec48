#pragma once

#include <QString>

namespace qmr {

class PagePaths;
struct PageRow;

// One page as the page pane keeps it in memory for the life of a selection, so that paging
// never goes back to the store.
struct PageEntry
{
    qint32 pageId = -1;
    qint32 pageNumber = 0;
    // The stored file, or the computed path when the row names none.
    QString filename;
    QString scanDate;
    QString fileSize;
    QString fileType;
    bool shortcut = false;
    // The page holds the words on the pages that found its document: the pane marks it.
    bool matched = false;
    // Where the picture and its thumbnail lie (both "" for a shortcut's thumbnail).
    QString pagePath;
    QString thumbPath;

    static PageEntry fromRow(const PageRow& row, const PagePaths& paths);

    // The text under a thumbnail: a shortcut and a page numbered 0 show their file's name.
    QString thumbnailText() const;
    // The first column of the list view: the number alone, nothing for a shortcut.
    QString listText() const;
    // The text of the list's hidden column: the number at least two digits wide.
    QString sortKey() const;
};

} // namespace qmr
