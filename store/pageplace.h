#pragma once

#include <QString>

namespace qmr {

class PagePaths;
class PageStore;

// The place where a new page's image is to go. A file standing there already is never taken
// for the new page's copy: one that no row refers to was left by a run that ended before its
// rows were kept, and goes; one that a row refers to belongs to that page.
class PagePlace
{
public:
    // Clears `path` for the new page `pageId`. "" when the place is free afterwards; else the
    // reason, naming the file, and the command making the page ends.
    static QString clear(const PageStore& pages, const PagePaths& paths, qint32 pageId,
                         const QString& path);
};

} // namespace qmr
