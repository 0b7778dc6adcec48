#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "filing/thumbnailcache.h"
#include "tests/support/datarow.h"
#include "tests/support/testpdfs.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

bool isWhite(QRgb pixel)
{
    return qGray(pixel) > 215;
}

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// A cache on a temporary home, with what it delivers recorded.
struct CacheBench
{
    QTemporaryDir dir;
    ThumbnailCache cache{dir.path()};
    QSignalSpy ready{&cache, &ThumbnailCache::ready};
    QSignalSpy done{&cache, &ThumbnailCache::blockDone};

    // A page file of `size`, black, and the request for its thumbnail below Thumbs/.
    ThumbnailCache::Request page(qint32 id, const QSize& size)
    {
        const QString path = dir.filePath(QString("Pages/%1.jpg").arg(id));
        QDir().mkpath(QFileInfo(path).path());
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::black);
        image.save(path, "JPG");
        return {id, path, dir.filePath(QString("Thumbs/%1.jpg").arg(id))};
    }
    // Waits until the cache has delivered everything it was asked for.
    bool waitForBlock()
    {
        return QTest::qWaitFor([&] { return cache.outstanding() == 0; }, 10000);
    }
    QHash<qint32, QImage> tiles() const
    {
        QHash<qint32, QImage> out;
        for (const QList<QVariant>& signal : ready)
            out.insert(signal.at(0).toInt(), signal.at(1).value<QImage>());
        return out;
    }
};

} // namespace

