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

ThumbnailCache::ThumbnailCache(const QString& home, QObject* parent)
    : QObject(parent), m_home(home), m_shared(std::make_shared<Shared>()), m_memory(kMemoryTiles)
{
    m_pool.setMaxThreadCount(QThread::idealThreadCount());
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

QHash<qint32, QImage> ThumbnailCache::request(const QVector<Request>& block)
{
    cancel();
    QHash<qint32, QImage> atHand;
    QElapsedTimer clock;
    clock.start();
    for (const Request& r : block) {
        if (r.thumbPath.isEmpty())
            continue;
        if (m_elsewhere.contains(r.thumbPath)) {
            want(r);
            continue;
        }
        const QFileInfo info(r.thumbPath);
        if (info.exists()) {
            const Cached* cached = m_memory.object(r.thumbPath);
            if (cached && cached->modified == info.lastModified() && cached->size == info.size()) {
                atHand.insert(r.pageId, cached->tile);
                continue;
            }
            // Small files on a local disk read faster than a trip through the pool; a slow
            // disk soon uses up the budget and the rest go to the pool.
            if (clock.elapsed() < m_readBudget && !m_inFlight.contains(r.thumbPath)) {
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
    QVector<Request>& waiting = m_wanted[request.thumbPath];
    waiting << request;
    if (waiting.size() > 1)
        return;
    {
        QMutexLocker lock(&m_shared->mutex);
        m_shared->wanted.insert(request.thumbPath);
    }
    // Work already under way for the file delivers to whoever wants it when it ends; two
    // writers of one file would spoil it.
    if (!m_inFlight.contains(request.thumbPath) && !m_elsewhere.contains(request.thumbPath))
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
    m_inFlight.insert(request.thumbPath);
    const std::shared_ptr<Shared> shared = m_shared;
    const QString home = m_home;
    m_pool.start(QRunnable::create([this, shared, home, request] {
        WorkerPriority::lowerCurrentThread();
        const QString& path = request.thumbPath;
        QImage tile;
        const bool skipped = !shared->isWanted(path);
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

void ThumbnailCache::finished(const QString& thumbPath, const QImage& tile, bool skipped)
{
    m_inFlight.remove(thumbPath);
    const auto waiting = m_wanted.constFind(thumbPath);
    if (skipped) {
        // Skipped by an earlier block, but wanted again by now.
        if (waiting != m_wanted.constEnd())
            startJob(waiting->first());
        return;
    }
    if (!tile.isNull())
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
