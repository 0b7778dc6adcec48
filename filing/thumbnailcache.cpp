#include "filing/thumbnailcache.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageReader>
#include <QMutex>
#include <QMutexLocker>
#include <QPainter>
#include <QRunnable>

#include "core/imageloader.h"
#include "core/workerpriority.h"
#include "filing/thumbnailmaker.h"

namespace qmr {

namespace {

// About ten megabytes of tiles: several blocks of the largest size.
constexpr int kMemoryTiles = 256;

} // namespace

struct ThumbnailCache::Shared
{
    QMutex mutex;
    QSet<QString> wanted;

    bool isWanted(const QString& path)
    {
        QMutexLocker lock(&mutex);
        return wanted.contains(path);
    }
};

ThumbnailCache::ThumbnailCache(const QString& home, ThumbnailPace pace, QObject* parent)
    : QObject(parent), m_home(home), m_shared(std::make_shared<Shared>()), m_memory(kMemoryTiles),
      m_readBudget(pace.readBudgetMs)
{
    m_pool.setMaxThreadCount(pace.threads > 0 ? pace.threads : QThread::idealThreadCount());
}

ThumbnailCache::~ThumbnailCache()
{
    cancel();
    m_pool.clear();
    m_pool.waitForDone();
}

QImage ThumbnailCache::readTile(const QString& thumbPath)
{
    QImageReader reader(thumbPath);
    const QImage image = ImageLoader::read(reader).image;
    if (image.isNull())
        return QImage();
    const int side = ThumbnailMaker::kThumbSide;
    if (image.size() == QSize(side, side))
        return image.convertToFormat(QImage::Format_RGB32);
    // A thumbnail saved by the viewer is the page reduced alone; it gets the same tile.
    QImage tile(side, side, QImage::Format_RGB32);
    tile.fill(Qt::white);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize fit = image.width() > side || image.height() > side
                          ? image.size().scaled(side, side, Qt::KeepAspectRatio)
                          : image.size();
    painter.drawImage(QRect(QPoint(0, 0), fit), image);
    return tile;
}

const QString& ThumbnailCache::keyOf(const Request& request)
{
    return request.pdf ? request.pagePath : request.thumbPath;
}

QHash<qint32, QImage> ThumbnailCache::request(const QVector<Request>& block)
{
    cancel();
    QHash<qint32, QImage> atHand;
    QElapsedTimer clock;
    clock.start();
    for (const Request& r : block) {
        const QString& key = keyOf(r);
        if (key.isEmpty())
            continue;
        if (m_elsewhere.contains(key)) {
            want(r);
            continue;
        }
        if (r.pdf) {
            if (const Cached* cached = m_memory.object(key))
                atHand.insert(r.pageId, cached->tile);
            want(r);
            continue;
        }
        const QFileInfo info(key);
        if (info.exists()) {
            const Cached* cached = m_memory.object(key);
            if (cached && cached->modified == info.lastModified() && cached->size == info.size()) {
                atHand.insert(r.pageId, cached->tile);
                continue;
            }
            // Small files on a local disk read faster than a trip through the pool; a slow
            // disk soon uses up the budget and the rest go to the pool.
            if (clock.elapsed() < m_readBudget && !m_inFlight.contains(key)) {
                const QImage tile = readTile(r.thumbPath);
                if (!tile.isNull()) {
                    remember(r.thumbPath, tile);
                    atHand.insert(r.pageId, tile);
                    continue;
                }
            }
        }
        want(r);
    }
    if (m_wanted.isEmpty())
        emit blockDone();
    return atHand;
}

void ThumbnailCache::cancel()
{
    m_wanted.clear();
    QMutexLocker lock(&m_shared->mutex);
    m_shared->wanted.clear();
}

int ThumbnailCache::outstanding() const
{
    int n = 0;
    for (const QVector<Request>& requests : m_wanted)
        n += requests.size();
    return n;
}

void ThumbnailCache::want(const Request& request)
{
    const QString& key = keyOf(request);
    QVector<Request>& waiting = m_wanted[key];
    waiting << request;
    if (waiting.size() > 1)
        return;
    {
        QMutexLocker lock(&m_shared->mutex);
        m_shared->wanted.insert(key);
    }
    // Work already under way for the file delivers to whoever wants it when it ends; two
    // writers of one file would spoil it.
    if (!m_inFlight.contains(key) && !m_elsewhere.contains(key))
        startJob(request);
}

void ThumbnailCache::expect(const QString& thumbPath)
{
    m_elsewhere.insert(thumbPath);
    m_memory.remove(thumbPath);
}

void ThumbnailCache::arrived(const QString& thumbPath, const QImage& tile)
{
    if (!m_elsewhere.remove(thumbPath))
        return;
    if (!tile.isNull() && !m_inFlight.contains(thumbPath)) {
        finished(thumbPath, tile, false);
        return;
    }
    const auto waiting = m_wanted.constFind(thumbPath);
    if (waiting != m_wanted.constEnd() && !m_inFlight.contains(thumbPath))
        startJob(waiting->first());
}

void ThumbnailCache::startJob(const Request& request)
{
    const QString& key = keyOf(request);
    m_inFlight.insert(key);
    const std::shared_ptr<Shared> shared = m_shared;
    const QString home = m_home;
    std::optional<Cached> known;
    if (const Cached* cached = request.pdf ? m_memory.object(key) : nullptr)
        known = *cached;
    m_pool.start(QRunnable::create([this, shared, home, request, key, known] {
        WorkerPriority::lowerCurrentThread();
        const QString& path = key;
        QImage tile;
        const bool skipped = !shared->isWanted(path);
        if (!skipped && request.pdf) {
            const QFileInfo info(path);
            Cached drawn{QImage(), info.lastModified(), info.size()};
            if (known && known->modified == drawn.modified && known->size == drawn.size) {
                drawn.tile = known->tile;
            } else if (info.exists()) {
                if (const QImage page = ThumbnailMaker::reducedPdfPage(path); !page.isNull())
                    drawn.tile = ThumbnailMaker::tile(page);
            }
            QMetaObject::invokeMethod(
                this, [this, path, drawn] { finished(path, drawn.tile, false, drawn); },
                Qt::QueuedConnection);
            return;
        }
        if (!skipped) {
            tile = readTile(path);
            if (tile.isNull() &&
                ThumbnailMaker::makeThumbnail(request.pagePath, request.thumbPath, home))
                tile = readTile(path);
        }
        // Delivered on the GUI thread; dropped by Qt when the cache is gone by then.
        QMetaObject::invokeMethod(
            this, [this, path, tile, skipped] { finished(path, tile, skipped); },
            Qt::QueuedConnection);
    }));
}

void ThumbnailCache::finished(const QString& thumbPath, const QImage& tile, bool skipped,
                              const std::optional<Cached>& drawn)
{
    m_inFlight.remove(thumbPath);
    const auto waiting = m_wanted.constFind(thumbPath);
    if (skipped) {
        // Skipped by an earlier block, but wanted again by now.
        if (waiting != m_wanted.constEnd())
            startJob(waiting->first());
        return;
    }
    if (drawn && tile.isNull())
        m_memory.remove(thumbPath); // the PDF can no longer be drawn
    else if (drawn)
        m_memory.insert(thumbPath, new Cached(*drawn));
    else if (!tile.isNull())
        remember(thumbPath, tile);
    if (waiting == m_wanted.constEnd())
        return;
    const QVector<Request> requests = *waiting;
    m_wanted.remove(thumbPath);
    {
        QMutexLocker lock(&m_shared->mutex);
        m_shared->wanted.remove(thumbPath);
    }
    for (const Request& r : requests)
        emit ready(r.pageId, tile);
    if (m_wanted.isEmpty())
        emit blockDone();
}

void ThumbnailCache::remember(const QString& thumbPath, const QImage& tile)
{
    const QFileInfo info(thumbPath);
    m_memory.insert(thumbPath, new Cached{tile, info.lastModified(), info.size()});
}

} // namespace qmr
