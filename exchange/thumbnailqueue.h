#pragma once

#include <QByteArray>
#include <QSemaphore>
#include <QString>
#include <QThreadPool>
#include <atomic>

namespace qmr {

// Makes the thumbnails of imported pages on every core while the import goes on copying.
// Only a few wait their turn at a time, so memory stays flat however many pages come in.
class ThumbnailQueue
{
public:
    // `home`: the directory whose dots do not count when thumbnail directories are made.
    explicit ThumbnailQueue(QString home, int threads = 0);
    ~ThumbnailQueue();
    ThumbnailQueue(const ThumbnailQueue&) = delete;
    ThumbnailQueue& operator=(const ThumbnailQueue&) = delete;

    // Rebuilds one thumbnail from its page file; waits first while the queue is full.
    void add(const QString& pagePath, const QString& thumbPath);
    // The same from the page's bytes at hand.
    void addFromData(const QByteArray& page, const QString& thumbPath);
    // Returns once every thumbnail asked for is made (or has failed).
    void waitForDone();
    int made() const { return m_made.load(); }
    int threads() const { return m_pool.maxThreadCount(); }

private:
    QString m_home;
    QThreadPool m_pool;
    QSemaphore m_room;
    std::atomic<int> m_made{0};
};

} // namespace qmr
