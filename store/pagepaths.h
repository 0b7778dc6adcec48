#pragma once

#include <QString>

#include "core/apphome.h"

namespace qmr {

// The one place that turns a page into its image and thumbnail paths, from its id and its
// stored Filename ("" for none) alone, so that a block of pages costs no query. Computed
// pages live in buckets of a thousand: Pages/0000012/12345.jpg.
class PagePaths
{
public:
    explicit PagePaths(AppHome home) : m_home(std::move(home)) {}

    const AppHome& home() const { return m_home; }
    QString pagePath(qint32 pageId, const QString& stored) const;
    QString pageDirectory(qint32 pageId, const QString& stored) const;
    // A stored file keeps its thumbnail in "Thumbs" beside it, under the same file name.
    QString thumbPath(qint32 pageId, const QString& stored) const;
    QString thumbDirectory(qint32 pageId, const QString& stored) const;

    QString computedPagePath(qint32 pageId) const;
    QString computedPageDirectory(qint32 pageId) const;
    QString computedThumbPath(qint32 pageId) const;
    QString computedThumbDirectory(qint32 pageId) const;
    // The page whose computed image (or, with `thumbs`, thumbnail) path `path` is; -1 when
    // it is no such path.
    qint32 computedIdOf(const QString& path, bool thumbs = false) const;

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

    AppHome m_home;
};

} // namespace qmr
