#include "exchange/thumbnailqueue.h"

#include <QThread>

#include "core/workerpriority.h"
#include "filing/thumbnailmaker.h"

namespace qmr {

ThumbnailQueue::ThumbnailQueue(QString home, int threads) : m_home(std::move(home))
{
    const int count = threads > 0 ? threads : qMax(1, QThread::idealThreadCount());
    m_pool.setMaxThreadCount(count);
    // A few per worker keep every core busy without piling up work.
    m_room.release(count * 4);
}

ThumbnailQueue::~ThumbnailQueue()
{
    waitForDone();
}

void ThumbnailQueue::add(const QString& pagePath, const QString& thumbPath)
{
    m_room.acquire();
    m_pool.start([this, pagePath, thumbPath] {
        WorkerPriority::lowerCurrentThread();
        if (ThumbnailMaker::makeThumbnail(pagePath, thumbPath, m_home))
            ++m_made;
        m_room.release();
    });
}

void ThumbnailQueue::addFromData(const QByteArray& page, const QString& thumbPath)
{
    m_room.acquire();
    m_pool.start([this, page, thumbPath] {
        WorkerPriority::lowerCurrentThread();
        if (ThumbnailMaker::makeThumbnailFromData(page, thumbPath, m_home))
            ++m_made;
        m_room.release();
    });
}

void ThumbnailQueue::waitForDone()
{
    m_pool.waitForDone();
}

} // namespace qmr
