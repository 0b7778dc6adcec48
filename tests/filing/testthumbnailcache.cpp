#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "filing/thumbnailcache.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// A page file of `size`, black, and the request for its thumbnail below Thumbs/.
ThumbnailCache::Request pageFile(const QTemporaryDir& dir, qint32 id, const QSize& size)
{
    const QString page = dir.filePath(QString("Pages/%1.jpg").arg(id));
    QDir().mkpath(QFileInfo(page).path());
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    image.save(page, "JPG");
    return {id, page, dir.filePath(QString("Thumbs/%1.jpg").arg(id))};
}

// Waits until the cache has delivered everything it was asked for.
bool waitForBlock(ThumbnailCache& cache)
{
    return QTest::qWaitFor([&] { return cache.outstanding() == 0; }, 10000);
}

bool isWhite(QRgb pixel)
{
    return qGray(pixel) > 215;
}

} // namespace

class TestThumbnailCache : public QObject
{
    Q_OBJECT
private slots:
    void missingThumbnailsAreMadeOnFirstRequest()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        const auto landscape = pageFile(dir, 1, QSize(400, 200));
        const auto portrait = pageFile(dir, 2, QSize(200, 400));
        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        QSignalSpy done(&cache, &ThumbnailCache::blockDone);
        // Nothing is at hand: both come later, made off the GUI thread.
        QVERIFY(cache.request({landscape, portrait}).isEmpty());
        QCOMPARE(cache.outstanding(), 2);
        QVERIFY(waitForBlock(cache));
        QCOMPARE(ready.size(), 2);
        QCOMPARE(done.size(), 1);
        QHash<qint32, QImage> tiles;
        for (const QList<QVariant>& signal : ready)
            tiles.insert(signal.at(0).toInt(), signal.at(1).value<QImage>());
        for (const QImage& tile : tiles)
            QCOMPARE(tile.size(), QSize(100, 100));
        // The page at the top left of a white tile: a wide page leaves the lower half white,
        // a tall one the right half.
        QVERIFY(!isWhite(tiles[1].pixel(2, 2)));
        QVERIFY(isWhite(tiles[1].pixel(50, 90)));
        QVERIFY(!isWhite(tiles[2].pixel(2, 90)));
        QVERIFY(isWhite(tiles[2].pixel(90, 50)));
        // The thumbnails are on disk from now on, as 100 by 100 JPEG tiles.
        for (const auto& r : {landscape, portrait})
            QCOMPARE(QImage(r.thumbPath).size(), QSize(100, 100));
    }

    void thumbnailsOnDiskComeAtOnce()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        const auto page = pageFile(dir, 1, QSize(300, 300));
        QDir().mkpath(dir.filePath("Thumbs"));
        // A thumbnail the viewer saved: the page reduced alone, no tile.
        QImage saved(50, 100, QImage::Format_RGB32);
        saved.fill(Qt::red);
        QVERIFY(saved.save(page.thumbPath, "JPG"));
        const QDateTime written = QFileInfo(page.thumbPath).lastModified();
        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        const QHash<qint32, QImage> atHand = cache.request({page});
        QCOMPARE(atHand.size(), 1);
        QCOMPARE(cache.outstanding(), 0);
        QCOMPARE(ready.size(), 0);
        const QImage tile = atHand.value(1);
        QCOMPARE(tile.size(), QSize(100, 100));
        QVERIFY(qRed(tile.pixel(10, 50)) > 200 && qGreen(tile.pixel(10, 50)) < 60);
        QVERIFY(isWhite(tile.pixel(80, 50)));
        // Served, not made again.
        QCOMPARE(QFileInfo(page.thumbPath).lastModified(), written);
    }

    void readsGoToThePoolWithoutABudget()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        cache.setReadBudget(0);
        const auto page = pageFile(dir, 1, QSize(300, 300));
        QVERIFY(cache.request({page}).isEmpty());
        QVERIFY(waitForBlock(cache));
        cache.clearMemory();
        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        QVERIFY(cache.request({page}).isEmpty());
        QVERIFY(waitForBlock(cache));
        QCOMPARE(ready.size(), 1);
        // From memory, the second time, however small the budget.
        QCOMPARE(cache.request({page}).size(), 1);
    }

    void aChangedThumbnailIsReadAgain()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        const auto page = pageFile(dir, 1, QSize(300, 300));
        QVERIFY(cache.request({page}).isEmpty());
        QVERIFY(waitForBlock(cache));
        QVERIFY(!isWhite(cache.request({page}).value(1).pixel(50, 50)));
        // The viewer saves the page again: a new thumbnail with a new time.
        QImage green(100, 100, QImage::Format_RGB32);
        green.fill(Qt::green);
        QVERIFY(green.save(page.thumbPath, "JPG"));
        QFile f(page.thumbPath);
        QVERIFY(f.open(QIODevice::ReadWrite));
        QVERIFY(f.setFileTime(QDateTime::currentDateTime().addSecs(60),
                              QFileDevice::FileModificationTime));
        f.close();
        const QRgb now = cache.request({page}).value(1).pixel(50, 50);
        QVERIFY(qGreen(now) > 200 && qRed(now) < 60);
    }

    void aPageThatCannotBeMadeLeavesTheRestOfTheBlock()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        const auto good1 = pageFile(dir, 1, QSize(200, 200));
        const auto good2 = pageFile(dir, 3, QSize(200, 200));
        ThumbnailCache::Request gone{2, dir.filePath("Pages/2.jpg"), dir.filePath("Thumbs/2.jpg")};
        ThumbnailCache::Request garbage = pageFile(dir, 4, QSize(10, 10));
        QFile f(garbage.pagePath);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write("not a picture");
        f.close();
        // A thumbnail that cannot be read is made again; here from a page that has gone,
        // which leaves none at all.
        QDir().mkpath(dir.filePath("Thumbs"));
        QFile stale(gone.thumbPath);
        QVERIFY(stale.open(QIODevice::WriteOnly));
        stale.write("half a file");
        stale.close();

        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        cache.request({good1, gone, good2, garbage});
        QVERIFY(waitForBlock(cache));
        QCOMPARE(ready.size(), 4);
        QHash<qint32, QImage> tiles;
        for (const QList<QVariant>& signal : ready)
            tiles.insert(signal.at(0).toInt(), signal.at(1).value<QImage>());
        QVERIFY(!tiles.value(1).isNull());
        QVERIFY(!tiles.value(3).isNull());
        QVERIFY(tiles.contains(2) && tiles.value(2).isNull());
        QVERIFY(tiles.contains(4) && tiles.value(4).isNull());
        QVERIFY(!QFile::exists(gone.thumbPath));
        QVERIFY(!QFile::exists(garbage.thumbPath));
    }

    void pagingAwayDropsWorkNoLongerShown()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        cache.setThreadCount(1);
        QVector<ThumbnailCache::Request> first;
        for (int id = 1; id <= 30; ++id)
            first << pageFile(dir, id, QSize(1200, 1600));
        QVector<ThumbnailCache::Request> second;
        for (int id = 101; id <= 103; ++id)
            second << pageFile(dir, id, QSize(1200, 1600));
        second << first.at(29); // shown in both blocks

        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        cache.request(first);
        cache.request(second);
        QVERIFY(waitForBlock(cache));
        QTest::qWait(50); // anything late would show now
        QSet<int> delivered;
        for (const QList<QVariant>& signal : ready)
            delivered << signal.at(0).toInt();
        QCOMPARE(delivered, (QSet<int>{101, 102, 103, 30}));
        QCOMPARE(ready.size(), 4);
        for (const auto& r : second)
            QVERIFY(QFile::exists(r.thumbPath));
        // At most the job already running for the first block went on.
        int made = 0;
        for (int i = 0; i < 29; ++i)
            made += QFile::exists(first.at(i).thumbPath);
        QVERIFY2(made <= 2, qPrintable(QString::number(made)));
    }

    void aPageAskedForTwiceIsMadeOnce()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        cache.setThreadCount(2);
        const auto page = pageFile(dir, 1, QSize(1200, 1600));
        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        cache.request({page});
        cache.request({page}); // paged away and back while it was being made
        QVERIFY(waitForBlock(cache));
        QTest::qWait(50);
        QCOMPARE(ready.size(), 1);
        QCOMPARE(QImage(page.thumbPath).size(), QSize(100, 100));
    }

    void aThumbnailMadeElsewhereIsWaitedFor_data()
    {
        QTest::addColumn<bool>("tileCame");
        QTest::newRow("its maker hands the tile over") << true;
        QTest::newRow("its maker made none") << false;
    }
    void aThumbnailMadeElsewhereIsWaitedFor()
    {
        QFETCH(bool, tileCame);
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        const auto page = pageFile(dir, 1, QSize(400, 600));
        QSignalSpy ready(&cache, &ThumbnailCache::ready);
        QSignalSpy done(&cache, &ThumbnailCache::blockDone);
        // A file being added makes its own thumbnail: the pane's request waits for it.
        cache.expect(page.thumbPath);
        QVERIFY(cache.request({page}).isEmpty());
        QTest::qWait(100);
        QVERIFY(ready.isEmpty());
        QVERIFY(!QFile::exists(page.thumbPath));
        QCOMPARE(cache.outstanding(), 1);

        QImage handed(100, 100, QImage::Format_RGB32);
        handed.fill(Qt::red);
        cache.arrived(page.thumbPath, tileCame ? handed : QImage());
        QVERIFY(waitForBlock(cache));
        QCOMPARE(ready.size(), 1);
        QCOMPARE(done.size(), 1);
        const QImage tile = ready.first().at(1).value<QImage>();
        if (tileCame) {
            // Taken as it came, not read nor made again.
            QCOMPARE(tile, handed);
            QVERIFY(!QFile::exists(page.thumbPath));
        } else {
            // Nothing came: the cache makes it as it would any missing one.
            QVERIFY(!isWhite(tile.pixel(2, 2)));
            QVERIFY(QFile::exists(page.thumbPath));
        }
        // Once arrived, the path is an ordinary one again.
        cache.arrived(page.thumbPath, handed);
        QTest::qWait(20);
        QCOMPARE(ready.size(), 1);
    }

    void shortcutsAskForNothing()
    {
        QTemporaryDir dir;
        ThumbnailCache cache(dir.path());
        QSignalSpy done(&cache, &ThumbnailCache::blockDone);
        QVERIFY(cache.request({{1, dir.filePath("letter.pdf"), QString()}}).isEmpty());
        QCOMPARE(cache.outstanding(), 0);
        QCOMPARE(done.size(), 1);
    }
};

QMR_TEST(TestThumbnailCache)
#include "testthumbnailcache.moc"
