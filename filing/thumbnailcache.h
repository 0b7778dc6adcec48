#pragma once

#include <QCache>
#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QThreadPool>
#include <QVector>
#include <memory>
#include <optional>

namespace qmr {

// How hard a thumbnail cache works: its threads (every core when 0), and how long request()
// may spend reading thumbnail files itself (0 sends every read to the pool).
struct ThumbnailPace
{
    int threads = 0;
    int readBudgetMs = 25;
};

// The pictures of the page pane's tiles. A tile comes from memory, from its file under
// Thumbs, or is made from the page file where the thumbnail is missing. Reading and making
// happen on every core off the GUI thread and the results come back on it, so the window
// keeps answering while a block of new pages gets its thumbnails.
class ThumbnailCache : public QObject
{
    Q_OBJECT
public:
    struct Request
    {
        qint32 pageId = -1;
        QString pagePath;
        QString thumbPath;
        // pagePath is a PDF kept as a shortcut: its tile is the first page, drawn again when
        // the file changes and kept in memory only (thumbPath is not used). The file may lie
        // on a slow or absent disk, so only the pool looks at it: a tile in memory is at hand
        // at once and the pool delivers it again, or the new one, or none.
        bool pdf = false;
    };

    // `home` is the directory whose dots do not count when thumbnail directories are made.
    explicit ThumbnailCache(const QString& home, ThumbnailPace pace = {},
                            QObject* parent = nullptr);
    ~ThumbnailCache() override;

    // Asks for the tiles of one block, by page id. What is at hand (in memory, or read from
    // its file within a few milliseconds) is returned at once; the rest arrives through
    // ready(). Whatever an earlier request still wanted is dropped.
    QHash<qint32, QImage> request(const QVector<Request>& block);
    // Nothing is wanted any more: work that has not started is skipped.
    void cancel();
    // Someone else is making this thumbnail: a request for it waits for arrived() instead of
    // making a second one from the same page.
    void expect(const QString& thumbPath);
    // That work has ended with `tile`, or with none (null): a request waiting for it gets the
    // tile, or reads the file, or makes the thumbnail itself.
    void arrived(const QString& thumbPath, const QImage& tile);
    // Pages asked for and not delivered yet.
    int outstanding() const;

    // The benches compare thread counts on the window's own cache.
    void setThreadCount(int count) { m_pool.setMaxThreadCount(count); }
    int threadCount() const { return m_pool.maxThreadCount(); }
    void clearMemory() { m_memory.clear(); }

    // A thumbnail file as its tile shows it: 100 by 100, white, the picture in the top left
    // corner (a larger picture is reduced to fit). Null when the file cannot be read.
    static QImage readTile(const QString& thumbPath);

signals:
    // A null tile: no picture could be made for the page; its tile stays blank.
    void ready(qint32 pageId, const QImage& tile);
    // Every page of the last request has been delivered.
    void blockDone();

private:
    struct Cached
    {
        QImage tile;
        QDateTime modified;
        qint64 size = 0;
    };
    // What the pool's threads may read: the thumbnails still wanted.
    struct Shared;

    // What a tile is known by: its thumbnail file, or the PDF a shortcut's tile is drawn from.
    static const QString& keyOf(const Request& request);
    void want(const Request& request);
    void startJob(const Request& request);
    // `drawn`: the tile of a PDF with the time and size of the file it was drawn from.
    void finished(const QString& thumbPath, const QImage& tile, bool skipped,
                  const std::optional<Cached>& drawn = std::nullopt);
    void remember(const QString& thumbPath, const QImage& tile);

    QString m_home;
    QThreadPool m_pool;
    std::shared_ptr<Shared> m_shared;
    // thumbnail path (PDF path) -> the requests waiting for it
    QHash<QString, QVector<Request>> m_wanted;
    QSet<QString> m_inFlight;
    QSet<QString> m_elsewhere;
    QCache<QString, Cached> m_memory;
    int m_readBudget;
};

} // namespace qmr
