#pragma once

#include <QString>
#include <functional>

namespace qmr {

class Database;
class PagePaths;

// The check of a home: the store's own integrity, every page's file and thumbnail against
// its row, and the files of the page directories that no row refers to. With repair, what
// can be mended is: files aside and orphans are removed, thumbnails made again, FileSize
// corrected. A row, and a file that a row refers to, are never removed.
class StoreCheck
{
public:
    // Makes the thumbnail `thumb` of the page image `page`; true when made.
    using ThumbnailMaker = std::function<bool(const QString& page, const QString& thumb)>;
    // One problem, in words, and whether it was mended.
    using Report = std::function<void(const QString& problem, bool repaired)>;

    struct Summary
    {
        int problems = 0;
        int repaired = 0;
        bool clean() const { return problems == repaired; }
        // "No problems found." or "N problems found[, M repaired]."
        QString text() const;
    };

    StoreCheck(Database& db, const PagePaths& paths) : m_db(db), m_paths(paths) {}

    void setThumbnailMaker(ThumbnailMaker maker) { m_makeThumbnail = std::move(maker); }
    Summary run(bool repair, const Report& report);

private:
    void checkIntegrity();
    void checkPages();
    void checkFiles();
    void found(const QString& problem, bool repaired);

    Database& m_db;
    const PagePaths& m_paths;
    ThumbnailMaker m_makeThumbnail;
    bool m_repair = false;
    Report m_report;
    Summary m_summary;
};

} // namespace qmr
