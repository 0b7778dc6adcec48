#pragma once

#include <QString>
#include <QVector>

#include "core/level.h"

namespace qmr {

class Database;
class PagePaths;
class Progress;

// Removes an item with everything below it, the same way at every level: first the image and
// thumbnail files of its pages (their paths come from the rows, which must still be there),
// then the rows from the bottom up, together in one transaction. Shortcut pages keep their
// files: those belong to somebody else. A file that cannot be removed (gone already, in a
// read-only directory) is passed over without a word and its row goes all the same.
class Deletion
{
public:
    Deletion(Database& db, const PagePaths& paths) : m_db(db), m_paths(paths) {}

    // The progress window's title for deleting an item of the level ("Delete drawer").
    static QString progressTitle(Level level);
    // The pages below an item; a page counts itself.
    int pageCount(Level level, qint32 id) const;
    // What the progress goes up to: the pages plus 3 for a cabinet or drawer, plus 2 for a
    // folder or document; 3 for each of `count` pages.
    int progressMaximum(Level level, qint32 id, int count = 1) const;

    // Deletes a cabinet, drawer, folder or document with its subtree, stepping `progress`,
    // which the caller has started. A failed statement throws StoreError and leaves every row.
    void deleteItem(Level level, qint32 id, Progress& progress);
    // Deletes pages: all their files, then all their rows.
    void deletePages(const QVector<qint32>& pageIds, Progress& progress);

private:
    struct PageFiles
    {
        qint32 id;
        QString filename;
        bool shortcut;
    };
    // The condition on Page that picks the pages below an item, with one "?" for its id.
    static QString pagesBelow(Level level);
    QVector<PageFiles> pagesOf(const QString& condition, qint32 id) const;
    void deletePageFiles(const PageFiles& page) const;
    void deleteFilesBelow(Level level, qint32 id, Progress& progress) const;
    void deleteRowsBelow(Level level, qint32 id);

    Database& m_db;
    const PagePaths& m_paths;
};

} // namespace qmr
