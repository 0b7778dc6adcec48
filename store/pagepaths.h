#pragma once

#include "core/apphome.h"

#include <QString>

namespace qmr {

class Database;

// The one place that turns a page id into its image and thumbnail paths. Computed pages
// live in buckets of a thousand: Pages/0000012/12345.jpg.
class PagePaths
{
public:
    PagePaths(Database& db, AppHome home) : m_db(db), m_home(std::move(home)) {}

    QString pageFilename(qint32 pageId) const; // "" when absent or Null
    bool isPageShortcut(qint32 pageId) const;
    QString pagePath(qint32 pageId) const;
    QString pageDirectory(qint32 pageId) const;
    QString thumbPath(qint32 pageId) const;
    QString thumbDirectory(qint32 pageId) const;

    QString computedPagePath(qint32 pageId) const;
    QString computedPageDirectory(qint32 pageId) const;
    QString computedThumbPath(qint32 pageId) const;
    QString computedThumbDirectory(qint32 pageId) const;

    // Up to and including the last '/'; "" when there is none.
    static QString directoryPart(const QString& path);
    // After the last '/'; "" when there is none.
    static QString filePart(const QString& path);
    // Makes every missing directory of a directory path, or of a file path's directory (a
    // path with a dot anywhere is taken to end in a file name). False on failure. The dots of
    // `base`, a directory the path lies in, do not count: a home below ~/.local is no file.
    static bool ensurePathExists(const QString& path, const QString& base = QString());
    // The same, with the application home as the base.
    bool ensurePathInHome(const QString& path) const;

private:
    static QString bucket(qint32 pageId);

    Database& m_db;
    AppHome m_home;
};

} // namespace qmr