class TestThumbnailCache : public QObject
{
    Q_OBJECT
private slots:
    void missingThumbnailsAreMadeOnFirstRequest()
    {
        CacheBench b;
        const auto landscape = b.page(1, QSize(400, 200));
        const auto portrait = b.page(2, QSize(200, 400));
        // Nothing is at hand: both come later, made off the GUI thread.
        QVERIFY(b.cache.request({landscape, portrait}).isEmpty());
        QCOMPARE(b.cache.outstanding(), 2);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 2);
        QCOMPARE(b.done.size(), 1);
        const QHash<qint32, QImage> tiles = b.tiles();
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
        CacheBench b;
        const auto page = b.page(1, QSize(300, 300));
        QDir().mkpath(b.dir.filePath("Thumbs"));
        // A thumbnail the viewer saved: the page reduced alone, no tile.
        QImage saved(50, 100, QImage::Format_RGB32);
        saved.fill(Qt::red);
        QVERIFY(saved.save(page.thumbPath, "JPG"));
        const QDateTime written = QFileInfo(page.thumbPath).lastModified();
        const QHash<qint32, QImage> atHand = b.cache.request({page});
        QCOMPARE(atHand.size(), 1);
        QCOMPARE(b.cache.outstanding(), 0);
        QCOMPARE(b.ready.size(), 0);
        const QImage tile = atHand.value(1);
        QCOMPARE(tile.size(), QSize(100, 100));
        QVERIFY(qRed(tile.pixel(10, 50)) > 200 && qGreen(tile.pixel(10, 50)) < 60);
        QVERIFY(isWhite(tile.pixel(80, 50)));
        QCOMPARE(QFileInfo(page.thumbPath).lastModified(), written); // served, not made again
    }

    void readsGoToThePoolWithoutABudget()
    {
        CacheBench b;
        b.cache.setReadBudget(0);
        const auto page = b.page(1, QSize(300, 300));
        QVERIFY(b.cache.request({page}).isEmpty());
        QVERIFY(b.waitForBlock());
        b.cache.clearMemory();
        QVERIFY(b.cache.request({page}).isEmpty());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 2);
        // From memory, the second time, however small the budget.
        QCOMPARE(b.cache.request({page}).size(), 1);
    }

    void aChangedThumbnailIsReadAgain()
    {
        CacheBench b;
        const auto page = b.page(1, QSize(300, 300));
        QVERIFY(b.cache.request({page}).isEmpty());
        QVERIFY(b.waitForBlock());
        QVERIFY(!isWhite(b.cache.request({page}).value(1).pixel(50, 50)));
        // The viewer saves the page again: a new thumbnail with a new time.
        QImage green(100, 100, QImage::Format_RGB32);
        green.fill(Qt::green);
        QVERIFY(green.save(page.thumbPath, "JPG"));
        QFile f(page.thumbPath);
        QVERIFY(f.open(QIODevice::ReadWrite));
        QVERIFY(f.setFileTime(QDateTime::currentDateTime().addSecs(60),
                              QFileDevice::FileModificationTime));
        f.close();
        const QRgb now = b.cache.request({page}).value(1).pixel(50, 50);
        QVERIFY(qGreen(now) > 200 && qRed(now) < 60);
    }

    void aPageThatCannotBeMadeLeavesTheRestOfTheBlock()
    {
        CacheBench b;
        const auto good1 = b.page(1, QSize(200, 200));
        const auto good2 = b.page(3, QSize(200, 200));
        const auto garbage = b.page(4, QSize(10, 10));
        QVERIFY(writeBytes(garbage.pagePath, "not a picture"));
        // A thumbnail that cannot be read is made again; here from a page that has gone,
        // which leaves none at all.
        const ThumbnailCache::Request gone{2, b.dir.filePath("Pages/2.jpg"),
                                           b.dir.filePath("Thumbs/2.jpg")};
        QDir().mkpath(b.dir.filePath("Thumbs"));
        QVERIFY(writeBytes(gone.thumbPath, "half a file"));

        b.cache.request({good1, gone, good2, garbage});
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 4);
        const QHash<qint32, QImage> tiles = b.tiles();
        QVERIFY(!tiles.value(1).isNull());
        QVERIFY(!tiles.value(3).isNull());
        QVERIFY(tiles.contains(2) && tiles.value(2).isNull());
        QVERIFY(tiles.contains(4) && tiles.value(4).isNull());
        QVERIFY(!QFile::exists(gone.thumbPath));
        QVERIFY(!QFile::exists(garbage.thumbPath));
    }

    void pagingAwayDropsWorkNoLongerShown()
    {
        CacheBench b;
        b.cache.setThreadCount(1);
        QVector<ThumbnailCache::Request> first;
        for (int id = 1; id <= 30; ++id)
            first << b.page(id, QSize(1200, 1600));
        QVector<ThumbnailCache::Request> second;
        for (int id = 101; id <= 103; ++id)
            second << b.page(id, QSize(1200, 1600));
        second << first.at(29); // shown in both blocks

        b.cache.request(first);
        b.cache.request(second);
        QVERIFY(b.waitForBlock());
        QTest::qWait(50); // anything late would show now
        QCOMPARE(QSet<qint32>(b.tiles().keyBegin(), b.tiles().keyEnd()),
                 (QSet<qint32>{101, 102, 103, 30}));
        QCOMPARE(b.ready.size(), 4);
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
        CacheBench b;
        b.cache.setThreadCount(2);
        const auto page = b.page(1, QSize(1200, 1600));
        b.cache.request({page});
        b.cache.request({page}); // paged away and back while it was being made
        QVERIFY(b.waitForBlock());
        QTest::qWait(50);
        QCOMPARE(b.ready.size(), 1);
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
        CacheBench b;
        const auto page = b.page(1, QSize(400, 600));
        // A file being added makes its own thumbnail: the pane's request waits for it.
        b.cache.expect(page.thumbPath);
        QVERIFY(b.cache.request({page}).isEmpty());
        QTest::qWait(100);
        QVERIFY(b.ready.isEmpty());
        QVERIFY(!QFile::exists(page.thumbPath));
        QCOMPARE(b.cache.outstanding(), 1);

        QImage handed(100, 100, QImage::Format_RGB32);
        handed.fill(Qt::red);
        b.cache.arrived(page.thumbPath, tileCame ? handed : QImage());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 1);
        QCOMPARE(b.done.size(), 1);
        const QImage tile = b.tiles().value(1);
        // Taken as it came, not read nor made again; or, when nothing came, made as any
        // missing one.
        if (tileCame)
            QCOMPARE(tile, handed);
        else
            QVERIFY(!isWhite(tile.pixel(2, 2)));
        QCOMPARE(QFile::exists(page.thumbPath), !tileCame);
        // Once arrived, the path is an ordinary one again.
        b.cache.arrived(page.thumbPath, handed);
        QTest::qWait(20);
        QCOMPARE(b.ready.size(), 1);
    }

    // A PDF kept as a shortcut shows its first page, drawn off the GUI thread and kept in
    // memory only; one that cannot be drawn delivers no tile, and the pane keeps its icon.
    void pdfShortcutsShowTheirFirstPage_data()
    {
        columns<QString>({"kind"});
        row("printed", QString("printed"));
        for (const QString& kind : TestPdfs::refusedKinds())
            row(qPrintable(kind), kind);
    }
    void pdfShortcutsShowTheirFirstPage()
    {
        QFETCH(QString, kind);
        CacheBench b;
        const QString pdf = b.dir.filePath("letter.pdf");
        const bool printed = kind == "printed";
        QVERIFY(printed ? TestPdfs::printed(pdf, {{"Northwind", "heating"}, {"Second page"}})
                        : TestPdfs::refused(kind, pdf));
        const ThumbnailCache::Request request{1, pdf, QString(), true};
        QVERIFY(b.cache.request({request}).isEmpty());
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 1);
        QCOMPARE(b.done.size(), 1);
        const QImage tile = b.tiles().value(1);
        QVERIFY(!QFileInfo::exists(b.dir.filePath("Thumbs")));
        QCOMPARE(!tile.isNull(), printed);
        if (!printed)
            return;
        // An A4 page is narrower than it is tall: white paper with grey to black print at the
        // left, the tile's right edge left white.
        QCOMPARE(tile.size(), QSize(100, 100));
        int dark = 0;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                dark += !isWhite(tile.pixel(x, y));
        QVERIFY2(dark > 10, qPrintable(QString::number(dark)));
        QVERIFY(dark < 2000);
        for (int y = 0; y < 100; ++y)
            QVERIFY(isWhite(tile.pixel(95, y)));
        // Asked again it is at hand, and the pool, having looked at the file, delivers it
        // again; once the file has changed, it is drawn anew, and once it cannot be drawn, no
        // tile comes and none is kept.
        const auto change = [&](bool toGarbage, int seconds) {
            if (!(toGarbage ? TestPdfs::garbage(pdf)
                            : TestPdfs::printed(pdf, {{"Another", "letter", "much", "longer"}})))
                return false;
            QFile file(pdf);
            return file.open(QIODevice::ReadWrite) &&
                   file.setFileTime(QFileInfo(pdf).lastModified().addSecs(seconds),
                                    QFileDevice::FileModificationTime);
        };
        QCOMPARE(b.cache.request({request}).value(1), tile);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 2);
        QCOMPARE(b.tiles().value(1), tile);
        QVERIFY(change(false, 5));
        QCOMPARE(b.cache.request({request}).value(1), tile);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 3);
        const QImage redrawn = b.tiles().value(1);
        QVERIFY(!redrawn.isNull());
        QVERIFY(redrawn != tile);
        QVERIFY(change(true, 10));
        QCOMPARE(b.cache.request({request}).value(1), redrawn);
        QVERIFY(b.waitForBlock());
        QCOMPARE(b.ready.size(), 4);
        QVERIFY(b.tiles().value(1).isNull());
        QVERIFY(b.cache.request({request}).isEmpty());
        QVERIFY(b.waitForBlock());
    }

    void shortcutsAskForNothing()
    {
        CacheBench b;
        QVERIFY(b.cache.request({{1, b.dir.filePath("letter.pdf"), QString()}}).isEmpty());
        QCOMPARE(b.cache.outstanding(), 0);
        QCOMPARE(b.done.size(), 1);
    }
};

QMR_TEST(TestThumbnailCache)
#include "testthumbnailcache.moc"
